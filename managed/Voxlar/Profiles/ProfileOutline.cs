using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>
/// The boundary of a profile: one outer polygon, counter-clockwise, and the polygons of its holes, clockwise.
/// So the inside is to the left of every edge.
/// </summary>
internal sealed class ProfileOutline
{
    /// <summary>The number of edges that stand for a full circle.</summary>
    public const int CircleSegments = 32;

    /// <summary>Makes an outline; polygons that run the wrong way are turned round.</summary>
    public ProfileOutline(IReadOnlyList<Vector2> outer, params IReadOnlyList<Vector2>[] holes)
    {
        Outer = Oriented(outer, counterClockwise: true);
        Vector2[][] turned = new Vector2[holes.Length][];
        for (int i = 0; i < holes.Length; ++i)
            turned[i] = Oriented(holes[i], counterClockwise: false);
        Holes = turned;
    }

    /// <summary>The outer polygon, counter-clockwise.</summary>
    public Vector2[] Outer { get; }

    /// <summary>The holes, clockwise.</summary>
    public IReadOnlyList<Vector2[]> Holes { get; }

    /// <summary>The area inside.</summary>
    public double Area
    {
        get
        {
            double area = SignedArea(Outer);
            foreach (Vector2[] hole in Holes)
                area += SignedArea(hole);
            return area;
        }
    }

    /// <summary>The area of a polygon, positive when it runs counter-clockwise.</summary>
    public static double SignedArea(IReadOnlyList<Vector2> polygon)
    {
        double sum = 0;
        for (int i = 0; i < polygon.Count; ++i)
            sum += polygon[i].Cross(polygon[(i + 1) % polygon.Count]);
        return sum / 2;
    }

    /// <summary>An ellipse about the origin, counter-clockwise.</summary>
    public static Vector2[] Ellipse(double semiAxis1, double semiAxis2)
    {
        Vector2[] points = new Vector2[CircleSegments];
        for (int i = 0; i < points.Length; ++i)
        {
            (double sin, double cos) = Math.SinCos(2 * Math.PI * i / points.Length);
            points[i] = new Vector2(semiAxis1 * cos, semiAxis2 * sin);
        }
        return points;
    }

    /// <summary>
    /// Rounds the corners of a polygon. A radius that does not fit on the edges at its corner is reduced
    /// until it does.
    /// </summary>
    /// <param name="corners">
    /// The corners in order, each with the radius of its rounding; 0 leaves it sharp.
    /// </param>
    public static List<Vector2> Rounded(params ReadOnlySpan<(double X, double Y, double Radius)> corners)
    {
        List<Vector2> result = new();
        for (int i = 0; i < corners.Length; ++i)
        {
            (double x, double y, double radius) = corners[i];
            (double px, double py, double _) = corners[(i + corners.Length - 1) % corners.Length];
            (double nx, double ny, double _) = corners[(i + 1) % corners.Length];
            Vector2 corner = new(x, y);
            Vector2 toPrevious = new(px - x, py - y);
            Vector2 toNext = new(nx - x, ny - y);
            AddCorner(result, corner, toPrevious, toNext, radius);
        }
        return result;
    }

    private static void AddCorner(List<Vector2> result, Vector2 corner, Vector2 toPrevious, Vector2 toNext,
        double radius)
    {
        Vector2 a = toPrevious.Normalize();
        Vector2 b = toNext.Normalize();
        double turn = Math.PI - Math.Acos(Math.Clamp(a.Dot(b), -1, 1));
        if (radius <= 0 || turn < 1e-9 || Math.PI - turn < 1e-9)
        {
            result.Add(corner);
            return;
        }
        double reach = Math.Min(radius * Math.Tan(turn / 2), Math.Min(toPrevious.Length, toNext.Length) / 2);
        double fitted = reach / Math.Tan(turn / 2);
        Vector2 centre = corner + (a + b).Normalize() * (fitted / Math.Cos(turn / 2));
        Vector2 start = corner + a * reach - centre;
        int steps = Math.Max((int)Math.Ceiling(turn / (2 * Math.PI) * CircleSegments - 1e-9), 1);
        double sign = b.Cross(a) > 0 ? 1 : -1;
        for (int i = 0; i <= steps; ++i)
        {
            (double sin, double cos) = Math.SinCos(sign * turn * i / steps);
            result.Add(centre + new Vector2(start.x * cos - start.y * sin, start.x * sin + start.y * cos));
        }
    }

    // A point that repeats its neighbour would make an edge without a direction, so it is left out.
    private static Vector2[] Oriented(IReadOnlyList<Vector2> polygon, bool counterClockwise)
    {
        List<Vector2> points = new(polygon.Count);
        foreach (Vector2 point in polygon)
        {
            if (points.Count == 0 || (point - points[^1]).Length > 1e-12)
                points.Add(point);
        }
        while (points.Count > 1 && (points[0] - points[^1]).Length <= 1e-12)
            points.RemoveAt(points.Count - 1);
        if (points.Count < 3)
            throw new InvalidOperationException(
                "The outline of a profile needs at least three different points.");
        if (SignedArea(points) > 0 != counterClockwise)
            points.Reverse();
        return points.ToArray();
    }
}
