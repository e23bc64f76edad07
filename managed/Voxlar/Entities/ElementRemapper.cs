using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// Carries the vertex elements of a mesh over to one that is made of its parts: for each control point,
/// corner, polygon and edge of the new mesh it knows the one it comes from.
/// </summary>
/// <param name="ControlPoints">The old control point of each new one; null where they are the same.</param>
/// <param name="Corners">The old corner of each new one.</param>
/// <param name="Polygons">The old polygon of each new one.</param>
/// <param name="Edges">The old edge of each new one, or -1; null where edges are not carried over.</param>
internal sealed record ElementRemapper(
    IReadOnlyList<int>? ControlPoints, IReadOnlyList<int> Corners, IReadOnlyList<int> Polygons,
    IReadOnlyList<int>? Edges)
{
    /// <summary>Makes the element for the new mesh; null when it cannot be carried over.</summary>
    /// <param name="source">The element of the old mesh.</param>
    /// <param name="compact">
    /// Whether values that are selected by an index are left out when none selects them.
    /// </param>
    public VertexElement? Remap(VertexElement source, bool compact)
    {
        IReadOnlyList<int>? items = source.MappingMode switch
        {
            MappingMode.ControlPoint => ControlPoints,
            MappingMode.PolygonVertex => Corners,
            MappingMode.Polygon => Polygons,
            MappingMode.Edge => Edges,
            _ => null,
        };
        if (items is null)
            return source.MappingMode == MappingMode.Edge ? null : source.Clone();

        VertexElement target = source.CreateEmpty();
        if (source.ReferenceMode == ReferenceMode.Direct)
        {
            foreach (int item in items)
                Append(source, target, item);
            return target;
        }
        foreach (int item in items)
            target.IndexList.Add(item >= 0 && item < source.IndexList.Count ? source.IndexList[item] : 0);
        if (source.ReferenceMode == ReferenceMode.IndexToDirect)
            CopyValues(source, target, compact);
        return target;
    }

    private static void CopyValues(VertexElement source, VertexElement target, bool compact)
    {
        if (!compact)
        {
            for (int i = 0; i < source.ValueCount; ++i)
                Append(source, target, i);
            return;
        }
        Dictionary<int, int> used = new();
        for (int i = 0; i < target.IndexList.Count; ++i)
        {
            int old = target.IndexList[i];
            if (!used.TryGetValue(old, out int place))
            {
                place = used.Count;
                used.Add(old, place);
                Append(source, target, old);
            }
            target.IndexList[i] = place;
        }
    }

    private static void Append(VertexElement source, VertexElement target, int index)
    {
        if (index >= 0 && index < source.ValueCount)
            target.AppendValue(source, index);
        else
            target.AppendDefault();
    }
}
