using System;

namespace Velbor.Voxlar;

/// <summary>An axis of the coordinate system.</summary>
public enum Axis
{
    /// <summary>The x axis.</summary>
    XAxis = 0,
    /// <summary>The y axis.</summary>
    YAxis = 1,
    /// <summary>The z axis.</summary>
    ZAxis = 2,
}

/// <summary>The handedness of a coordinate system.</summary>
public enum CoordinatedSystem
{
    /// <summary>x to the right and y up leave z towards the viewer.</summary>
    RightHanded = 0,
    /// <summary>x to the right and y up leave z away from the viewer.</summary>
    LeftHanded = 1,
}

/// <summary>Whether a file holds text or binary data.</summary>
public enum FileContentType
{
    /// <summary>Binary data.</summary>
    Binary = 0,
    /// <summary>Text.</summary>
    ASCII = 1,
}

/// <summary>What a pose is for.</summary>
public enum PoseType
{
    /// <summary>The pose in which the skin was bound to the bones.</summary>
    BindPose = 0,
    /// <summary>The pose at some moment.</summary>
    Snapshot = 1,
}

/// <summary>What holds for a property.</summary>
[Flags]
public enum PropertyFlags : byte
{
    /// <summary>Nothing special.</summary>
    None = 0,
    /// <summary>The property is not written to files.</summary>
    NotSerializable = 1,
    /// <summary>The property was added by the user.</summary>
    UserDefined = 2,
    /// <summary>The property can be animated.</summary>
    Animatable = 4,
    /// <summary>The property is animated.</summary>
    Animated = 8,
    /// <summary>The property is not shown.</summary>
    Hidden = 16,
}
