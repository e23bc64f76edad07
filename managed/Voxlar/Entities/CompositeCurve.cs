using System;
using System.Collections.Generic;
using System.Linq;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// Curves that follow each other. The n-th segment, counted from 0, takes the parameters from n to n + 1.
/// </summary>
public class CompositeCurve : Curve
{
    /// <summary>Makes a curve without segments.</summary>
    public CompositeCurve()
        : base("")
    {
    }

    /// <summary>The segments in order.</summary>
    public List<Segment> Segments { get; } = new();

    internal override double Begin => 0;

    internal override double End => Segments.Count;

    /// <summary>Appends a curve.</summary>
    /// <param name="curve">The curve.</param>
    /// <param name="sameDirection">Whether it is run through from its begin to its end.</param>
    public void AddSegment(Curve curve, bool sameDirection)
    {
        ArgumentNullException.ThrowIfNull(curve);
        Segments.Add(new Segment { Curve = curve, SameDirection = sameDirection });
    }

    internal override Vector3 PointAt(double parameter)
    {
        (Segment segment, double share) = Locate(parameter);
        Curve curve = segment.Checked;
        return curve.PointAt(segment.SameDirection ? curve.Begin + (curve.End - curve.Begin) * share
                                                   : curve.End - (curve.End - curve.Begin) * share);
    }

    internal override List<double> Parameters(double from, double to)
    {
        List<double> result = new();
        for (int i = 0; i < Segments.Count; ++i)
        {
            Segment segment = Segments[i];
            Curve curve = segment.Checked;
            double length = curve.End - curve.Begin;
            List<double> own = curve.Parameters(curve.Begin, curve.End);
            if (!segment.SameDirection)
                own.Reverse();
            foreach (double parameter in own)
            {
                double share = length == 0 ? 0 : (parameter - curve.Begin) / length;
                double at = i + (segment.SameDirection ? share : 1 - share);
                if (at > from && at < to && (result.Count == 0 || at > result[^1]))
                    result.Add(at);
            }
        }
        result.Insert(0, from);
        if (to > from)
            result.Add(to);
        return result;
    }

    // Whole curves give their own points, so that no rounding keeps ends from meeting.
    internal override List<Vector3> Tessellate()
    {
        List<Vector3> result = new();
        foreach (Segment segment in Segments)
        {
            List<Vector3> points = segment.Checked.Tessellate();
            if (!segment.SameDirection)
                points.Reverse();
            bool joined = result.Count > 0 && points.Count > 0 && (points[0] - result[^1]).Length < 1e-9;
            result.AddRange(joined ? points.GetRange(1, points.Count - 1) : points);
        }
        return result;
    }

    internal override bool IsMadeOf(Curve other) =>
        base.IsMadeOf(other) || Segments.Any(segment => segment.Curve is not null && segment.Checked.IsMadeOf(other));

    private (Segment Segment, double Share) Locate(double parameter)
    {
        if (Segments.Count == 0)
            throw new InvalidOperationException("A composite curve without segments has no place.");
        int index = (int)Math.Clamp(Math.Floor(parameter), 0, Segments.Count - 1);
        return (Segments[index], Math.Clamp(parameter - index, 0, 1));
    }

    /// <summary>A part of a composite curve.</summary>
    public class Segment
    {
        /// <summary>The curve.</summary>
        public Curve? Curve { get; set; }

        /// <summary>Whether the curve is run through from its begin to its end; true at first.</summary>
        public bool SameDirection { get; set; } = true;

        internal Curve Checked => Part(Curve);
    }
}
