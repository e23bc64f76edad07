using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Spreads points over a surface.</summary>
internal static class SurfaceSampler
{
    // What a cloud of points can hold in a few gigabytes; more is a density in the wrong unit.
    private const double MostPoints = 100_000_000;

    /// <summary>
    /// Gives points in proportion to the area. What is left over of a point in one triangle counts in the
    /// next, so that small triangles get their share too.
    /// </summary>
    public static void Sample(Mesh mesh, double density, Action<Vector3> take)
    {
        double due = 0.5;
        long taken = 0;
        List<int> triangles = MeshTriangles.Cut(mesh).Corners;
        ReadOnlySpan<int> corners = mesh.PolygonStore.Corners;
        double wanted = 0;
        for (int i = 0; i < triangles.Count; i += 3)
        {
            (Vector3 a, Vector3 b, Vector3 c) = CornersAt(mesh, corners, triangles, i);
            wanted += AreaOf(a, b, c) * density;
        }
        if (wanted > MostPoints)
            throw new ArgumentOutOfRangeException(nameof(density), density, $"{wanted:0} points are too many.");
        for (int i = 0; i < triangles.Count; i += 3)
        {
            (Vector3 a, Vector3 b, Vector3 c) = CornersAt(mesh, corners, triangles, i);
            due += AreaOf(a, b, c) * density;
            for (; due >= 1; --due, ++taken)
            {
                // A sequence of the plastic number fills the unit square evenly; folding it gives the
                // triangle.
                double u = Fraction(0.5 + taken * 0.7548776662466927);
                double v = Fraction(0.5 + taken * 0.5698402909980532);
                if (u + v > 1)
                    (u, v) = (1 - u, 1 - v);
                take(a + (b - a) * u + (c - a) * v);
            }
        }
    }

    private static (Vector3 A, Vector3 B, Vector3 C) CornersAt(
        Mesh mesh, ReadOnlySpan<int> corners, List<int> triangles, int at) => (
        new(mesh.ControlPointList[corners[triangles[at]]]),
        new(mesh.ControlPointList[corners[triangles[at + 1]]]),
        new(mesh.ControlPointList[corners[triangles[at + 2]]]));

    private static double AreaOf(Vector3 a, Vector3 b, Vector3 c) => (b - a).Cross(c - a).Length / 2;

    private static double Fraction(double value) => value - Math.Floor(value);
}
