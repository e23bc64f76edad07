using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;

namespace Velbor.Voxlar.Render;

/// <summary>
/// The image formats that can be read and written. Codecs may be registered from any thread.
/// </summary>
public class TextureCodec
{
    private static readonly object Gate = new();

    // Replaced as a whole on registration, so that readers need no lock. The codec registered last is asked
    // first.
    private static IReadOnlyList<ITextureCodec> _codecs = [new PngCodec(), new BmpCodec()];

    /// <summary>
    /// Gives the extensions of the formats that can be written, in lower case and without a dot.
    /// </summary>
    public static string[] GetSupportedEncoderFormats() =>
        Encoders().Select(encoder => Normalized(encoder.FileExtension)).Distinct().ToArray();

    /// <summary>Makes a codec known. It comes before those known so far.</summary>
    /// <param name="codec">The codec.</param>
    public static void RegisterCodec(ITextureCodec codec)
    {
        ArgumentNullException.ThrowIfNull(codec);
        lock (Gate)
            _codecs = [codec, .. _codecs];
    }

    /// <summary>Writes an image.</summary>
    /// <param name="texture">The image.</param>
    /// <param name="stream">The stream that takes it.</param>
    /// <param name="format">The extension of the format, with or without a dot.</param>
    /// <exception cref="NotSupportedException">There is no encoder for the format.</exception>
    public static void Encode(TextureData texture, Stream stream, string format)
    {
        ArgumentNullException.ThrowIfNull(texture);
        ArgumentNullException.ThrowIfNull(stream);
        ArgumentNullException.ThrowIfNull(format);
        string wanted = Normalized(format);
        ITextureEncoder encoder = Encoders().FirstOrDefault(e => Normalized(e.FileExtension) == wanted)
            ?? throw new NotSupportedException($"There is no encoder for images of the format '{wanted}'.");
        encoder.Encode(texture, stream);
    }

    /// <summary>Reads an image, whose format is found out from its content.</summary>
    /// <param name="stream">The stream, read from its position to its end.</param>
    /// <param name="reverseY">Whether the rows are turned upside down.</param>
    /// <exception cref="NotSupportedException">No decoder knows the format.</exception>
    /// <exception cref="InvalidDataException">The image is damaged.</exception>
    public static TextureData Decode(Stream stream, bool reverseY)
    {
        ArgumentNullException.ThrowIfNull(stream);
        using MemoryStream content = new();
        stream.CopyTo(content);
        foreach (ITextureDecoder decoder in _codecs.SelectMany(codec => codec.GetDecoders()))
        {
            content.Position = 0;
            if (decoder.Decode(content, reverseY) is TextureData texture)
                return texture;
        }
        throw new NotSupportedException("The stream does not hold an image of a known format.");
    }

    private static IEnumerable<ITextureEncoder> Encoders() =>
        _codecs.SelectMany(codec => codec.GetEncoders());

    private static string Normalized(string extension) => extension.TrimStart('.').ToLowerInvariant();
}
