using System;
using System.IO;
using System.Text;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>Kinds of image files, told by their first bytes.</summary>
internal static class GltfImages
{
    internal const string Png = "image/png";
    internal const string Jpeg = "image/jpeg";
    internal const string Webp = "image/webp";
    internal const string Ktx2 = "image/ktx2";

    /// <summary>
    /// The media type of the content, or null where it is of no kind that a document can hold.
    /// </summary>
    internal static string? MediaTypeOf(ReadOnlySpan<byte> content)
    {
        if (content.StartsWith((ReadOnlySpan<byte>)[0x89, (byte)'P', (byte)'N', (byte)'G']))
            return Png;
        if (content.StartsWith((ReadOnlySpan<byte>)[0xFF, 0xD8, 0xFF]))
            return Jpeg;
        if (content.Length >= 12 && content.StartsWith("RIFF"u8)
            && content.Slice(8, 4).SequenceEqual("WEBP"u8))
            return Webp;
        if (content.StartsWith((ReadOnlySpan<byte>)[0xAB, (byte)'K', (byte)'T', (byte)'X', (byte)' ',
            (byte)'2', (byte)'0', 0xBB]))
            return Ktx2;
        return null;
    }

    internal static string ExtensionOf(string mediaType) => mediaType switch
    {
        Png => ".png",
        Jpeg => ".jpg",
        Webp => ".webp",
        Ktx2 => ".ktx2",
        _ => string.Empty,
    };

    /// <summary>A name without what separates folders or is not allowed in file names.</summary>
    internal static string SafeFileName(string name)
    {
        var safe = new StringBuilder(name.Length);
        foreach (char c in name)
            safe.Append(c < ' ' || "\\/:*?\"<>|".Contains(c, StringComparison.Ordinal) ? '_' : c);
        string result = safe.ToString().Trim('.', ' ');
        return result.Length == 0 ? "image" : Path.GetFileNameWithoutExtension(result) is { Length: > 0 } stem
            && Path.GetExtension(result).ToLowerInvariant() is ".png" or ".jpg" or ".jpeg" or ".webp"
                or ".ktx2"
            ? Path.GetFileNameWithoutExtension(result) : result;
    }
}
