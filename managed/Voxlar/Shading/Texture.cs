namespace Velbor.Voxlar.Shading;

/// <summary>A texture from an image file.</summary>
public class Texture : TextureBase
{
    /// <summary>Makes a texture without a name.</summary>
    public Texture()
        : this("")
    {
    }

    /// <summary>Makes a texture.</summary>
    /// <param name="name">Its name.</param>
    public Texture(string name)
        : base(name)
    {
    }

    /// <summary>
    /// Whether smaller copies of the image are made for drawing at a distance; true at first.
    /// </summary>
    public bool EnableMipMap { get; set; } = true;

    /// <summary>The bytes of the image file, when the image is held in the scene.</summary>
    public byte[]? Content { get; set; }

    /// <summary>The name of the image file.</summary>
    public string? FileName { get; set; }
}
