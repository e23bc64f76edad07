using System;
using System.Collections.Generic;
using System.Numerics;
using System.Runtime.InteropServices;
using Velbor.Voxlar.Entities;
using Vector4 = Velbor.Voxlar.Utilities.Vector4;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// The vertices of a geometry as a document needs them: one index for all attributes. Where every value
/// belongs to a control point, the control points are the vertices, in their order, used or not. Otherwise
/// the corners with equal control point and equal values become one vertex, and control points that no
/// polygon uses are left out.
/// </summary>
internal sealed class GltfVertices
{
    private readonly VertexElement[] _elements;
    private readonly int[]?[] _valueOfVertex;

    private GltfVertices(VertexElement[] elements, int count)
    {
        _elements = elements;
        _valueOfVertex = new int[]?[elements.Length];
        Count = count;
    }

    internal int Count { get; private set; }

    /// <summary>The control point of each vertex; null where they are the same.</summary>
    internal int[]? ControlPoints { get; private set; }

    /// <summary>The vertex of each corner of the mesh; null where it is the corner's control point.</summary>
    internal int[]? Corners { get; private set; }

    internal static GltfVertices Of(Geometry geometry, VertexElement[] elements)
    {
        bool isPlain = Array.TrueForAll(
            elements, static element => element.MappingMode is MappingMode.ControlPoint
                or MappingMode.AllSame);
        var vertices = new GltfVertices(elements, geometry.ControlPointList.Count);
        if (!isPlain && geometry is Mesh mesh)
            vertices.Split(mesh);
        return vertices;
    }

    /// <summary>The control points themselves, without values.</summary>
    internal static GltfVertices Plain(int count) => new([], count);

    internal int ControlPointOf(int vertex) => ControlPoints is null ? vertex : ControlPoints[vertex];

    /// <summary>The place of the value that an element has for a vertex, or -1.</summary>
    internal int ValueOf(int element, int vertex)
    {
        int[]? values = _valueOfVertex[element];
        return values is null ? _elements[element].ValueIndex(ControlPointOf(vertex), -1, -1)
            : values[vertex];
    }

    private void Split(Mesh mesh)
    {
        ReadOnlySpan<int> corners = mesh.PolygonStore.Corners;
        var split = new List<int>();
        var valueOfCorner = new List<int[]>();
        for (int i = 0; i < _elements.Length; i++)
        {
            if (_elements[i].MappingMode is MappingMode.ControlPoint or MappingMode.AllSame)
                continue;
            split.Add(i);
            valueOfCorner.Add(ValuesOfCorners(mesh, _elements[i]));
        }
        int[][] keys = [.. valueOfCorner];
        var vertexOfCorner = new int[corners.Length];
        var firstCorner = new List<int>(mesh.ControlPointList.Count * 2);
        var table = new int[BitOperations.RoundUpToPowerOf2((uint)Math.Max(16, corners.Length * 2))];
        int mask = table.Length - 1;
        for (int corner = 0; corner < corners.Length; corner++)
        {
            uint hash = (uint)corners[corner] * 0x9E3779B1;
            foreach (int[] key in keys)
                hash = (BitOperations.RotateLeft(hash, 15) ^ (uint)key[corner]) * 0x85EBCA77;
            int slot = (int)(hash ^ (hash >> 15)) & mask;
            // The table holds vertex numbers plus one; zero is an empty slot.
            while (table[slot] != 0 && !IsSame(corners, keys, firstCorner[table[slot] - 1], corner))
                slot = (slot + 1) & mask;
            if (table[slot] == 0)
            {
                firstCorner.Add(corner);
                table[slot] = firstCorner.Count;
            }
            vertexOfCorner[corner] = table[slot] - 1;
        }
        Count = firstCorner.Count;
        Corners = vertexOfCorner;
        var controlPoints = new int[Count];
        for (int vertex = 0; vertex < Count; vertex++)
            controlPoints[vertex] = corners[firstCorner[vertex]];
        ControlPoints = controlPoints;
        for (int k = 0; k < keys.Length; k++)
        {
            var values = new int[Count];
            for (int vertex = 0; vertex < Count; vertex++)
                values[vertex] = keys[k][firstCorner[vertex]];
            _valueOfVertex[split[k]] = values;
        }
    }

    private static bool IsSame(ReadOnlySpan<int> corners, int[][] keys, int a, int b)
    {
        if (corners[a] != corners[b])
            return false;
        foreach (int[] key in keys)
        {
            if (key[a] != key[b])
                return false;
        }
        return true;
    }

    private static int[] ValuesOfCorners(Mesh mesh, VertexElement element)
    {
        PolygonStore polygons = mesh.PolygonStore;
        if (TryTakeIndices(element, polygons.CornerCount) is int[] indices)
            return indices;
        int[] canonical = CanonicalValues(element);
        var values = new int[polygons.CornerCount];
        int corner = 0;
        for (int polygon = 0; polygon < polygons.Count; polygon++)
        {
            int size = polygons.Size(polygon);
            for (int k = 0; k < size; k++, corner++)
            {
                int value = element.ValueIndex(-1, corner, polygon);
                values[corner] = value < 0 ? -1 : canonical.Length > 0 ? canonical[value] : value;
            }
        }
        return values;
    }

    /// <summary>
    /// The indices themselves, when there is a right one for each corner: the usual case, and a fast one.
    /// </summary>
    private static int[]? TryTakeIndices(VertexElement element, int corners)
    {
        bool isIndexed = element.MappingMode == MappingMode.PolygonVertex
            && element.ReferenceMode == ReferenceMode.IndexToDirect;
        if (!isIndexed || element.IndexList.Count < corners)
            return null;
        ReadOnlySpan<int> indices = CollectionsMarshal.AsSpan(element.IndexList)[..corners];
        int count = element.ValueCount;
        foreach (int index in indices)
        {
            if ((uint)index >= (uint)count)
                return null;
        }
        return indices.ToArray();
    }

    /// <summary>
    /// For values that are stored once for each corner: the first place of each value, so that equal ones
    /// meet.
    /// </summary>
    private static int[] CanonicalValues(VertexElement element)
    {
        if (element is not VertexElementVector4 vectors
            || element.ReferenceMode == ReferenceMode.IndexToDirect)
            return [];
        var canonical = new int[vectors.DataList.Count];
        var first = new Dictionary<Vector4, int>(canonical.Length / 4);
        for (int i = 0; i < canonical.Length; i++)
        {
            ref int place = ref CollectionsMarshal.GetValueRefOrAddDefault(first, vectors.DataList[i],
                out bool exists);
            if (!exists)
                place = i;
            canonical[i] = place;
        }
        return canonical;
    }
}
