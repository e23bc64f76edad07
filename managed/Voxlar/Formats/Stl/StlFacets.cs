using System;
using System.Collections.Generic;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats.Text;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Stl;

/// <summary>The facets of a mesh at its place in the scene.</summary>
internal sealed class StlFacets
{
    private readonly PlacedEntity _item;
    private readonly Mesh _mesh;

    // Three places in the corners of all polygons for each facet, and the polygon that it is a part of; null
    // where all polygons are triangles.
    private readonly MeshTriangles? _cut;

    private readonly VertexElementNormal? _normals;
    private readonly VertexElementVertexColor? _colors;
    private readonly int[]? _attributes;

    private StlFacets(PlacedEntity item, Mesh mesh, MeshTriangles? cut, bool keepsHeader)
    {
        _item = item;
        _mesh = mesh;
        _cut = cut;
        foreach (VertexElement element in mesh.VertexElements)
        {
            bool isByPolygon = element.MappingMode is MappingMode.Polygon or MappingMode.AllSame;
            if (isByPolygon && element is VertexElementNormal normals)
                _normals ??= normals;
            else if (isByPolygon && element is VertexElementVertexColor colors)
                _colors ??= colors;
        }
        // Words that the header gives their meaning stay as they are only where the header does.
        bool needsHeader = mesh.GetProperty(StlNames.Header) is byte[] header
            && StlColors.OfHeader(header) is not null;
        if ((keepsHeader || !needsHeader) && mesh.GetProperty(StlNames.Attributes) is int[] attributes
            && attributes.Length == mesh.PolygonCount)
            _attributes = attributes;
    }

    /// <summary>The number of facets.</summary>
    public int Count => _cut?.Polygons.Count ?? _mesh.PolygonCount;

    /// <summary>The facets of a mesh.</summary>
    /// <param name="item">The mesh.</param>
    /// <param name="keepsHeader">Whether the file gets the header that the mesh has kept.</param>
    /// <param name="context">For failure reports.</param>
    /// <exception cref="ExportException">A polygon has a control point that does not exist.</exception>
    public static StlFacets Of(PlacedEntity item, bool keepsHeader, WriteContext context)
    {
        Mesh mesh = (Mesh)item.Entity;
        foreach (int corner in mesh.PolygonStore.Corners)
        {
            if (corner >= mesh.ControlPointList.Count)
                throw context.Error($"a polygon of the mesh '{item.Name}' has a corner at {corner}, "
                    + $"but there are {mesh.ControlPointList.Count} control points");
        }
        bool isTriangles = mesh.PolygonStore.CornerCount == mesh.PolygonCount * 3;
        return new StlFacets(item, mesh, isTriangles ? null : MeshTriangles.Cut(mesh), keepsHeader);
    }

    /// <summary>A corner of a facet in the space of the scene.</summary>
    public Vector4 Corner(int facet, int k)
    {
        int place = _item.CornerAt(facet * 3, 3, k);
        int corner = _cut is null ? place : _cut.Corners[place];
        return _item.Point(_mesh.ControlPointList[_mesh.PolygonStore.Corners[corner]]);
    }

    /// <summary>The normal of a facet in the space of the scene.</summary>
    public Vector3 Normal(int facet)
    {
        int value = _normals?.ValueIndex(0, 0, Polygon(facet)) ?? -1;
        return value >= 0
            ? _item.Normal(_normals!.DataList[value])
            : StlGeometry.Normal(Corner(facet, 0), Corner(facet, 1), Corner(facet, 2));
    }

    /// <summary>The attribute word of a facet.</summary>
    public int Attribute(int facet)
    {
        if (_attributes is not null)
            return _attributes[Polygon(facet)];
        int value = _colors?.ValueIndex(0, 0, Polygon(facet)) ?? -1;
        return value < 0 ? 0 : StlColors.Encode(_colors!.DataList[value]);
    }

    private int Polygon(int facet) => _cut is null ? facet : _cut.Polygons[facet];
}
