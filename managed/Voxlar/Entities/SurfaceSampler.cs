using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Spreads points over a surface.</summary>
internal static class SurfaceSampler
{
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
        for (int i = 0; i < triangles.Count; i += 3)
        {
            Vector3 a = new(mesh.ControlPointList[corners[triangles[i]]]);
            Vector3 b = new(mesh.ControlPointList[corners[triangles[i + 1]]]);
            Vector3 c = new(mesh.ControlPointList[corners[triangles[i + 2]]]);
            due += (b - a).Cross(c - a).Length / 2 * density;
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

    private static double Fraction(double value) => value - Math.Floor(value);
}
