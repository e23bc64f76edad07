using System.Collections.Generic;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>Something that stands in a scene through a node: a geometry, a light, a camera. Several nodes may
/// share one entity.</summary>
public abstract class Entity : SceneObject
{
    /// <summary>Makes an entity that no node holds.</summary>
    protected Entity(string name)
        : base(name)
    {
    }

    /// <summary>The nodes that hold this entity; a copy.</summary>
    public List<Node> ParentNodes => new(Holders);

    /// <summary>Whether the entity is left out when the scene is written or drawn.</summary>
    public bool Excluded { get; set; }

    /// <summary>The first node that holds this entity, or null. Setting it makes that node the only
    /// holder.</summary>
    public Node? ParentNode
    {
        get => Holders.Count > 0 ? Holders[0] : null;
        set
        {
            Node[] holders = [.. Holders];
            // Emptied at once: taking out a long list's elements one by one would take quadratic time.
            Holders.Clear();
            foreach (Node holder in holders)
            {
                if (holder == value)
                    Holders.Add(holder);
                else
                    holder.Entities.Remove(this);
            }
            value?.AddEntity(this);
        }
    }

    /// <summary>The scene of the first node that holds this entity, or null.</summary>
    public override Scene? Scene => ParentNode?.Scene;

    /// <summary>The nodes that hold this entity; kept by the entity lists of the nodes.</summary>
    internal List<Node> Holders { get; } = [];

    /// <summary>The box around the entity in its own space; an entity without extent has an empty
    /// one.</summary>
    public virtual BoundingBox GetBoundingBox() => BoundingBox.Null;

    /// <summary>The key under which renderers that can draw this entity are registered: the name of its
    /// class, where a class does not say otherwise.</summary>
    public virtual EntityRendererKey GetEntityRendererKey() => new(GetType().Name);
}
