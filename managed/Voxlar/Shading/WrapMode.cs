namespace Velbor.Voxlar.Shading;

/// <summary>What lies outside the unit square of a texture.</summary>
public enum WrapMode
{
    Wrap = 0,
    Clamp = 1,
    Mirror = 2,
    MirrorOnce = 3,
    Border = 4,
}
