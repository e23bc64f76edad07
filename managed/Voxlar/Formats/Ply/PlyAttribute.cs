using System;
using System.Collections.Generic;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats.Text;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Ply;

/// <summary>What the values of an attribute belong to in a file.</summary>
internal enum PlyMapping
{
    None,
    Vertex,
    Face,
    Corner,
}

/// <summary>
/// The normals, texture coordinates or colours of all geometries that go into a file. They are kept by vertex
/// where each vertex has one value, by face where all are by polygon, and else by corner.
/// </summary>
internal sealed class PlyAttribute
{
    private readonly List<PlacedEntity> _items;
    private readonly VertexElementType _type;

    /// <summary>Looks for the attribute.</summary>
    /// <param name="items">The geometries and lines in the order in which they are written.</param>
    /// <param name="type">The kind of attribute.</param>
    public PlyAttribute(List<PlacedEntity> items, VertexElementType type)
    {
        _items = items;
        _type = type;
        foreach (PlacedEntity item in items)
        {
            PlyMapping mapping = MappingOf(item);
            if (mapping != PlyMapping.None && mapping != Mapping)
                Mapping = Mapping == PlyMapping.None ? mapping : PlyMapping.Corner;
        }
    }

    /// <summary>What the values belong to.</summary>
    public PlyMapping Mapping { get; private set; }

    /// <summary>The element of an entity; null when it has none with values.</summary>
    public VertexElementVector4? ElementOf(PlacedEntity item)
    {
        if (item.Entity is not Geometry geometry)
            return null;
        VertexElement? found = _type == VertexElementType.UV
            ? geometry.GetVertexElementOfUV(TextureMapping.Diffuse) ?? geometry.GetElement(_type)
            : geometry.GetElement(_type);
        return found is VertexElementVector4 { DataList.Count: > 0 } element ? element : null;
    }

    /// <summary>
    /// The values by vertex, of all control points of all items; what has no value gets the one given.
    /// </summary>
    public Vector4[] ByVertex(int count, Vector4 otherwise)
    {
        Vector4[] values = new Vector4[count];
        Array.Fill(values, otherwise);
        int first = 0;
        foreach (PlacedEntity item in _items)
        {
            if (ElementOf(item) is { } element)
                Visit(item, element, (point, _, value) => values[first + point] = element.DataList[value]);
            first += item.Entity is Geometry ? item.ControlPoints.Count : 0;
        }
        return values;
    }

    private PlyMapping MappingOf(PlacedEntity item)
    {
        if (ElementOf(item) is not { } element)
            return PlyMapping.None;
        switch (element.MappingMode)
        {
            case MappingMode.ControlPoint or MappingMode.AllSame:
                return PlyMapping.Vertex;
            case MappingMode.Polygon:
                return PlyMapping.Face;
            case MappingMode.PolygonVertex:
                return IsByPoint(item, element) ? PlyMapping.Vertex : PlyMapping.Corner;
            default:
                return PlyMapping.None;
        }
    }

    // Whether all corners at a control point have the same value, and all corners have one.
    private static bool IsByPoint(PlacedEntity item, VertexElementVector4 element)
    {
        Vector4?[] values = new Vector4?[item.ControlPoints.Count];
        int corners = 0;
        bool isSame = true;
        Visit(item, element, (point, _, value) =>
        {
            corners++;
            isSame &= values[point] is not { } other || other.Equals(element.DataList[value]);
            values[point] = element.DataList[value];
        });
        return isSame && corners == ((Mesh)item.Entity).PolygonStore.CornerCount;
    }

    /// <summary>Shows each value with its control point and corner.</summary>
    private static void Visit(PlacedEntity item, VertexElementVector4 element, Action<int, int, int> visit)
    {
        if (element.MappingMode is MappingMode.ControlPoint or MappingMode.AllSame)
        {
            for (int point = 0; point < item.ControlPoints.Count; point++)
            {
                int value = element.ValueIndex(point, -1, -1);
                if (value >= 0)
                    visit(point, -1, value);
            }
            return;
        }
        if (item.Entity is not Mesh mesh)
            return;
        PolygonStore polygons = mesh.PolygonStore;
        for (int polygon = 0; polygon < polygons.Count; polygon++)
        {
            int start = polygons.Start(polygon);
            for (int corner = start; corner < start + polygons.Size(polygon); corner++)
            {
                int point = polygons.Corners[corner];
                int value = element.ValueIndex(point, corner, polygon);
                if (value >= 0 && point < item.ControlPoints.Count)
                    visit(point, corner, value);
            }
        }
    }
}
