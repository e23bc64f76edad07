using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>The transform of one node in a <see cref="Pose"/>.</summary>
public class BonePose
{
    /// <summary>The node, or null.</summary>
    public Node? Node { get; set; }

    /// <summary>The transform of the node.</summary>
    public Matrix4 Matrix { get; set; } = Matrix4.Identity;

    /// <summary>Whether the matrix is relative to the parent node; otherwise it is global.</summary>
    public bool IsLocal { get; set; }
}
