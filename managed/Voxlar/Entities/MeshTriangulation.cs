using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>Turns meshes of polygons into meshes of triangles.</summary>
internal static class MeshTriangulation
{
    /// <summary>Makes a mesh of triangles, with all vertex elements.</summary>
    public static Mesh Triangulated(Mesh mesh)
    {
        Mesh result = new(mesh.Name)
        {
            Visible = mesh.Visible,
            CastShadows = mesh.CastShadows,
            ReceiveShadows = mesh.ReceiveShadows,
            Excluded = mesh.Excluded,
        };
        result.ControlPointList.AddRange(mesh.ControlPointList);
        MeshTriangles triangles = MeshTriangles.Cut(mesh);
        ReadOnlySpan<int> corners = mesh.PolygonStore.Corners;
        result.PolygonStore.EnsureCapacity(triangles.Polygons.Count, triangles.Corners.Count);
        for (int i = 0; i < triangles.Corners.Count; i += 3)
        {
            result.PolygonStore.Add([
                corners[triangles.Corners[i]], corners[triangles.Corners[i + 1]],
                corners[triangles.Corners[i + 2]]]);
        }
        bool byEdge = false;
        foreach (VertexElement element in mesh.VertexElements)
            byEdge |= element.MappingMode == MappingMode.Edge;
        ElementRemapper remapper = new(
            null, triangles.Corners, triangles.Polygons, byEdge ? MeshEdges.Match(result, mesh) : null);
        foreach (VertexElement element in mesh.VertexElements)
        {
            if (remapper.Remap(element, compact: false) is VertexElement remapped)
                result.VertexElements.Add(remapped);
        }
        return result;
    }

    /// <summary>Cuts the polygons of a mesh in place; a mesh of triangles is left alone.</summary>
    public static void Apply(Mesh mesh)
    {
        bool needed = false;
        for (int i = 0; i < mesh.PolygonCount && !needed; ++i)
            needed = mesh.PolygonStore.Size(i) != 3;
        if (!needed)
            return;
        Mesh result = Triangulated(mesh);
        mesh.PolygonStore.Clear();
        mesh.PolygonStore.EnsureCapacity(result.PolygonCount, result.PolygonStore.CornerCount);
        for (int i = 0; i < result.PolygonCount; ++i)
            mesh.PolygonStore.Add(result.PolygonStore.Polygon(i));
        mesh.VertexElements.Clear();
        foreach (VertexElement element in result.VertexElements)
            mesh.VertexElements.Add(element);
    }
}
