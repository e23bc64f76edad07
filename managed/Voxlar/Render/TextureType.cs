namespace Velbor.Voxlar.Render;

/// <summary>The kind of a texture unit.</summary>
public enum TextureType
{
    Texture1D = 0,
    Texture2D = 1,
    Texture3D = 2,
    CubeMap = 3,
    Array2D = 4,
}
