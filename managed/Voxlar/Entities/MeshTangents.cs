using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Finds the directions of texture space on meshes.</summary>
internal static class MeshTangents
{
    /// <summary>
    /// Adds tangents and binormals, in place of those the mesh has. Corners that share control point, normal
    /// and texture coordinates share them.
    /// </summary>
    /// <exception cref="InvalidOperationException">The mesh has no texture coordinates.</exception>
    public static void Build(Mesh mesh)
    {
        VertexElementUV coordinates = mesh.GetVertexElementOfUV(TextureMapping.Diffuse)
            ?? mesh.GetElement(VertexElementType.UV) as VertexElementUV
            ?? throw new InvalidOperationException(
                "Tangents need texture coordinates, which the mesh does not have.");
        VertexElementNormal normals = mesh.GetElement(VertexElementType.Normal) as VertexElementNormal
            ?? MeshNormals.Generate(mesh);

        Dictionary<(int Point, int Normal, int UV), int> groups = new();
        List<(Vector3 U, Vector3 V, Vector3 Normal)> sums = new();
        MeshTriangles triangles = MeshTriangles.Cut(mesh);
        ReadOnlySpan<int> corners = mesh.PolygonStore.Corners;
        int[] groupOf = new int[corners.Length];
        for (int i = 0; i < mesh.PolygonCount; ++i)
        {
            int start = mesh.PolygonStore.Start(i);
            for (int corner = start; corner < start + mesh.PolygonStore.Size(i); ++corner)
            {
                int normal = normals.ValueIndex(corners[corner], corner, i);
                int uv = coordinates.ValueIndex(corners[corner], corner, i);
                (int, int, int) key = (corners[corner], normal, uv);
                if (!groups.TryGetValue(key, out groupOf[corner]))
                {
                    groupOf[corner] = sums.Count;
                    groups.Add(key, sums.Count);
                    Vector3 value = normal < 0 ? Vector3.ZAxis
                        : new Vector3(normals.DataList[normal]).Normalize();
                    sums.Add((Vector3.Origin, Vector3.Origin, value));
                }
            }
        }
        for (int i = 0; i < triangles.Corners.Count; i += 3)
            AddTriangle(mesh, coordinates, triangles, i, groupOf, sums);

        VertexElementTangent tangents = new();
        VertexElementBinormal binormals = new();
        foreach (VertexElementVector4 element in new VertexElementVector4[] { tangents, binormals })
        {
            element.MappingMode = MappingMode.PolygonVertex;
            element.ReferenceMode = ReferenceMode.IndexToDirect;
            element.IndexList.AddRange(groupOf);
        }
        foreach ((Vector3 u, Vector3 v, Vector3 normal) in sums)
        {
            Vector3 tangent = (u - normal * normal.Dot(u)).Normalize();
            if (tangent.Length == 0)
                tangent = AnyAcross(normal);
            double hand = normal.Cross(tangent).Dot(v) < 0 ? -1 : 1;
            tangents.DataList.Add(new Vector4(tangent, hand));
            binormals.DataList.Add(new Vector4(normal.Cross(tangent) * hand, 0));
        }
        for (int i = mesh.VertexElements.Count - 1; i >= 0; --i)
        {
            if (mesh.VertexElements[i] is VertexElementTangent or VertexElementBinormal)
                mesh.VertexElements.RemoveAt(i);
        }
        mesh.VertexElements.Add(tangents);
        mesh.VertexElements.Add(binormals);
    }

    private static void AddTriangle(
        Mesh mesh, VertexElementUV coordinates, MeshTriangles triangles, int first, int[] groupOf,
        List<(Vector3 U, Vector3 V, Vector3 Normal)> sums)
    {
        ReadOnlySpan<int> corners = mesh.PolygonStore.Corners;
        Span<Vector3> p = stackalloc Vector3[3];
        Span<Vector2> t = stackalloc Vector2[3];
        for (int k = 0; k < 3; ++k)
        {
            int corner = triangles.Corners[first + k];
            p[k] = MeshPoints.At(mesh, corners[corner]);
            int value = coordinates.ValueIndex(corners[corner], corner, triangles.Polygons[first / 3]);
            if (value < 0)
                return;
            t[k] = new Vector2(coordinates.DataList[value].x, coordinates.DataList[value].y);
        }
        Vector3 e1 = p[1] - p[0];
        Vector3 e2 = p[2] - p[0];
        Vector2 d1 = t[1] - t[0];
        Vector2 d2 = t[2] - t[0];
        double area = d1.Cross(d2);
        if (area == 0)
            return;
        Vector3 u = (e1 * d2.y - e2 * d1.y) / area;
        Vector3 v = (e2 * d1.x - e1 * d2.x) / area;
        for (int k = 0; k < 3; ++k)
        {
            Vector3 side = p[(k + 1) % 3] - p[k];
            double angle = side.AngleBetween(p[(k + 2) % 3] - p[k]);
            int group = groupOf[triangles.Corners[first + k]];
            (Vector3 sumU, Vector3 sumV, Vector3 normal) = sums[group];
            sums[group] = (sumU + u.Normalize() * angle, sumV + v.Normalize() * angle, normal);
        }
    }

    private static Vector3 AnyAcross(Vector3 normal)
    {
        Vector3 axis = Math.Abs(normal.x) < 0.9 ? Vector3.XAxis : Vector3.YAxis;
        return (axis - normal * normal.Dot(axis)).Normalize();
    }
}
