using System.Collections.Generic;

namespace Velbor.Voxlar.Deformers;

/// <summary>Moves control points with bones, each by its weight.</summary>
public class SkinDeformer : Deformer
{
    /// <summary>Makes a skin.</summary>
    /// <param name="name">Its name.</param>
    public SkinDeformer(string name)
        : base(name)
    {
    }

    /// <summary>Makes a skin without a name.</summary>
    public SkinDeformer()
        : this("")
    {
    }

    /// <summary>The bones.</summary>
    public IList<Bone> Bones { get; } = new List<Bone>();
}
