using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Render;

/// <summary>
/// Where the components of a pixel lie in the little-endian integer that its bytes make. One table serves
/// every conversion.
/// </summary>
internal sealed class PixelLayout
{
    private static readonly Dictionary<PixelFormat, PixelLayout> Table = MakeTable();

    private readonly Component _red;
    private readonly Component _green;
    private readonly Component _blue;
    private readonly Component _alpha;
    private readonly bool _luminance;

    private PixelLayout(int bytes, Component red, Component green, Component blue, Component alpha,
        bool luminance)
    {
        Bytes = bytes;
        _red = red;
        _green = green;
        _blue = blue;
        _alpha = alpha;
        _luminance = luminance;
    }

    /// <summary>The size of a pixel.</summary>
    public int Bytes { get; }

    /// <summary>
    /// Gives the layout of a format whose components are unsigned integers of up to 16 bits.
    /// </summary>
    /// <exception cref="NotSupportedException">The format has other components or is compressed.</exception>
    public static PixelLayout Of(PixelFormat format) => Table.TryGetValue(format, out PixelLayout? layout)
        ? layout
        : throw new NotSupportedException($"Pixels of the format {format} cannot be converted.");

    /// <summary>
    /// The size of a pixel in bytes; 0 for an unknown format and for compressed ones, which have blocks.
    /// </summary>
    public static int BytesPerPixel(PixelFormat format)
    {
        if (Table.TryGetValue(format, out PixelLayout? layout))
            return layout.Bytes;
        return format switch
        {
            PixelFormat.Float16R => 2,
            PixelFormat.Float32R or PixelFormat.Float16GR or PixelFormat.Depth or PixelFormat.R32UInt => 4,
            PixelFormat.Float16RGB => 6,
            PixelFormat.Float16RGBA or PixelFormat.Float32GR or PixelFormat.R32G32UInt => 8,
            PixelFormat.Float32RGB => 12,
            PixelFormat.Float32RGBA or PixelFormat.R32G32B32A32UInt => 16,
            _ => 0,
        };
    }

    /// <summary>
    /// The size of a block of 4 x 4 pixels in bytes; 0 for formats that are not compressed.
    /// </summary>
    public static int BytesPerBlock(PixelFormat format) => format switch
    {
        PixelFormat.Dxt1 => 8,
        PixelFormat.Dxt2 or PixelFormat.Dxt3 or PixelFormat.Dxt4 or PixelFormat.Dxt5 => 16,
        _ => 0,
    };

    /// <summary>Reads a pixel. A colour that the format lacks is 0, a lacking alpha is full.</summary>
    public Rgba16 Read(ReadOnlySpan<byte> pixel)
    {
        ulong bits = 0;
        for (int i = Bytes - 1; i >= 0; --i)
            bits = bits << 8 | pixel[i];
        ushort red = _red.Read(bits, 0);
        ushort alpha = _alpha.Read(bits, ushort.MaxValue);
        return _luminance
            ? new Rgba16(red, red, red, alpha)
            : new Rgba16(red, _green.Read(bits, 0), _blue.Read(bits, 0), alpha);
    }

    /// <summary>Writes a pixel. Unused bits become 0; luminance is that of ITU-R BT.601.</summary>
    public void Write(Span<byte> pixel, Rgba16 color)
    {
        ushort red = _luminance ? color.Luminance : color.R;
        ulong bits = _red.Write(red) | _green.Write(color.G) | _blue.Write(color.B) | _alpha.Write(color.A);
        for (int i = 0; i < Bytes; ++i)
        {
            pixel[i] = (byte)bits;
            bits >>= 8;
        }
    }

    private static Dictionary<PixelFormat, PixelLayout> MakeTable()
    {
        Dictionary<PixelFormat, PixelLayout> table = new();
        void Add(PixelFormat format, string components, params ReadOnlySpan<int> bits)
        {
            Component[] found = new Component[5];
            int total = 0;
            for (int i = 0; i < components.Length; ++i)
            {
                int kind = "RGBAX".IndexOf(components[i] == 'L' ? 'R' : components[i],
                    StringComparison.Ordinal);
                found[kind] = new Component(total, bits[i]);
                total += bits[i];
            }
            table[format] = new PixelLayout(
                total / 8, found[0], found[1], found[2], found[3],
                components.Contains('L', StringComparison.Ordinal));
        }

        // From the least significant bits up: byte formats in the order of their name, packed ones in the
        // reverse of it.
        Add(PixelFormat.L8, "L", 8);
        Add(PixelFormat.L16, "L", 16);
        Add(PixelFormat.A8, "A", 8);
        Add(PixelFormat.A4L4, "LA", 4, 4);
        Add(PixelFormat.ByteLA, "LA", 8, 8);
        Add(PixelFormat.R5G6B5, "BGR", 5, 6, 5);
        Add(PixelFormat.B5G6R5, "RGB", 5, 6, 5);
        Add(PixelFormat.R3G3B2, "BGR", 2, 3, 3);
        Add(PixelFormat.A4R4G4B4, "BGRA", 4, 4, 4, 4);
        Add(PixelFormat.A1R5G5B5, "BGRA", 5, 5, 5, 1);
        Add(PixelFormat.R8G8B8, "RGB", 8, 8, 8);
        Add(PixelFormat.B8G8R8, "BGR", 8, 8, 8);
        Add(PixelFormat.A8R8G8B8, "ARGB", 8, 8, 8, 8);
        Add(PixelFormat.A8B8G8R8, "ABGR", 8, 8, 8, 8);
        Add(PixelFormat.B8G8R8A8, "BGRA", 8, 8, 8, 8);
        Add(PixelFormat.R8G8B8A8, "RGBA", 8, 8, 8, 8);
        Add(PixelFormat.X8R8G8B8, "XRGB", 8, 8, 8, 8);
        Add(PixelFormat.X8B8G8R8, "XBGR", 8, 8, 8, 8);
        Add(PixelFormat.A2R10G10B10, "BGRA", 10, 10, 10, 2);
        Add(PixelFormat.A2B10G10R10, "RGBA", 10, 10, 10, 2);
        Add(PixelFormat.ShortRGBA, "RGBA", 16, 16, 16, 16);
        Add(PixelFormat.ShortGR, "GR", 16, 16);
        Add(PixelFormat.ShortRGB, "RGB", 16, 16, 16);
        Add(PixelFormat.R8, "R", 8);
        Add(PixelFormat.G8, "G", 8);
        Add(PixelFormat.B8, "B", 8);
        return table;
    }

    /// <summary>
    /// A colour with components from 0 to 65535, in which every format of the table can be kept exactly.
    /// </summary>
    public readonly record struct Rgba16(ushort R, ushort G, ushort B, ushort A)
    {
        public ushort Luminance => (ushort)((299 * R + 587 * G + 114 * B + 500) / 1000);
    }

    private readonly record struct Component(int Shift, int Bits)
    {
        public ushort Read(ulong bits, ushort lacking)
        {
            if (Bits == 0)
                return lacking;
            uint full = (1u << Bits) - 1;
            uint value = (uint)(bits >> Shift) & full;
            return (ushort)((value * 65535u + full / 2) / full);
        }

        public ulong Write(ushort value)
        {
            if (Bits == 0)
                return 0;
            uint full = (1u << Bits) - 1;
            return (ulong)((value * full + 32767u) / 65535u) << Shift;
        }
    }
}
