namespace Velbor.Voxlar.Entities;

/// <summary>A parametric surface over a grid of control points, u running fastest.</summary>
public class Patch : Geometry
{
    /// <summary>Makes a patch without a name.</summary>
    public Patch()
        : this("")
    {
    }

    /// <summary>Makes a patch.</summary>
    /// <param name="name">Its name.</param>
    public Patch(string name)
        : base(name)
    {
    }

    /// <summary>The direction u.</summary>
    public PatchDirection U { get; } = new();

    /// <summary>The direction v.</summary>
    public PatchDirection V { get; } = new();
}
