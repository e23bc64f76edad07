using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>Finds edges of one mesh in another.</summary>
internal static class MeshEdges
{
    /// <summary>For each edge of a mesh, the edge of another with the same control points, or -1.</summary>
    public static List<int> Match(Mesh mesh, Mesh source)
    {
        Dictionary<(int, int), int> known = new();
        IList<int> old = source.Edges;
        for (int i = 0; i + 1 < old.Count; i += 2)
            known.Add(Key(old[i], old[i + 1]), i / 2);
        List<int> result = new();
        IList<int> edges = mesh.Edges;
        for (int i = 0; i + 1 < edges.Count; i += 2)
            result.Add(known.GetValueOrDefault(Key(edges[i], edges[i + 1]), -1));
        return result;
    }

    private static (int, int) Key(int a, int b) => (Math.Min(a, b), Math.Max(a, b));
}
