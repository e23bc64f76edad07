using System;

namespace Velbor.Voxlar.Render;

/// <summary>Rows of pixels within a byte array, from a pixel on.</summary>
internal readonly record struct PixelRows(byte[] Data, int Stride, int X, int Y, PixelFormat Format)
{
    /// <summary>Makes sure that pixels can be converted, before anything is changed.</summary>
    /// <exception cref="NotSupportedException">They cannot.</exception>
    public static void CheckConvertible(PixelFormat from, PixelFormat to)
    {
        if (from != to || PixelLayout.BytesPerPixel(from) == 0)
        {
            PixelLayout.Of(from);
            PixelLayout.Of(to);
        }
    }

    /// <summary>Copies pixels and converts them where the formats differ.</summary>
    public static void Copy(PixelRows from, PixelRows to, int width, int height)
    {
        if (from.Format == to.Format)
        {
            int size = PixelLayout.BytesPerPixel(from.Format);
            for (int row = 0; row < height; ++row)
                from.Row(row, width, size).CopyTo(to.Row(row, width, size));
            return;
        }
        PixelLayout source = PixelLayout.Of(from.Format);
        PixelLayout target = PixelLayout.Of(to.Format);
        for (int row = 0; row < height; ++row)
        {
            ReadOnlySpan<byte> read = from.Row(row, width, source.Bytes);
            Span<byte> written = to.Row(row, width, target.Bytes);
            for (int i = 0; i < width; ++i)
                target.Write(written.Slice(i * target.Bytes), source.Read(read.Slice(i * source.Bytes)));
        }
    }

    private Span<byte> Row(int row, int width, int size) =>
        Data.AsSpan((Y + row) * Stride + X * size, width * size);
}
