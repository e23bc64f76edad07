using System;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Makes a mesh of a triangle mesh with raw vertices; each of its vertices becomes a control point.
/// </summary>
internal static class GltfTriMesh
{
    internal static Mesh ToMesh(TriMesh source)
    {
        var mesh = new Mesh(source.Name);
        foreach (VertexField field in source.VertexDeclaration)
        {
            var values = new Vector4[source.VerticesCount];
            for (int i = 0; i < values.Length; i++)
                values[i] = source.ReadVector4(i, field);
            VertexElementVector4? element = field.Semantic switch
            {
                VertexFieldSemantic.Normal => new VertexElementNormal(),
                VertexFieldSemantic.Tangent => new VertexElementTangent(),
                VertexFieldSemantic.UV => new VertexElementUV(),
                VertexFieldSemantic.VertexColor => new VertexElementVertexColor(),
                _ => null,
            };
            if (element is not null)
            {
                element.SetData(values);
                mesh.AddElement(element);
            }
            else if (field.Semantic == VertexFieldSemantic.Position && mesh.ControlPointList.Count == 0)
            {
                mesh.ControlPointList.AddRange(values);
            }
        }
        ReadOnlySpan<int> indices = source.IndexSpan;
        for (int i = 0; i + 2 < indices.Length; i += 3)
            mesh.PolygonStore.Add(indices.Slice(i, 3));
        return mesh;
    }
}
