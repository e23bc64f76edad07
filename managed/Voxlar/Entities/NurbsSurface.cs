using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A rational B-spline surface over a grid of control points, u running fastest. The w of a control point is
/// its weight.
/// </summary>
public class NurbsSurface : Geometry, IMeshConvertible
{
    /// <summary>Makes a surface without points and without a name.</summary>
    public NurbsSurface()
        : this("")
    {
    }

    /// <summary>Makes a surface without points.</summary>
    /// <param name="name">Its name.</param>
    public NurbsSurface(string name)
        : base(name)
    {
    }

    /// <summary>The direction u.</summary>
    public NurbsDirection U { get; } = new();

    /// <summary>The direction v.</summary>
    public NurbsDirection V { get; } = new();

    /// <summary>
    /// Makes a mesh of quads, each knot span divided as its direction tells. Its outside is where the
    /// direction of growing u crossed with that of growing v points.
    /// </summary>
    /// <exception cref="InvalidOperationException">
    /// The counts of the directions do not fit the control points, the orders or the knots.
    /// </exception>
    public Mesh ToMesh()
    {
        if (U.Count < 1 || V.Count < 1 || (long)U.Count * V.Count != ControlPoints.Count)
        {
            throw new InvalidOperationException(
                $"A surface of {U.Count} x {V.Count} points does not have {ControlPoints.Count} of them.");
        }
        Axis u = new(U);
        Axis v = new(V);
        SurfaceBuilder surface = new();
        surface.Grid(u.Samples.Count - 1, v.Samples.Count - 1, (i, j) =>
        {
            double su = u.Samples[i];
            double sv = v.Samples[j];
            return new SurfaceBuilder.Corner(
                At(u, v, u.Place(i), v.Place(j)), Normal(u, v, su, sv),
                new Vector2((su - u.Begin) / (u.End - u.Begin), (sv - v.Begin) / (v.End - v.Begin)));
        });
        return surface.ToMesh(Name);
    }

    private Vector3 At(Axis u, Axis v, double su, double sv)
    {
        (int spanU, double[] basisU) = u.Basis(su);
        (int spanV, double[] basisV) = v.Basis(sv);
        Vector4 sum = default;
        for (int j = 0; j < basisV.Length; ++j)
        {
            int row = (spanV - basisV.Length + 1 + j) % V.Count;
            for (int i = 0; i < basisU.Length; ++i)
            {
                int column = (spanU - basisU.Length + 1 + i) % U.Count;
                Vector4 point = BSpline.Weighted(ControlPoints[row * U.Count + column], rational: true);
                sum += point * (basisU[i] * basisV[j]);
            }
        }
        return new Vector3(sum.x / sum.w, sum.y / sum.w, sum.z / sum.w);
    }

    // Differences over a small step. Where the surface has no extent in one direction, as at a pole, the step
    // goes inwards.
    private Vector3 Normal(Axis u, Axis v, double su, double sv)
    {
        double du = (u.End - u.Begin) * 1e-5;
        double dv = (v.End - v.Begin) * 1e-5;
        for (double inward = 0; inward < 4; inward += 3)
        {
            double cu = Math.Clamp(su, u.Begin + du * (1 + inward), u.End - du * (1 + inward));
            double cv = Math.Clamp(sv, v.Begin + dv * (1 + inward), v.End - dv * (1 + inward));
            Vector3 along = At(u, v, cu + du, cv) - At(u, v, cu - du, cv);
            Vector3 across = At(u, v, cu, cv + dv) - At(u, v, cu, cv - dv);
            Vector3 normal = along.Normalize().Cross(across.Normalize());
            if (normal.Length > 1e-6)
                return normal.Normalize();
        }
        return Vector3.ZAxis;
    }

    private sealed class Axis
    {
        private readonly double[] _knots;
        private readonly int _order;
        private readonly int _count;
        private readonly bool _closed;

        public Axis(NurbsDirection direction)
        {
            _closed = direction.Type != NurbsType.Open;
            _order = direction.Order;
            _count = direction.Count + (_closed ? Math.Max(_order - 1, 0) : 0);
            _knots = BSpline.Knots(direction.Knots, _count, _order, !_closed);
            List<double> breaks = BSpline.Breaks(_knots, _count, _order);
            if (breaks.Count < 2)
                throw new InvalidOperationException("The knots of the surface leave no span.");
            int divisions = Math.Max(direction.Divisions, 1);
            for (int i = 0; i + 1 < breaks.Count; ++i)
            {
                for (int k = 0; k < divisions; ++k)
                    Samples.Add(breaks[i] + (breaks[i + 1] - breaks[i]) * k / divisions);
            }
            Samples.Add(breaks[^1]);
        }

        public List<double> Samples { get; } = new();

        public double Begin => _knots[_order - 1];

        public double End => _knots[_count];

        // A closed direction ends exactly where it begins, so that the mesh closes.
        public double Place(int sample) =>
            _closed && sample == Samples.Count - 1 ? Samples[0] : Samples[sample];

        public (int Span, double[] Values) Basis(double parameter)
        {
            int span = BSpline.Span(_knots, _count, _order, parameter);
            return (span, BSpline.Basis(_knots, _order, span, parameter));
        }
    }
}
