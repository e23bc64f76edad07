using System;
using System.Buffers.Binary;
using System.IO;

namespace Velbor.Voxlar.Render;

/// <summary>
/// Windows bitmaps without compression, of 24 or 32 bits; 32 bits are read as opaque colours.
/// </summary>
internal sealed class BmpCodec : ITextureCodec, ITextureDecoder, ITextureEncoder
{
    private const int HeaderSize = 54;

    public string FileExtension => "bmp";

    public ITextureDecoder[] GetDecoders() => [this];

    public ITextureEncoder[] GetEncoders() => [this];

    public TextureData? Decode(Stream stream, bool reverseY)
    {
        byte[] header = new byte[HeaderSize];
        if (stream.ReadAtLeast(header, HeaderSize, throwOnEndOfStream: false) < 2 || header[0] != 'B'
            || header[1] != 'M')
            return null;
        long start = BinaryPrimitives.ReadUInt32LittleEndian(header.AsSpan(10));
        int width = BinaryPrimitives.ReadInt32LittleEndian(header.AsSpan(18));
        int signedHeight = BinaryPrimitives.ReadInt32LittleEndian(header.AsSpan(22));
        int bits = BinaryPrimitives.ReadUInt16LittleEndian(header.AsSpan(28));
        int compression = BinaryPrimitives.ReadInt32LittleEndian(header.AsSpan(30));
        if (compression != 0 || bits is not (24 or 32))
            throw new InvalidDataException(
                $"A bitmap of {bits} bits with compression {compression} cannot be read.");
        long height = Math.Abs((long)signedHeight);
        int size = bits / 8;
        long stride = (width * (long)size + 3) / 4 * 4;
        if (width <= 0 || height == 0 || start < HeaderSize || start + stride * height > stream.Length)
            throw new InvalidDataException("The bitmap is damaged: its size does not fit the file.");

        TextureData texture = new(width, (int)height, PixelFormat.R8G8B8);
        byte[] row = new byte[stride];
        stream.Position = start;
        bool upward = signedHeight > 0;
        for (int i = 0; i < texture.Height; ++i)
        {
            stream.ReadExactly(row);
            int target = (upward != reverseY ? texture.Height - 1 - i : i) * texture.Stride;
            for (int x = 0; x < width; ++x)
            {
                texture.Data[target + 3 * x] = row[size * x + 2];
                texture.Data[target + 3 * x + 1] = row[size * x + 1];
                texture.Data[target + 3 * x + 2] = row[size * x];
            }
        }
        return texture;
    }

    public void Encode(TextureData texture, Stream stream)
    {
        if (texture.Width == 0 || texture.Height == 0)
            throw new ArgumentException("A bitmap has at least one pixel.", nameof(texture));
        using PixelMapping pixels = texture.MapPixels(PixelMapMode.ReadOnly, PixelFormat.B8G8R8);
        int stride = (texture.Width * 3 + 3) / 4 * 4;
        byte[] header = new byte[HeaderSize];
        header[0] = (byte)'B';
        header[1] = (byte)'M';
        BinaryPrimitives.WriteInt32LittleEndian(header.AsSpan(2), HeaderSize + stride * texture.Height);
        BinaryPrimitives.WriteInt32LittleEndian(header.AsSpan(10), HeaderSize);
        BinaryPrimitives.WriteInt32LittleEndian(header.AsSpan(14), 40);
        BinaryPrimitives.WriteInt32LittleEndian(header.AsSpan(18), texture.Width);
        BinaryPrimitives.WriteInt32LittleEndian(header.AsSpan(22), texture.Height);
        BinaryPrimitives.WriteInt16LittleEndian(header.AsSpan(26), 1);
        BinaryPrimitives.WriteInt16LittleEndian(header.AsSpan(28), 24);
        BinaryPrimitives.WriteInt32LittleEndian(header.AsSpan(34), stride * texture.Height);
        stream.Write(header);
        byte[] row = new byte[stride];
        for (int i = texture.Height - 1; i >= 0; --i)
        {
            Array.Copy(pixels.Data, i * pixels.Stride, row, 0, texture.Width * 3);
            stream.Write(row);
        }
    }
}
