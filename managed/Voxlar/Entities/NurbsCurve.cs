using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A B-spline curve over control points, rational or not. Its control points and knots come with the file it
/// is read from.
/// </summary>
public class NurbsCurve : Curve
{
    private const int StepsPerSpan = 8;

    /// <summary>Makes a cubic curve without points and without a name.</summary>
    public NurbsCurve()
        : this("")
    {
    }

    /// <summary>Makes a cubic curve without points.</summary>
    /// <param name="name">Its name.</param>
    public NurbsCurve(string name)
        : base(name)
    {
    }

    /// <summary>The order: the degree and one. 4, cubic, at first.</summary>
    public int Order { get; set; } = 4;

    /// <summary>The number of coordinates it uses; in two dimensions z is 0.</summary>
    public CurveDimension Dimension { get; set; } = CurveDimension.ThreeDimensional;

    /// <summary>How the ends meet.</summary>
    public NurbsType CurveType { get; set; }

    /// <summary>Whether the w of control points is a weight; without it w counts for nothing.</summary>
    public bool Rational { get; set; }

    /// <summary>The control points; w is the weight.</summary>
    internal List<Vector4> ControlPoints { get; } = new();

    /// <summary>The knots; without any, evenly spaced ones that suit the type are taken.</summary>
    internal List<double> Knots { get; } = new();

    internal override double Begin => Prepare().Begin;

    internal override double End => Prepare().End;

    /// <summary>Gives points at evenly spaced parameters from the begin to the end.</summary>
    /// <param name="steps">The number of steps; there is one more point.</param>
    /// <returns>The points with w = 1.</returns>
    /// <exception cref="InvalidOperationException">
    /// There are too few control points, or the knots do not fit.
    /// </exception>
    public Vector4[] Evaluate(int steps)
    {
        ArgumentOutOfRangeException.ThrowIfLessThan(steps, 1);
        Spline spline = Prepare();
        Vector4[] points = new Vector4[steps + 1];
        for (int i = 0; i <= steps; ++i)
            points[i] = spline.At(spline.Begin + (spline.End - spline.Begin) * i / steps);
        return points;
    }

    /// <summary>Gives the point at a parameter; beyond the ends, that at the end.</summary>
    /// <param name="u">The parameter, in terms of the knots.</param>
    /// <returns>The point with w = 1.</returns>
    /// <exception cref="InvalidOperationException">
    /// There are too few control points, or the knots do not fit.
    /// </exception>
    public Vector4 EvaluateAt(double u) => Prepare().At(u);

    internal override Vector3 PointAt(double parameter) => new(EvaluateAt(parameter));

    internal override List<double> Parameters(double from, double to)
    {
        Spline spline = Prepare();
        List<double> result = [from];
        List<double> breaks = BSpline.Breaks(spline.Knots, spline.Points.Count, Order);
        for (int i = 0; i + 1 < breaks.Count; ++i)
        {
            foreach (double parameter in Even(breaks[i], breaks[i + 1], StepsPerSpan))
            {
                if (parameter > result[^1] && parameter < to)
                    result.Add(parameter);
            }
        }
        if (to > from)
            result.Add(to);
        return result;
    }

    internal override List<Vector3> Tessellate()
    {
        Spline spline = Prepare();
        return Parameters(spline.Begin, spline.End).ConvertAll(u => new Vector3(spline.At(u)));
    }

    private Spline Prepare()
    {
        List<Vector4> points = ControlPoints.ConvertAll(point =>
        {
            Vector4 used = Dimension == CurveDimension.TwoDimensional
                ? new Vector4(point.x, point.y, 0, point.w) : point;
            return BSpline.Weighted(used, Rational);
        });
        if (CurveType != NurbsType.Open && points.Count >= Order)
            points.AddRange(points.GetRange(0, Order - 1));
        double[] knots = BSpline.Knots(Knots, points.Count, Order, CurveType == NurbsType.Open);
        return new Spline(points, knots, Order);
    }

    private sealed record Spline(List<Vector4> Points, double[] Knots, int Order)
    {
        public double Begin => Knots[Order - 1];

        public double End => Knots[Points.Count];

        public Vector4 At(double parameter)
        {
            double u = Math.Clamp(parameter, Begin, End);
            int span = BSpline.Span(Knots, Points.Count, Order, u);
            double[] basis = BSpline.Basis(Knots, Order, span, u);
            Vector4 sum = default;
            for (int i = 0; i < Order; ++i)
                sum += Points[span - Order + 1 + i] * basis[i];
            return new Vector4(sum.x / sum.w, sum.y / sum.w, sum.z / sum.w, 1);
        }
    }
}
