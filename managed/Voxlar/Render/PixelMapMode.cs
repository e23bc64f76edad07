namespace Velbor.Voxlar.Render;

/// <summary>What mapped pixels are used for.</summary>
public enum PixelMapMode
{
    ReadOnly = 0,
    ReadWrite = 1,
    WriteOnly = 2,
}
