using System.Collections.Generic;

namespace Velbor.Voxlar.Deformers;

/// <summary>Moves control points towards target shapes.</summary>
public class MorphTargetDeformer : Deformer
{
    /// <summary>Makes a morph target deformer.</summary>
    /// <param name="name">Its name.</param>
    public MorphTargetDeformer(string name)
        : base(name)
    {
    }

    /// <summary>Makes a morph target deformer without a name.</summary>
    public MorphTargetDeformer()
        : this("")
    {
    }

    /// <summary>The channels, each with target shapes and a weight.</summary>
    public IList<MorphTargetChannel> Channels { get; } = new List<MorphTargetChannel>();
}
