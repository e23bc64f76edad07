using System;
using System.Buffers;
using System.Buffers.Text;
using System.Text;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// The two kinds of URI that a document holds: data written into it, and the name of a file beside it.
/// </summary>
internal static class GltfUri
{
    internal static bool IsData(ReadOnlySpan<byte> uri) =>
        uri.Length >= 5 && Ascii.EqualsIgnoreCase(uri[..5], "data:"u8);

    internal static bool IsData(string uri) => uri.StartsWith("data:", StringComparison.OrdinalIgnoreCase);

    /// <summary>Decodes a data URI, either base64 or percent-encoded.</summary>
    /// <param name="uri">The URI value with its place.</param>
    /// <param name="mediaType">The media type that the URI tells, or an empty text.</param>
    internal static byte[] DecodeData(GltfJson uri, out string mediaType)
    {
        if (!uri.TryGetRawString(out ReadOnlySpan<byte> text))
            text = Encoding.UTF8.GetBytes(uri.AsString());
        int comma = text.IndexOf((byte)',');
        if (comma < 0)
            throw uri.Place.Fault("the data URI has no comma before its data");
        string head = Encoding.ASCII.GetString(text[5..comma]);
        ReadOnlySpan<byte> body = text[(comma + 1)..];
        int semicolon = head.IndexOf(';', StringComparison.Ordinal);
        mediaType = semicolon < 0 ? head : head[..semicolon];
        if (!head.EndsWith(";base64", StringComparison.OrdinalIgnoreCase))
            return PercentDecode(body);
        if (body.IndexOf((byte)'%') >= 0)
            body = PercentDecode(body);
        var bytes = new byte[Base64.GetMaxDecodedFromUtf8Length(body.Length)];
        OperationStatus status = Base64.DecodeFromUtf8(body, bytes, out int read, out int written);
        if (status != OperationStatus.Done)
            throw uri.Place.Fault($"the base64 data is broken near its byte {read}");
        return written == bytes.Length ? bytes : bytes[..written];
    }

    private static byte[] PercentDecode(ReadOnlySpan<byte> text)
    {
        var result = new byte[text.Length];
        int count = 0;
        for (int i = 0; i < text.Length; i++)
        {
            byte value = text[i];
            if (value == '%' && i + 2 < text.Length && HexValue(text[i + 1]) >= 0
                && HexValue(text[i + 2]) >= 0)
            {
                value = (byte)((HexValue(text[i + 1]) << 4) | HexValue(text[i + 2]));
                i += 2;
            }
            result[count++] = value;
        }
        return count == result.Length ? result : result[..count];
    }

    private static int HexValue(byte digit) => digit switch
    {
        >= (byte)'0' and <= (byte)'9' => digit - '0',
        >= (byte)'a' and <= (byte)'f' => digit - 'a' + 10,
        >= (byte)'A' and <= (byte)'F' => digit - 'A' + 10,
        _ => -1,
    };

    /// <summary>The file name that a relative URI stands for.</summary>
    internal static string ToFileName(string uri) =>
        Encoding.UTF8.GetString(PercentDecode(Encoding.UTF8.GetBytes(uri)));

    /// <summary>
    /// True for "http:", "file:" and their like. A drive letter of one character is no scheme.
    /// </summary>
    internal static bool HasScheme(string uri)
    {
        int colon = uri.IndexOf(':', StringComparison.Ordinal);
        if (colon < 2 || !char.IsAsciiLetter(uri[0]))
            return false;
        foreach (char c in uri.AsSpan(0, colon))
        {
            if (!char.IsAsciiLetterOrDigit(c) && c is not ('+' or '-' or '.'))
                return false;
        }
        return true;
    }

    /// <summary>
    /// A file name as a URI: everything that has a meaning in a URI is percent-encoded, slashes stay.
    /// </summary>
    internal static string FromFileName(string fileName) =>
        Uri.EscapeDataString(fileName.Replace('\\', '/')).Replace("%2F", "/", StringComparison.Ordinal);

    internal static string ToData(string mediaType, ReadOnlySpan<byte> content) =>
        "data:" + mediaType + ";base64," + Convert.ToBase64String(content);
}
