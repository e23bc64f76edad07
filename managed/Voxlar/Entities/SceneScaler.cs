using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Scales what is in a scene without touching the scales of its nodes.</summary>
internal sealed class SceneScaler(Vector3 scale)
{
    private readonly Dictionary<Entity, Entity> _done = new();

    /// <summary>Scales the places of a node and of all below it, and their geometries.</summary>
    /// <param name="root">The node.</param>
    /// <param name="moveNode">Whether the place of the node itself is scaled too.</param>
    public void Apply(Node root, bool moveNode)
    {
        foreach (Node node in NodeTree.Walk(root, skipExcluded: false))
        {
            if (moveNode || node != root)
                node.Transform.Translation *= scale;
            node.Transform.GeometricTranslation *= scale;
            for (int i = 0; i < node.Entities.Count; ++i)
            {
                Entity entity = node.Entities[i];
                Entity scaled = Scaled(entity);
                if (!ReferenceEquals(entity, scaled))
                    node.Entities[i] = scaled;
            }
        }
    }

    // An entity that several nodes share is scaled once. A body that is not made of control points becomes a
    // mesh.
    private Entity Scaled(Entity entity)
    {
        if (_done.TryGetValue(entity, out Entity? done))
            return done;
        Entity result = entity is IMeshConvertible body and not Geometry ? body.ToMesh() : entity;
        if (result is Geometry geometry)
            Scale(geometry);
        _done.Add(entity, result);
        _done.TryAdd(result, result);
        return result;
    }

    private void Scale(Geometry geometry)
    {
        List<Vector4> points = geometry.ControlPointList;
        for (int i = 0; i < points.Count; ++i)
            points[i] = new Vector4(new Vector3(points[i]) * scale, points[i].w);
        foreach (VertexElement element in geometry.VertexElements)
        {
            if (element is not VertexElementVector4 vectors)
                continue;
            bool normal = element.VertexElementType == VertexElementType.Normal;
            bool along = element is VertexElementTangent or VertexElementBinormal;
            if (!normal && !along)
                continue;
            for (int i = 0; i < vectors.DataList.Count; ++i)
            {
                Vector4 value = vectors.DataList[i];
                Vector3 direction = normal
                    ? new Vector3(value.x / scale.x, value.y / scale.y, value.z / scale.z)
                                           : new Vector3(value) * scale;
                vectors.DataList[i] = new Vector4(direction.Normalize(), value.w);
            }
        }
    }
}
