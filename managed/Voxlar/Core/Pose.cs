using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>The transforms of nodes at one moment.</summary>
public class Pose : VbrObject
{
    /// <summary>Makes an empty pose with a name.</summary>
    public Pose(string name)
        : base(name)
    {
    }

    /// <summary>Makes an empty pose with an empty name.</summary>
    public Pose()
        : this("")
    {
    }

    /// <summary>What the pose is for.</summary>
    public PoseType PoseType { get; set; }

    /// <summary>The transforms.</summary>
    public IList<BonePose> BonePoses { get; } = new List<BonePose>();

    /// <summary>Adds the transform of a node.</summary>
    /// <param name="node">The node.</param>
    /// <param name="matrix">Its transform.</param>
    /// <param name="localMatrix">Whether the matrix is relative to the parent node.</param>
    public void AddBonePose(Node node, Matrix4 matrix, bool localMatrix)
    {
        ArgumentNullException.ThrowIfNull(node);
        BonePoses.Add(new BonePose { Node = node, Matrix = matrix, IsLocal = localMatrix });
    }

    /// <summary>Adds the global transform of a node.</summary>
    public void AddBonePose(Node node, Matrix4 matrix) => AddBonePose(node, matrix, false);
}
