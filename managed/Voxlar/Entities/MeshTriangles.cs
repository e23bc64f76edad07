using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>The triangles that the polygons of a mesh are cut into.</summary>
/// <param name="Corners">Three places in the corners of all polygons for each triangle.</param>
/// <param name="Polygons">The index of the polygon that each triangle is a part of.</param>
internal sealed record MeshTriangles(List<int> Corners, List<int> Polygons)
{
    /// <summary>Cuts the polygons of a mesh.</summary>
    /// <exception cref="InvalidOperationException">
    /// A polygon has a control point that does not exist.
    /// </exception>
    public static MeshTriangles Cut(Mesh mesh)
    {
        PolygonStore polygons = mesh.PolygonStore;
        MeshTriangles result = new(new List<int>(polygons.CornerCount), new List<int>(polygons.Count));
        List<int> local = new();
        Vector3[] points = [];
        for (int i = 0; i < polygons.Count; ++i)
        {
            ReadOnlySpan<int> polygon = polygons.Polygon(i);
            if (points.Length < polygon.Length)
                points = new Vector3[polygon.Length];
            for (int k = 0; k < polygon.Length; ++k)
                points[k] = Point(mesh.ControlPointList, polygon[k], i);
            local.Clear();
            Triangulator.Cut(points.AsSpan(0, polygon.Length), local);
            int start = polygons.Start(i);
            foreach (int corner in local)
                result.Corners.Add(start + corner);
            for (int k = 0; k < local.Count; k += 3)
                result.Polygons.Add(i);
        }
        return result;
    }

    private static Vector3 Point(List<Vector4> points, int index, int polygon) => index < points.Count
        ? new Vector3(points[index])
        : throw new InvalidOperationException($"The polygon {polygon} has a corner at {index}, "
            + $"but there are {points.Count} control points.");
}
