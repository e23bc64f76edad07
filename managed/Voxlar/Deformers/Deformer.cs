using Velbor.Voxlar.Entities;

namespace Velbor.Voxlar.Deformers;

/// <summary>Something that moves the control points of a geometry.</summary>
public abstract class Deformer : VbrObject
{
    private protected Deformer(string name)
        : base(name)
    {
    }

    /// <summary>
    /// The geometry that is deformed; null until the deformer is in <see cref="Geometry.Deformers"/>.
    /// </summary>
    public Geometry? Owner { get; internal set; }
}
