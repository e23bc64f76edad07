using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Shading;

/// <summary>How a texture is laid on a surface.</summary>
public class TextureBase : VbrObject
{
    /// <summary>Makes a texture.</summary>
    /// <param name="name">Its name.</param>
    public TextureBase(string name)
        : base(name)
    {
    }

    /// <summary>The alpha used with <see cref="AlphaSource.FixedValue"/>, from 0 to 1; 1 at first.</summary>
    public double Alpha { get; set; } = 1;

    /// <summary>Where the alpha comes from.</summary>
    public AlphaSource AlphaSource { get; set; }

    /// <summary>What lies beyond the texture in u.</summary>
    public WrapMode WrapModeU { get; set; }

    /// <summary>What lies beyond the texture in v.</summary>
    public WrapMode WrapModeV { get; set; }

    /// <summary>What lies beyond the texture in w.</summary>
    public WrapMode WrapModeW { get; set; }

    /// <summary>The filter of a texture drawn smaller than it is.</summary>
    public TextureFilter MinFilter { get; set; } = TextureFilter.Linear;

    /// <summary>The filter of a texture drawn larger than it is.</summary>
    public TextureFilter MagFilter { get; set; } = TextureFilter.Linear;

    /// <summary>The filter between two mipmap levels.</summary>
    public TextureFilter MipFilter { get; set; } = TextureFilter.Linear;

    /// <summary>The rotation of the texture coordinates, in radians.</summary>
    public Vector3 UVRotation { get; set; }

    /// <summary>The scale of the texture coordinates; 1 in both at first.</summary>
    public Vector2 UVScale { get; set; } = new(1, 1);

    /// <summary>The offset of the texture coordinates.</summary>
    public Vector2 UVTranslation { get; set; }

    /// <summary>Sets the offset of the texture coordinates.</summary>
    /// <param name="u">Offset in u.</param>
    /// <param name="v">Offset in v.</param>
    public void SetTranslation(double u, double v) => UVTranslation = new Vector2(u, v);

    /// <summary>Sets the scale of the texture coordinates.</summary>
    /// <param name="u">Factor on u.</param>
    /// <param name="v">Factor on v.</param>
    public void SetScale(double u, double v) => UVScale = new Vector2(u, v);

    /// <summary>Sets the rotation of the texture coordinates; the rotation in w stays.</summary>
    /// <param name="u">Rotation in u, in radians.</param>
    /// <param name="v">Rotation in v, in radians.</param>
    public void SetRotation(double u, double v) => UVRotation = new Vector3(u, v, UVRotation.z);
}
