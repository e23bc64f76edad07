namespace Velbor.Voxlar.Entities;

/// <summary>Which field of view of a camera is the given one when the aspect ratio changes.</summary>
public enum ApertureMode
{
    /// <summary>
    /// Horizontal and vertical field of view are given apart; together they set the aspect ratio.
    /// </summary>
    HorizAndVert = 0,

    /// <summary>The horizontal one is kept.</summary>
    Horizontal = 1,

    /// <summary>The vertical one is kept.</summary>
    Vertical = 2,

    /// <summary>The vertical one is kept, as the focal length fixes it.</summary>
    FocalLength = 3,
}
