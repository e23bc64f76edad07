using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Stl;

/// <summary>
/// The colours that the attribute words of binary files hold, in the two ways that are in use. With "COLOR="
/// and four bytes in the header, a word without its highest bit is the colour of the facet, red in the low
/// bits, and other facets have the colour of the header. Without it, a word with its highest bit is the
/// colour, blue in the low bits.
/// </summary>
internal static class StlColors
{
    private const int OwnBit = 0x8000;

    /// <summary>The colour of facets without one of their own; null where the header tells none.</summary>
    public static Vector4? OfHeader(ReadOnlySpan<byte> header)
    {
        int at = header.IndexOf("COLOR="u8);
        if (at < 0 || at + 10 > header.Length)
            return null;
        ReadOnlySpan<byte> color = header.Slice(at + 6, 4);
        return new Vector4(color[0] / 255.0, color[1] / 255.0, color[2] / 255.0, color[3] / 255.0);
    }

    /// <summary>Whether a word holds a colour.</summary>
    public static bool HasColor(int word, bool isOfHeader) => (word & OwnBit) == 0 == isOfHeader;

    /// <summary>The colour that a word holds.</summary>
    public static Vector4 Decode(int word, bool isOfHeader)
    {
        double low = (word & 31) / 31.0;
        double middle = (word >> 5 & 31) / 31.0;
        double high = (word >> 10 & 31) / 31.0;
        return isOfHeader ? new Vector4(low, middle, high, 1) : new Vector4(high, middle, low, 1);
    }

    /// <summary>The word that holds a colour, in the way without a header.</summary>
    public static int Encode(Vector4 color) =>
        OwnBit | Five(color.x) << 10 | Five(color.y) << 5 | Five(color.z);

    private static int Five(double value) => (int)Math.Round(Math.Clamp(value, 0, 1) * 31);
}
