using Velbor.Voxlar.Render;

namespace Velbor.Voxlar.Entities;

/// <summary>Marks a node as part of a skeleton.</summary>
public class Skeleton : Entity
{
    private static readonly EntityRendererKey RendererKey = new("Skeleton");

    /// <summary>Makes a skeleton part without a name.</summary>
    public Skeleton()
        : this("")
    {
    }

    /// <summary>Makes a skeleton part.</summary>
    /// <param name="name">Its name.</param>
    public Skeleton(string name)
        : base(name)
    {
    }

    /// <summary>The size it is drawn in, in the unit of the scene; 100 at first.</summary>
    public double Size { get; set; } = 100;

    /// <summary>The part it plays.</summary>
    public SkeletonType Type { get; set; }

    /// <inheritdoc/>
    public override EntityRendererKey GetEntityRendererKey() => RendererKey;
}
