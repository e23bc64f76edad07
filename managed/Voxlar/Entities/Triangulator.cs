using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// Cuts polygons into triangles by clipping ears. A polygon of n corners always gives n - 2 triangles that
/// run the same way; for a simple polygon they cover it exactly, for one that crosses itself they are as good
/// as can be.
/// </summary>
internal static class Triangulator
{
    /// <summary>
    /// Cuts a polygon in space, which is taken to be flat enough to be seen along its mean normal.
    /// </summary>
    /// <param name="polygon">The corners in order.</param>
    /// <param name="triangles">Gets three places in the polygon for each triangle.</param>
    public static void Cut(ReadOnlySpan<Vector3> polygon, List<int> triangles)
    {
        if (polygon.Length == 3)
        {
            triangles.AddRange([0, 1, 2]);
            return;
        }
        if (polygon.Length < 3)
            return;
        Vector3 normal = Normal(polygon);
        double x = Math.Abs(normal.x);
        double y = Math.Abs(normal.y);
        double z = Math.Abs(normal.z);
        Vector2[] flat = new Vector2[polygon.Length];
        for (int i = 0; i < flat.Length; ++i)
        {
            Vector3 p = polygon[i];
            // The two axes left over, in the order in which the polygon runs counter-clockwise.
            if (z >= x && z >= y)
                flat[i] = normal.z >= 0 ? new Vector2(p.x, p.y) : new Vector2(p.y, p.x);
            else if (x >= y)
                flat[i] = normal.x >= 0 ? new Vector2(p.y, p.z) : new Vector2(p.z, p.y);
            else
                flat[i] = normal.y >= 0 ? new Vector2(p.z, p.x) : new Vector2(p.x, p.z);
        }
        if (flat.Length == 4)
            CutQuad(polygon, flat, triangles);
        else
            Clip(flat, Sequence(flat.Length), triangles);
    }

    /// <summary>The mean normal of a polygon, as long as twice its area.</summary>
    public static Vector3 Normal(ReadOnlySpan<Vector3> polygon)
    {
        Vector3 sum = Vector3.Origin;
        for (int i = 1; i + 1 < polygon.Length; ++i)
            sum += (polygon[i] - polygon[0]).Cross(polygon[i + 1] - polygon[0]);
        return sum;
    }

    /// <summary>Cuts a plane polygon with holes.</summary>
    /// <param name="points">All points.</param>
    /// <param name="outer">
    /// The number of points of the outer polygon, counter-clockwise, which come first.
    /// </param>
    /// <param name="holes">The numbers of points of the holes, clockwise, which follow.</param>
    /// <returns>Three places in the points for each triangle.</returns>
    public static List<int> CutWithHoles(Vector2[] points, int outer, IReadOnlyList<int> holes)
    {
        List<int> ring = new(Sequence(outer));
        List<int[]> open = new();
        int start = outer;
        foreach (int size in holes)
        {
            int[] hole = new int[size];
            for (int i = 0; i < size; ++i)
                hole[i] = start + i;
            start += size;
            open.Add(hole);
        }
        // From right to left, each hole is tied to a corner that it can see, which earlier ties do not cross.
        open.Sort((a, b) => RightmostX(points, b).CompareTo(RightmostX(points, a)));
        foreach (int[] hole in open)
            Tie(points, ring, hole);
        List<int> triangles = new();
        Clip(points, ring.ToArray(), triangles);
        return triangles;
    }

    private static void CutQuad(ReadOnlySpan<Vector3> polygon, Vector2[] flat, List<int> triangles)
    {
        bool first = Turn(flat[0], flat[1], flat[2]) > 0 && Turn(flat[0], flat[2], flat[3]) > 0;
        bool second = Turn(flat[1], flat[2], flat[3]) > 0 && Turn(flat[1], flat[3], flat[0]) > 0;
        double firstLength = (polygon[2] - polygon[0]).Length2;
        double secondLength = (polygon[3] - polygon[1]).Length2;
        // The small allowance keeps equal diagonals from being chosen by rounding.
        if (first == second ? firstLength <= secondLength * (1 + 1e-9) : first)
            triangles.AddRange([0, 1, 2, 0, 2, 3]);
        else
            triangles.AddRange([0, 1, 3, 1, 2, 3]);
    }

    private static int[] Sequence(int count)
    {
        int[] result = new int[count];
        for (int i = 0; i < count; ++i)
            result[i] = i;
        return result;
    }

    private static double Turn(Vector2 a, Vector2 b, Vector2 c) => (b - a).Cross(c - a);

    private static void Clip(Vector2[] points, int[] ring, List<int> triangles)
    {
        int count = ring.Length;
        int[] next = new int[count];
        int[] previous = new int[count];
        for (int i = 0; i < count; ++i)
        {
            next[i] = (i + 1) % count;
            previous[i] = (i + count - 1) % count;
        }

        double scale = 0;
        foreach (int index in ring)
            scale = Math.Max(scale, Math.Max(Math.Abs(points[index].x), Math.Abs(points[index].y)));
        double tolerance = scale * scale * 1e-15;
        int at = 0;
        while (count > 3)
        {
            int ear = FindEar(points, ring, next, previous, at, count, tolerance);
            triangles.AddRange([ring[previous[ear]], ring[ear], ring[next[ear]]]);
            next[previous[ear]] = next[ear];
            previous[next[ear]] = previous[ear];
            // Going on two further gives triangles of better shape than clipping a fan.
            at = next[next[ear]];
            --count;
        }
        if (count == 3)
            triangles.AddRange([ring[previous[at]], ring[at], ring[next[at]]]);
    }

    // A corner in a straight line is taken only when no true ear is left, and any corner at all when there is
    // none of those: the polygon crosses itself then.
    private static int FindEar(
        Vector2[] points, int[] ring, int[] next, int[] previous, int start, int count, double tolerance)
    {
        int straight = -1;
        int at = start;
        for (int tried = 0; tried < count; ++tried, at = next[at])
        {
            Vector2 a = points[ring[previous[at]]];
            Vector2 b = points[ring[at]];
            Vector2 c = points[ring[next[at]]];
            double turn = Turn(a, b, c);
            if (turn > tolerance)
            {
                if (IsFree(points, ring, next, previous, at, a, b, c, tolerance))
                    return at;
            }
            else if (turn >= -tolerance && straight < 0)
            {
                straight = at;
            }
        }
        return straight >= 0 ? straight : start;
    }

    private static bool IsFree(
        Vector2[] points, int[] ring, int[] next, int[] previous, int ear, Vector2 a, Vector2 b, Vector2 c,
        double tolerance)
    {
        double minX = Math.Min(a.x, Math.Min(b.x, c.x));
        double maxX = Math.Max(a.x, Math.Max(b.x, c.x));
        double minY = Math.Min(a.y, Math.Min(b.y, c.y));
        double maxY = Math.Max(a.y, Math.Max(b.y, c.y));
        for (int at = next[next[ear]]; at != previous[ear]; at = next[at])
        {
            Vector2 p = points[ring[at]];
            if (p.x < minX || p.x > maxX || p.y < minY || p.y > maxY)
                continue;
            // A tie to a hole passes its two ends twice; they are corners of the triangle and do not lie in
            // it.
            if (p == a || p == b || p == c)
                continue;
            if (Turn(a, b, p) >= -tolerance && Turn(b, c, p) >= -tolerance && Turn(c, a, p) >= -tolerance)
                return false;
        }
        return true;
    }

    private static double RightmostX(Vector2[] points, int[] hole)
    {
        double x = double.NegativeInfinity;
        foreach (int index in hole)
            x = Math.Max(x, points[index].x);
        return x;
    }

    private static void Tie(Vector2[] points, List<int> ring, int[] hole)
    {
        int begin = 0;
        for (int i = 1; i < hole.Length; ++i)
        {
            if (points[hole[i]].x > points[hole[begin]].x)
                begin = i;
        }
        Vector2 from = points[hole[begin]];
        int best = -1;
        double bestLength = double.PositiveInfinity;
        for (int i = 0; i < ring.Count; ++i)
        {
            double length = (points[ring[i]] - from).Length;
            if (length < bestLength && Sees(points, ring, i, hole, from))
            {
                best = i;
                bestLength = length;
            }
        }
        if (best < 0)
            throw new InvalidOperationException("A hole of the outline does not lie inside it.");
        List<int> way = new(hole.Length + 2);
        for (int i = 0; i <= hole.Length; ++i)
            way.Add(hole[(begin + i) % hole.Length]);
        way.Add(ring[best]);
        ring.InsertRange(best + 1, way);
    }

    private static bool Sees(Vector2[] points, List<int> ring, int target, int[] hole, Vector2 from)
    {
        Vector2 to = points[ring[target]];
        Vector2 before = points[ring[(target + ring.Count - 1) % ring.Count]];
        Vector2 after = points[ring[(target + 1) % ring.Count]];
        bool convex = Turn(before, to, after) >= 0;
        bool inside = convex ? Turn(to, after, from) >= 0 && Turn(before, to, from) >= 0
                             : Turn(to, after, from) >= 0 || Turn(before, to, from) >= 0;
        if (!inside)
            return false;
        for (int i = 0; i < ring.Count; ++i)
        {
            if (Crosses(from, to, points[ring[i]], points[ring[(i + 1) % ring.Count]]))
                return false;
        }
        for (int i = 0; i < hole.Length; ++i)
        {
            if (Crosses(from, to, points[hole[i]], points[hole[(i + 1) % hole.Length]]))
                return false;
        }
        return true;
    }

    private static bool Crosses(Vector2 a, Vector2 b, Vector2 c, Vector2 d)
    {
        if (a == c || a == d || b == c || b == d)
            return false;
        double c1 = Turn(a, b, c);
        double d1 = Turn(a, b, d);
        double a1 = Turn(c, d, a);
        double b1 = Turn(c, d, b);
        return c1 * d1 <= 0 && a1 * b1 <= 0 && (c1 != d1 || a1 != b1);
    }
}
