using System.IO;

namespace Velbor.Voxlar.Render;

/// <summary>Writes images of one format.</summary>
public interface ITextureEncoder
{
    /// <summary>The extension of the format's files, in lower case and without a dot.</summary>
    string FileExtension { get; }

    /// <summary>Writes an image.</summary>
    /// <param name="texture">The image.</param>
    /// <param name="stream">The stream that takes it.</param>
    void Encode(TextureData texture, Stream stream);
}
