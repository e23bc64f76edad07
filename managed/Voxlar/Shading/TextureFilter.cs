namespace Velbor.Voxlar.Shading;

/// <summary>How texels are filtered.</summary>
public enum TextureFilter
{
    None = 0,
    Point = 1,
    Linear = 2,
    Anisotropic = 3,
}
