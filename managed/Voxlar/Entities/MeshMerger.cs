using System;
using System.Collections.Generic;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Puts meshes together to one, each in its place.</summary>
internal sealed class MeshMerger
{
    private readonly List<Part> _parts = new();
    private readonly HashSet<Node> _seen = new();

    /// <summary>
    /// Adds what can become a mesh on a node and below it; excluded nodes and entities are left out.
    /// </summary>
    public void Add(Node root)
    {
        foreach (Node node in NodeTree.Walk(root, skipExcluded: true))
        {
            if (!_seen.Add(node))
                continue;
            foreach (Entity entity in node.Entities)
            {
                if (!entity.Excluded && entity is IMeshConvertible convertible)
                    _parts.Add(new Part(convertible.ToMesh(), node, node.EvaluateGlobalTransform(true)));
            }
        }
    }

    /// <summary>Makes the mesh. Elements that belong to edges are left out, as edges change.</summary>
    public Mesh Merge()
    {
        Mesh result = new();
        foreach (Part part in _parts)
        {
            int offset = result.ControlPointList.Count;
            foreach (Vector4 point in part.Mesh.ControlPointList)
                result.ControlPointList.Add(new Vector4(new Vector3(point) * part.Transform, 1));
            bool mirrored = part.Transform.Determinant < 0;
            foreach (int[] polygon in part.Mesh.PolygonStore)
            {
                for (int k = 0; k < polygon.Length; ++k)
                    polygon[k] += offset;
                if (mirrored)
                    Array.Reverse(polygon);
                result.PolygonStore.Add(polygon.AsSpan());
            }
        }
        MergeMaterials(result);
        foreach ((VertexElementType type, TextureMapping mapping) in Kinds())
            MergeElement(result, type, mapping);
        return result;
    }

    private List<(VertexElementType, TextureMapping)> Kinds()
    {
        List<(VertexElementType, TextureMapping)> kinds = new();
        foreach (Part part in _parts)
        {
            foreach (VertexElement element in part.Mesh.VertexElements)
            {
                (VertexElementType, TextureMapping) kind = (element.VertexElementType, Mapping(element));
                bool merged = element is not VertexElementMaterial and not VertexElementUserData
                    && element.MappingMode != MappingMode.Edge;
                if (merged && !kinds.Contains(kind))
                    kinds.Add(kind);
            }
        }
        return kinds;
    }

    private static TextureMapping Mapping(VertexElement element) =>
        element is VertexElementUV uv ? uv.TextureMapping : default;

    // Vectors are kept once and selected for each corner; all else is given for each polygon or control
    // point.
    private void MergeElement(Mesh result, VertexElementType type, TextureMapping mapping)
    {
        VertexElement target =
            type == VertexElementType.UV ? new VertexElementUV(mapping) : VertexElementFactory.Create(type);
        bool vectors = target is VertexElementVector4;
        target.MappingMode = vectors ? MappingMode.PolygonVertex
            : target is VertexElementDoublesTemplate ? MappingMode.ControlPoint : MappingMode.Polygon;
        target.ReferenceMode = vectors ? ReferenceMode.IndexToDirect : ReferenceMode.Direct;
        int none = -1;
        foreach (Part part in _parts)
        {
            VertexElement? source = part.Find(type, mapping);
            PolygonStore polygons = part.Mesh.PolygonStore;
            if (target is VertexElementVector4 vectorTarget)
            {
                AppendVectors(part, source as VertexElementVector4, vectorTarget, ref none);
                continue;
            }
            int count = target.MappingMode == MappingMode.Polygon ? polygons.Count
                : part.Mesh.ControlPointList.Count;
            for (int i = 0; i < count; ++i)
            {
                int value = source is null ? -1
                    : target.MappingMode == MappingMode.Polygon ? source.ValueIndex(-1, polygons.Start(i), i)
                    : source.ValueIndex(i, -1, -1);
                if (value >= 0)
                    target.AppendValue(source!, value);
                else
                    target.AppendDefault();
            }
        }
        result.VertexElements.Add(target);
    }

    private static void AppendVectors(Part part, VertexElementVector4? source, VertexElementVector4 target,
        ref int none)
    {
        int offset = target.DataList.Count;
        if (source is not null)
        {
            foreach (Vector4 value in source.DataList)
                target.DataList.Add(part.Transformed(value, source.VertexElementType));
        }
        PolygonStore polygons = part.Mesh.PolygonStore;
        bool mirrored = part.Transform.Determinant < 0;
        for (int i = 0; i < polygons.Count; ++i)
        {
            int start = polygons.Start(i);
            ReadOnlySpan<int> polygon = polygons.Polygon(i);
            for (int k = 0; k < polygon.Length; ++k)
            {
                int at = mirrored ? polygon.Length - 1 - k : k;
                int value = source?.ValueIndex(polygon[at], start + at, i) ?? -1;
                if (value < 0 && none < 0)
                {
                    none = target.DataList.Count;
                    target.AppendDefault();
                }
                target.IndexList.Add(value < 0 ? none : offset + value);
            }
        }
    }

    // Materials are numbered in the order in which they are first met; nodes without one share a number.
    private void MergeMaterials(Mesh result)
    {
        List<Material?> numbers = new();
        VertexElementMaterial target = new();
        bool given = false;
        foreach (Part part in _parts)
        {
            VertexElementMaterial? source =
                part.Mesh.GetElement(VertexElementType.Material) as VertexElementMaterial;
            given |= source is not null;
            for (int i = 0; i < part.Mesh.PolygonCount; ++i)
            {
                int index = source?.MaterialOf(i) ?? 0;
                Material? material = index < part.Node.Materials.Count ? part.Node.Materials[index] : null;
                int number = numbers.IndexOf(material);
                if (number < 0)
                {
                    number = numbers.Count;
                    numbers.Add(material);
                }
                target.IndexList.Add(number);
            }
        }
        if (given || numbers.Count > 1)
            result.VertexElements.Add(target);
    }

    private sealed record Part(Mesh Mesh, Node Node, Matrix4 Transform)
    {
        private readonly Matrix4 _forNormals = Transform.Inverse().Transpose();

        public VertexElement? Find(VertexElementType type, TextureMapping mapping) =>
            type == VertexElementType.UV ? Mesh.GetVertexElementOfUV(mapping) : Mesh.GetElement(type);

        public Vector4 Transformed(Vector4 value, VertexElementType type) => type switch
        {
            VertexElementType.Normal =>
                new Vector4(_forNormals.TransformDirection(new Vector3(value)).Normalize(), value.w),
            VertexElementType.Tangent or VertexElementType.Binormal =>
                new Vector4(Transform.TransformDirection(new Vector3(value)).Normalize(), value.w),
            _ => value,
        };
    }
}
