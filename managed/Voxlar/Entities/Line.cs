using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// Polylines over common points. Each segment is a chain of point indices; as one curve, the chains follow
/// each other, and the parameter counts the points passed. A line without segments runs through all points in
/// order.
/// </summary>
public class Line : Curve
{
    private readonly List<int[]> _segments = new();

    /// <summary>Makes a line without points and without a name.</summary>
    public Line()
        : this("")
    {
    }

    /// <summary>Makes a line without points.</summary>
    /// <param name="name">Its name.</param>
    public Line(string name)
        : base(name)
    {
    }

    /// <summary>Whether the line is drawn; true at first.</summary>
    public bool Visible { get; set; } = true;

    /// <summary>The chains of point indices.</summary>
    public IList<int[]> Segments => _segments;

    /// <summary>The points.</summary>
    internal List<Vector4> ControlPoints { get; } = new();

    internal override double Begin => 0;

    internal override double End => Math.Max(Chain().Count - 1, 0);

    /// <summary>Makes a line through points, as one segment.</summary>
    /// <param name="points">The points in order.</param>
    public static Line FromPoints(Vector3[] points)
    {
        ArgumentNullException.ThrowIfNull(points);
        Line line = new();
        foreach (Vector3 point in points)
            line.ControlPoints.Add(new Vector4(point, 1));
        line.MakeDefaultIndices();
        return line;
    }

    /// <summary>
    /// Replaces the segments by one that runs through all points in order; none when there are no points.
    /// </summary>
    public void MakeDefaultIndices()
    {
        _segments.Clear();
        if (ControlPoints.Count == 0)
            return;
        int[] all = new int[ControlPoints.Count];
        for (int i = 0; i < all.Length; ++i)
            all[i] = i;
        _segments.Add(all);
    }

    internal override Vector3 PointAt(double parameter)
    {
        List<Vector3> chain = Chain();
        if (chain.Count == 0)
            throw new InvalidOperationException("A line without points has no place.");
        int left = (int)Math.Clamp(Math.Floor(parameter), 0, Math.Max(chain.Count - 2, 0));
        double share = Math.Clamp(parameter - left, 0, 1);
        if (share == 0 || chain.Count == 1)
            return chain[left];
        return share == 1 ? chain[left + 1] : chain[left] + (chain[left + 1] - chain[left]) * share;
    }

    internal override List<double> Parameters(double from, double to)
    {
        List<double> result = new();
        if (ControlPoints.Count == 0)
            return result;
        result.Add(from);
        for (double at = Math.Floor(from) + 1; at < to; ++at)
            result.Add(at);
        if (to > from)
            result.Add(to);
        return result;
    }

    internal override List<Vector3> Tessellate() => Chain();

    private List<Vector3> Chain()
    {
        List<Vector3> chain = new();
        if (_segments.Count == 0)
            return ControlPoints.ConvertAll(point => new Vector3(point));
        foreach (int[] segment in _segments)
        {
            foreach (int index in segment)
            {
                if (index < 0 || index >= ControlPoints.Count)
                    throw new InvalidOperationException($"The line has no point {index}.");
                chain.Add(new Vector3(ControlPoints[index]));
            }
        }
        return chain;
    }
}
