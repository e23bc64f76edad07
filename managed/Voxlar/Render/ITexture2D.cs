namespace Velbor.Voxlar.Render;

/// <summary>A texture of rows and columns.</summary>
public interface ITexture2D : ITextureUnit
{
    /// <summary>Saves the texture as an image file.</summary>
    /// <param name="path">The name of the file.</param>
    /// <param name="format">The extension of the image format, such as "png".</param>
    void Save(string path, string format);

    /// <summary>Copies the texture into a bitmap.</summary>
    /// <param name="bitmap">The bitmap that takes it.</param>
    void Save(TextureData bitmap);

    /// <summary>Takes the content of a bitmap.</summary>
    /// <param name="bitmap">The bitmap.</param>
    void Load(TextureData bitmap);

    /// <summary>Makes a bitmap of the texture.</summary>
    TextureData ToBitmap();
}
