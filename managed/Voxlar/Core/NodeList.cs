using System;
using System.Collections.Generic;
using System.Collections.ObjectModel;

namespace Velbor.Voxlar;

/// <summary>
/// The children of a node. A node that enters leaves its former parent; one that is the owner itself, stands
/// above it or is the root of a scene is refused.
/// </summary>
internal sealed class NodeList : Collection<Node>
{
    private readonly Node _owner;

    public NodeList(Node owner)
        : base(new List<Node>()) => _owner = owner;

    protected override void InsertItem(int index, Node item)
    {
        Check(item);
        if (item.Parent == _owner)
        {
            // A child that is inserted again moves; its old place closes first.
            int old = IndexOf(item);
            if (old < index)
                index--;
            base.RemoveItem(old);
        }
        else
        {
            item.Parent?.ChildNodes.Remove(item);
        }
        base.InsertItem(index, item);
        item.Parent = _owner;
    }

    protected override void SetItem(int index, Node item)
    {
        Node old = this[index];
        if (old == item)
            return;
        Check(item);
        if (item.Parent == _owner)
            throw new InvalidOperationException($"{item} is a child of {_owner} already.");
        item.Parent?.ChildNodes.Remove(item);
        base.SetItem(index, item);
        old.Parent = null;
        item.Parent = _owner;
    }

    protected override void RemoveItem(int index)
    {
        this[index].Parent = null;
        base.RemoveItem(index);
    }

    protected override void ClearItems()
    {
        foreach (Node node in this)
            node.Parent = null;
        base.ClearItems();
    }

    private void Check(Node item)
    {
        ArgumentNullException.ThrowIfNull(item);
        if (item.OwnerScene is not null)
            throw new InvalidOperationException(
                "The root node of a scene cannot become a child; merge it into another node instead.");
        // Only a node with children can stand above another one.
        bool leaf = !item.HasChildren;
        for (Node? node = _owner; node is not null; node = leaf ? null : node.Parent)
        {
            if (node == item)
                throw new InvalidOperationException($"{item} cannot become a child of itself or of a node below it.");
        }
    }
}
