using System.IO;

namespace Velbor.Voxlar.Render;

/// <summary>Reads images of one format.</summary>
public interface ITextureDecoder
{
    /// <summary>Reads an image.</summary>
    /// <param name="stream">A seekable stream that stands at the begin of the image.</param>
    /// <param name="reverseY">Whether the rows are turned upside down.</param>
    /// <returns>The image, or null when the stream holds another format.</returns>
    /// <exception cref="InvalidDataException">
    /// The stream holds this format, but damaged or of an unknown kind.
    /// </exception>
    TextureData? Decode(Stream stream, bool reverseY);
}
