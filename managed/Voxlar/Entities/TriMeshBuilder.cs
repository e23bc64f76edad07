using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Fills a triangle mesh from the polygons of a mesh.</summary>
internal static class TriMeshBuilder
{
    public static void Fill(TriMesh target, Mesh mesh)
    {
        List<(VertexField Field, VertexElement? Element)> sources = new();
        foreach (VertexField field in target.VertexDeclaration)
        {
            VertexElement? element = Find(mesh, field);
            if (element is not null || field.Semantic == VertexFieldSemantic.Position)
                sources.Add((field, element));
        }
        MeshTriangles triangles = MeshTriangles.Cut(mesh);
        ReadOnlySpan<int> corners = mesh.PolygonStore.Corners;
        for (int i = 0; i < triangles.Corners.Count; ++i)
        {
            int corner = triangles.Corners[i];
            int point = corners[corner];
            int polygon = triangles.Polygons[i / 3];
            Vertex vertex = target.BeginVertex();
            foreach ((VertexField field, VertexElement? element) in sources)
            {
                if (element is null)
                    vertex.Write(field, mesh.ControlPointList[point]);
                else if (element.ValueIndex(point, corner, polygon) is int at and >= 0)
                    vertex.Write(field, Value(element, at));
            }
            target.EndVertex();
        }
    }

    // The n-th field of a meaning takes the n-th element of the kind that goes with it.
    private static VertexElement? Find(Mesh mesh, VertexField field)
    {
        VertexElementType? wanted = field.Semantic switch
        {
            VertexFieldSemantic.Binormal => VertexElementType.Binormal,
            VertexFieldSemantic.Normal => VertexElementType.Normal,
            VertexFieldSemantic.Tangent => VertexElementType.Tangent,
            VertexFieldSemantic.UV => VertexElementType.UV,
            VertexFieldSemantic.VertexColor => VertexElementType.VertexColor,
            VertexFieldSemantic.VertexCrease => VertexElementType.VertexCrease,
            VertexFieldSemantic.EdgeCrease => VertexElementType.EdgeCrease,
            VertexFieldSemantic.Visibility => VertexElementType.Visibility,
            VertexFieldSemantic.Specular => VertexElementType.Specular,
            VertexFieldSemantic.Weight => VertexElementType.Weight,
            _ => null,
        };
        int left = field.Index;
        foreach (VertexElement element in mesh.VertexElements)
        {
            if (element.VertexElementType == wanted && left-- == 0)
                return element;
        }
        return null;
    }

    private static Vector4 Value(VertexElement element, int index) => element switch
    {
        VertexElementVector4 vectors => vectors.DataList[index],
        VertexElementDoublesTemplate numbers => new Vector4(numbers.DataList[index], 0, 0, 0),
        VertexElementVisibility visibility => new Vector4(visibility.DataList[index] ? 1 : 0, 0, 0, 0),
        _ => default,
    };
}
