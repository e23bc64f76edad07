using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Finds normals of meshes.</summary>
internal static class MeshNormals
{
    /// <summary>
    /// Makes smooth normals: at each control point the mean of the polygons' normals, weighted by their
    /// angles there. With smoothing groups, only polygons with a common group are smoothed, and normals
    /// belong to corners.
    /// </summary>
    public static VertexElementNormal Generate(Mesh mesh)
    {
        PolygonStore polygons = mesh.PolygonStore;
        Vector3[] faces = new Vector3[polygons.Count];
        Vector3[] shares = new Vector3[polygons.CornerCount];
        List<Vector3> points = new();
        for (int i = 0; i < polygons.Count; ++i)
        {
            points.Clear();
            foreach (int index in polygons.Polygon(i))
                points.Add(MeshPoints.At(mesh, index));
            faces[i] = Triangulator.Normal(points.ToArray()).Normalize();
            int start = polygons.Start(i);
            for (int k = 0; k < points.Count; ++k)
            {
                Vector3 back = points[(k + points.Count - 1) % points.Count] - points[k];
                Vector3 forth = points[(k + 1) % points.Count] - points[k];
                shares[start + k] = faces[i] * back.AngleBetween(forth);
            }
        }
        return mesh.GetElement(VertexElementType.SmoothingGroup) is VertexElementSmoothingGroup groups
            ? ByGroup(mesh, groups, faces, shares)
            : Smooth(mesh, shares);
    }

    private static VertexElementNormal Smooth(Mesh mesh, Vector3[] shares)
    {
        Vector3[] sums = new Vector3[mesh.ControlPointList.Count];
        ReadOnlySpan<int> corners = mesh.PolygonStore.Corners;
        for (int i = 0; i < corners.Length; ++i)
            sums[corners[i]] += shares[i];
        VertexElementNormal normals = new();
        foreach (Vector3 sum in sums)
            normals.DataList.Add(new Vector4(sum.Normalize(), 0));
        return normals;
    }

    private static VertexElementNormal ByGroup(
        Mesh mesh, VertexElementSmoothingGroup groups, Vector3[] faces, Vector3[] shares)
    {
        PolygonStore polygons = mesh.PolygonStore;
        int[] masks = new int[polygons.Count];
        List<(int Corner, int Polygon)>[] around = new List<(int, int)>[mesh.ControlPointList.Count];
        ReadOnlySpan<int> corners = polygons.Corners;
        for (int i = 0; i < polygons.Count; ++i)
        {
            int value = groups.ValueIndex(-1, -1, i);
            masks[i] = value < 0 ? 0 : groups.Data[value];
            int start = polygons.Start(i);
            for (int k = 0; k < polygons.Size(i); ++k)
                (around[corners[start + k]] ??= new()).Add((start + k, i));
        }
        VertexElementNormal normals = new() { MappingMode = MappingMode.PolygonVertex };
        for (int i = 0; i < polygons.Count; ++i)
        {
            int start = polygons.Start(i);
            for (int k = 0; k < polygons.Size(i); ++k)
            {
                Vector3 sum = Vector3.Origin;
                foreach ((int corner, int polygon) in around[corners[start + k]])
                {
                    if ((masks[polygon] & masks[i]) != 0)
                        sum += shares[corner];
                }
                Vector3 normal = sum.Normalize();
                normals.DataList.Add(new Vector4(normal.Length == 0 ? faces[i] : normal, 0));
            }
        }
        return normals;
    }
}
