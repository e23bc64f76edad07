namespace Velbor.Voxlar.Render;

/// <summary>A face of a cube map.</summary>
public enum CubeFace
{
    PositiveX = 0,
    NegativeX = 1,
    PositiveY = 2,
    NegativeY = 3,
    PositiveZ = 4,
    NegativeZ = 5,
}
