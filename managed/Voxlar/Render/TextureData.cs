using System;
using System.IO;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Render;

/// <summary>An image in memory, row after row from the top.</summary>
public class TextureData
{
    /// <summary>Makes an image over existing bytes, which are not copied.</summary>
    /// <param name="width">The number of pixels in a row.</param>
    /// <param name="height">The number of rows.</param>
    /// <param name="stride">The number of bytes from one row to the next.</param>
    /// <param name="bytesPerPixel">The size of a pixel in bytes; 0 for a compressed format.</param>
    /// <param name="pixelFormat">The layout of a pixel.</param>
    /// <param name="data">The bytes.</param>
    /// <exception cref="ArgumentException">
    /// The values do not fit each other, or there are too few bytes.
    /// </exception>
    public TextureData(int width, int height, int stride, int bytesPerPixel, PixelFormat pixelFormat,
        byte[] data)
    {
        ArgumentOutOfRangeException.ThrowIfNegative(width);
        ArgumentOutOfRangeException.ThrowIfNegative(height);
        ArgumentNullException.ThrowIfNull(data);
        int known = PixelLayout.BytesPerPixel(pixelFormat);
        if (pixelFormat != PixelFormat.Unknown && bytesPerPixel != known)
        {
            throw new ArgumentException(
                $"A pixel of the format {pixelFormat} has {known} bytes, not {bytesPerPixel}.",
                nameof(bytesPerPixel));
        }
        (long rowBytes, long rows) = RowsOf(width, height, bytesPerPixel, pixelFormat);
        if (stride < rowBytes)
            throw new ArgumentException($"A row has {rowBytes} bytes, more than the stride of {stride}.",
                nameof(stride));
        long needed = rows == 0 ? 0 : stride * (rows - 1) + rowBytes;
        if (data.Length < needed)
            throw new ArgumentException($"The image needs {needed} bytes, but there are {data.Length}.",
                nameof(data));
        Set(width, height, stride, bytesPerPixel, pixelFormat, data);
    }

    /// <summary>
    /// Makes an image whose bytes are all 0, with rows that follow each other without gaps.
    /// </summary>
    /// <param name="width">The number of pixels in a row.</param>
    /// <param name="height">The number of rows.</param>
    /// <param name="pixelFormat">The layout of a pixel.</param>
    /// <exception cref="ArgumentException">The format is unknown.</exception>
    public TextureData(int width, int height, PixelFormat pixelFormat)
    {
        ArgumentOutOfRangeException.ThrowIfNegative(width);
        ArgumentOutOfRangeException.ThrowIfNegative(height);
        int bytesPerPixel = PixelLayout.BytesPerPixel(pixelFormat);
        if (bytesPerPixel == 0 && PixelLayout.BytesPerBlock(pixelFormat) == 0)
            throw new ArgumentException("An image needs a known pixel format.", nameof(pixelFormat));
        (long rowBytes, long rows) = RowsOf(width, height, bytesPerPixel, pixelFormat);
        long size = rowBytes * rows;
        if (size > Array.MaxLength)
            throw new ArgumentException($"An image of {size} bytes is too large.");
        Set(width, height, (int)rowBytes, bytesPerPixel, pixelFormat, new byte[size]);
    }

    /// <summary>Makes an image without pixels.</summary>
    public TextureData()
    {
        Data = [];
    }

    /// <summary>The bytes of the image.</summary>
    public byte[] Data { get; private set; } = [];

    /// <summary>The number of pixels in a row.</summary>
    public int Width { get; private set; }

    /// <summary>The number of rows.</summary>
    public int Height { get; private set; }

    /// <summary>
    /// The number of bytes from one row to the next; from one row of blocks to the next in compressed
    /// formats.
    /// </summary>
    public int Stride { get; private set; }

    /// <summary>The size of a pixel in bytes; 0 for compressed formats.</summary>
    public int BytesPerPixel { get; private set; }

    /// <summary>The layout of a pixel.</summary>
    public PixelFormat PixelFormat { get; private set; }

    /// <summary>Reads an image in any of the known formats.</summary>
    /// <param name="stream">The stream, read from its position on.</param>
    /// <exception cref="NotSupportedException">The format is not known.</exception>
    public static TextureData FromStream(Stream stream) => TextureCodec.Decode(stream, reverseY: false);

    /// <summary>Reads an image file in any of the known formats.</summary>
    /// <param name="fileName">The name of the file.</param>
    /// <exception cref="NotSupportedException">The format is not known.</exception>
    public static TextureData FromFile(string fileName)
    {
        using FileStream stream = File.OpenRead(fileName);
        return FromStream(stream);
    }

    /// <summary>Writes the image.</summary>
    /// <param name="stream">The stream that takes it.</param>
    /// <param name="format">The extension of the image format, such as "png".</param>
    /// <exception cref="NotSupportedException">There is no encoder for the format.</exception>
    public void Save(Stream stream, string format) => TextureCodec.Encode(this, stream, format);

    /// <summary>Writes the image to a file; the extension of its name gives the format.</summary>
    /// <param name="fileName">The name of the file.</param>
    /// <exception cref="NotSupportedException">There is no encoder for the format.</exception>
    public void Save(string fileName)
    {
        ArgumentNullException.ThrowIfNull(fileName);
        Save(fileName, Path.GetExtension(fileName));
    }

    /// <summary>
    /// Writes the image to a file. Nothing is left of an earlier file only when there is an encoder.
    /// </summary>
    /// <param name="fileName">The name of the file.</param>
    /// <param name="format">The extension of the image format, such as "png".</param>
    /// <exception cref="NotSupportedException">There is no encoder for the format.</exception>
    public void Save(string fileName, string format)
    {
        ArgumentNullException.ThrowIfNull(fileName);
        using MemoryStream buffer = new();
        Save(buffer, format);
        File.WriteAllBytes(fileName, buffer.ToArray());
    }

    /// <summary>Maps all pixels in the image's own format.</summary>
    /// <param name="mapMode">What the pixels are used for.</param>
    public PixelMapping MapPixels(PixelMapMode mapMode) => MapPixels(mapMode, PixelFormat);

    /// <summary>Maps all pixels.</summary>
    /// <param name="mapMode">What the pixels are used for.</param>
    /// <param name="format">The format the mapped pixels have.</param>
    public PixelMapping MapPixels(PixelMapMode mapMode, PixelFormat format) =>
        MapPixels(new Rect(0, 0, Width, Height), mapMode, format);

    /// <summary>Maps the pixels of a rectangle.</summary>
    /// <param name="rect">The rectangle, within the image.</param>
    /// <param name="mapMode">
    /// What the pixels are used for. Pixels that are mapped to write only are 0 at first.
    /// </param>
    /// <param name="format">The format the mapped pixels have.</param>
    /// <exception cref="ArgumentOutOfRangeException">The rectangle does not lie within the image.</exception>
    /// <exception cref="NotSupportedException">The formats cannot be converted into each other.</exception>
    public PixelMapping MapPixels(Rect rect, PixelMapMode mapMode, PixelFormat format)
    {
        long right = (long)rect.x + rect.Width;
        long bottom = (long)rect.y + rect.Height;
        if (rect.x < 0 || rect.y < 0 || rect.Width < 0 || rect.Height < 0 || right > Width || bottom > Height)
            throw new ArgumentOutOfRangeException(nameof(rect),
                "The rectangle does not lie within the image.");
        PixelRows own = new(Data, Stride, rect.x, rect.y, PixelFormat);
        TextureData copy = new(rect.Width, rect.Height, format);
        PixelRows mapped = new(copy.Data, copy.Stride, 0, 0, format);
        PixelRows.CheckConvertible(PixelFormat, format);
        if (mapMode != PixelMapMode.WriteOnly)
            PixelRows.Copy(own, mapped, rect.Width, rect.Height);
        Action<PixelMapping>? writeBack = mapMode == PixelMapMode.ReadOnly
            ? null
            : mapping => PixelRows.Copy(mapped, own, mapping.Width, mapping.Height);
        return new PixelMapping(copy.Data, copy.Stride, rect.Width, rect.Height, writeBack);
    }

    /// <summary>Converts the image to another pixel format, in place.</summary>
    /// <param name="pixelFormat">The new format.</param>
    /// <exception cref="NotSupportedException">The formats cannot be converted into each other.</exception>
    public void TransformPixelFormat(PixelFormat pixelFormat)
    {
        if (pixelFormat == PixelFormat)
            return;
        PixelRows.CheckConvertible(PixelFormat, pixelFormat);
        TextureData target = new(Width, Height, pixelFormat);
        PixelRows.Copy(new PixelRows(Data, Stride, 0, 0, PixelFormat),
            new PixelRows(target.Data, target.Stride, 0, 0, pixelFormat), Width, Height);
        Set(Width, Height, target.Stride, target.BytesPerPixel, pixelFormat, target.Data);
    }

    private static (long RowBytes, long Rows) RowsOf(int width, int height, int bytesPerPixel,
        PixelFormat format)
    {
        int block = PixelLayout.BytesPerBlock(format);
        return block == 0 ? ((long)width * bytesPerPixel, height)
            : ((width + 3L) / 4 * block, (height + 3L) / 4);
    }

    private void Set(int width, int height, int stride, int bytesPerPixel, PixelFormat pixelFormat,
        byte[] data)
    {
        Width = width;
        Height = height;
        Stride = stride;
        BytesPerPixel = bytesPerPixel;
        PixelFormat = pixelFormat;
        Data = data;
    }
}
