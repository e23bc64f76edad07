namespace Velbor.Voxlar.Shading;

/// <summary>Where the alpha of a texture comes from.</summary>
public enum AlphaSource
{
    None = 0,
    PixelAlpha = 1,
    FixedValue = 2,
}
