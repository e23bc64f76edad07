using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>Walks over nodes without recursion, as trees from files may be of any depth.</summary>
internal static class NodeTree
{
    /// <summary>Gives a node and all below it, each parent before its children, which come in order.</summary>
    /// <param name="root">The node to begin with.</param>
    /// <param name="skipExcluded">Whether excluded nodes are left out, with all below them.</param>
    public static IEnumerable<Node> Walk(Node root, bool skipExcluded)
    {
        Stack<Node> open = new();
        open.Push(root);
        while (open.TryPop(out Node? node))
        {
            if (skipExcluded && node.Excluded)
                continue;
            yield return node;
            for (int i = node.ChildNodes.Count - 1; i >= 0; --i)
                open.Push(node.ChildNodes[i]);
        }
    }
}
