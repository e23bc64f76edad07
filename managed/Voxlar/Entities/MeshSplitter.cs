using System;
using System.Collections.Generic;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Takes meshes apart by the materials of their polygons.</summary>
internal static class MeshSplitter
{
    /// <summary>A part of a mesh and the number of its material.</summary>
    public readonly record struct Part(Mesh Mesh, int Material);

    /// <summary>
    /// Makes one mesh for each material, in the order of the materials' numbers. A mesh without materials
    /// gives one part.
    /// </summary>
    public static List<Part> Split(Mesh mesh, SplitMeshPolicy policy)
    {
        VertexElementMaterial? materials =
            mesh.GetElement(VertexElementType.Material) as VertexElementMaterial;
        SortedDictionary<int, List<int>> polygons = new();
        for (int i = 0; i < mesh.PolygonCount; ++i)
        {
            int material = materials?.MaterialOf(i) ?? 0;
            if (!polygons.TryGetValue(material, out List<int>? own))
                polygons.Add(material, own = new List<int>());
            own.Add(i);
        }
        List<Part> parts = new();
        foreach ((int material, List<int> own) in polygons)
            parts.Add(new Part(Extract(mesh, own, policy == SplitMeshPolicy.CompactData), material));
        return parts;
    }

    /// <summary>Splits the meshes on a node; parts take their own material along.</summary>
    /// <param name="node">The node.</param>
    /// <param name="policy">What the parts hold.</param>
    /// <param name="createChildNodes">
    /// Whether each part gets a child node; the parts go on the node itself otherwise.
    /// </param>
    /// <param name="removeOldMesh">Whether the mesh that was split is taken off the node.</param>
    public static void Split(Node node, SplitMeshPolicy policy, bool createChildNodes, bool removeOldMesh)
    {
        foreach (Entity entity in new List<Entity>(node.Entities))
        {
            if (entity is not Mesh mesh)
                continue;
            List<Part> parts = Split(mesh, policy);
            if (parts.Count < 2)
                continue;
            foreach (Part part in parts)
            {
                Material? material = part.Material < node.Materials.Count ? node.Materials[part.Material]
                    : null;
                if (createChildNodes)
                {
                    Node child = node.CreateChildNode(part.Mesh.Name, part.Mesh);
                    if (material is not null)
                        child.Material = material;
                }
                else
                {
                    SetMaterial(part.Mesh, part.Material);
                    node.AddEntity(part.Mesh);
                }
            }
            if (removeOldMesh)
                node.Entities.Remove(mesh);
        }
    }

    // On the same node a part keeps the number of its material.
    private static void SetMaterial(Mesh mesh, int material)
    {
        VertexElementMaterial element = new() { MappingMode = MappingMode.AllSame };
        element.IndexList.Add(material);
        mesh.VertexElements.Add(element);
    }

    private static Mesh Extract(Mesh mesh, List<int> polygons, bool compact)
    {
        Mesh part = new(mesh.Name)
        {
            Visible = mesh.Visible,
            CastShadows = mesh.CastShadows,
            ReceiveShadows = mesh.ReceiveShadows,
        };
        PolygonStore store = mesh.PolygonStore;
        List<int> corners = new();
        Dictionary<int, int> places = new();
        List<int> points = new();
        foreach (int index in polygons)
        {
            int[] polygon = store.Polygon(index).ToArray();
            int start = store.Start(index);
            for (int k = 0; k < polygon.Length; ++k)
            {
                corners.Add(start + k);
                if (!compact)
                    continue;
                if (!places.TryGetValue(polygon[k], out int place))
                {
                    place = points.Count;
                    places.Add(polygon[k], place);
                    points.Add(polygon[k]);
                }
                polygon[k] = place;
            }
            part.PolygonStore.Add(polygon.AsSpan());
        }
        if (compact)
        {
            foreach (int point in points)
                part.ControlPointList.Add(
                    new Vector4(MeshPoints.At(mesh, point), mesh.ControlPointList[point].w));
        }
        else
        {
            part.ControlPointList.AddRange(mesh.ControlPointList);
        }
        // Edges are numbered anew in a part, and materials are what it was split by.
        ElementRemapper remapper = new(compact ? points : null, corners, polygons, null);
        foreach (VertexElement element in mesh.VertexElements)
        {
            if (element is not VertexElementMaterial
                && remapper.Remap(element, compact) is VertexElement remapped)
                part.VertexElements.Add(remapped);
        }
        return part;
    }
}
