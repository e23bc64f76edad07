using System;
using System.Collections.Generic;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Entities;

/// <summary>Measures meshes from their polygons alone.</summary>
internal static class MeshMeasure
{
    public static Vector3 Point(Mesh mesh, int index) => new(mesh.ControlPoints[index]);

    public static double Volume(Mesh mesh)
    {
        double sum = 0;
        foreach (int[] polygon in mesh.Polygons)
        {
            for (int k = 1; k + 1 < polygon.Length; k++)
            {
                sum += Point(mesh, polygon[0]).Dot(
                    Point(mesh, polygon[k]).Cross(Point(mesh, polygon[k + 1])));
            }
        }
        return sum / 6;
    }

    public static Vector3 AreaVector(Mesh mesh, int[] polygon)
    {
        Vector3 sum = Vector3.Origin;
        for (int k = 1; k + 1 < polygon.Length; k++)
        {
            Vector3 origin = Point(mesh, polygon[0]);
            sum += (Point(mesh, polygon[k]) - origin).Cross(Point(mesh, polygon[k + 1]) - origin) * 0.5;
        }
        return sum;
    }

    public static double Area(Mesh mesh)
    {
        double sum = 0;
        foreach (int[] polygon in mesh.Polygons)
            sum += AreaVector(mesh, polygon).Length;
        return sum;
    }

    /// <summary>
    /// The number of points, less that of edges, plus that of polygons; only points in use count.
    /// </summary>
    public static int Euler(Mesh mesh)
    {
        HashSet<int> points = new();
        foreach (int[] polygon in mesh.Polygons)
            points.UnionWith(polygon);
        return points.Count - mesh.Edges.Count / 2 + mesh.PolygonCount;
    }

    /// <summary>
    /// Every edge is run through once in either direction, and no control point is without a polygon.
    /// </summary>
    public static void AssertClosed(Mesh mesh)
    {
        HashSet<(int, int)> seen = new();
        HashSet<int> used = new();
        foreach (int[] polygon in mesh.Polygons)
        {
            used.UnionWith(polygon);
            for (int k = 0; k < polygon.Length; k++)
            {
                (int, int) edge = (polygon[k], polygon[(k + 1) % polygon.Length]);
                Assert.True(seen.Add(edge), $"the edge {edge} is run through twice in the same direction");
            }
        }
        foreach ((int from, int to) in seen)
            Assert.True(seen.Contains((to, from)), $"the edge {(from, to)} has a polygon on one side only");
        Assert.Equal(mesh.ControlPoints.Count, used.Count);
    }

    /// <summary>
    /// The normals are of length 1 and on the side from which the polygon runs counter-clockwise, and every
    /// corner has texture coordinates.
    /// </summary>
    public static void AssertCornerValues(Mesh mesh, double minimumCosine)
    {
        VertexElementNormal normals =
            Assert.IsType<VertexElementNormal>(mesh.GetElement(VertexElementType.Normal));
        VertexElementUV uv = Assert.IsType<VertexElementUV>(mesh.GetElement(VertexElementType.UV));
        Assert.Equal(MappingMode.PolygonVertex, normals.MappingMode);
        Assert.Equal(ReferenceMode.IndexToDirect, normals.ReferenceMode);
        int corner = 0;
        foreach (int[] polygon in mesh.Polygons)
        {
            Vector3 face = AreaVector(mesh, polygon).Normalize();
            Assert.True(face.Length > 0.5, "a polygon has no area");
            foreach (int _ in polygon)
            {
                Vector3 normal = new(normals.Data[normals.Indices[corner]]);
                Close.To(1, normal.Length);
                Assert.True(normal.Dot(face) > minimumCosine, $"normal {normal} on a face towards {face}");
                Assert.InRange(uv.Indices[corner], 0, uv.Data.Count - 1);
                corner++;
            }
        }
        Assert.Equal(corner, normals.Indices.Count);
        Assert.Equal(corner, uv.Indices.Count);
    }
}
