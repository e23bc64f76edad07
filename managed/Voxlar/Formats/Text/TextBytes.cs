using System.Text;

namespace Velbor.Voxlar.Formats.Text;

/// <summary>Brings text files of all encodings to UTF-8, and their names to strings.</summary>
internal static class TextBytes
{
    private static readonly UTF8Encoding Strict =
        new(encoderShouldEmitUTF8Identifier: false, throwOnInvalidBytes: true);

    /// <summary>
    /// The text as UTF-8 without byte-order mark. A mark tells the encoding; without one the options do.
    /// Bytes of an unnamed encoding stay as they are.
    /// </summary>
    public static byte[] ToUtf8(byte[] data, ReadContext context)
    {
        if (data is [0xef, 0xbb, 0xbf, ..])
            return data[3..];
        if (data is [0xff, 0xfe, ..])
            return Encoding.Convert(Encoding.Unicode, Strict, data, 2, data.Length - 2);
        if (data is [0xfe, 0xff, ..])
            return Encoding.Convert(Encoding.BigEndianUnicode, Strict, data, 2, data.Length - 2);
        if (string.IsNullOrEmpty(context.Options.Encoding))
            return data;
        Encoding told = context.TextEncoding(Strict);
        return told is UTF8Encoding ? data : Encoding.Convert(told, new UTF8Encoding(false), data);
    }

    /// <summary>
    /// The bytes as a string: UTF-8 where they are, else each byte is its Latin-1 character.
    /// </summary>
    public static string ToText(System.ReadOnlySpan<byte> bytes)
    {
        try
        {
            return Strict.GetString(bytes);
        }
        catch (DecoderFallbackException)
        {
            return Encoding.Latin1.GetString(bytes);
        }
    }
}
