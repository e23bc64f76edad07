using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Tests.Core;

/// <summary>A plain entity with a box.</summary>
public class Thing : Entity
{
    public Thing(string name)
        : base(name)
    {
    }

    public BoundingBox Box { get; init; } = new(-1, -1, -1, 1, 1, 1);

    public override BoundingBox GetBoundingBox() => Box;
}
