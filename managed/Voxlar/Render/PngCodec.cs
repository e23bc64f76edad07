using System;
using System.Buffers.Binary;
using System.IO;
using System.IO.Compression;

namespace Velbor.Voxlar.Render;

/// <summary>
/// PNG images. All colour types are read with 1 to 16 bits, also interlaced ones, into 8 bits a component;
/// they are written with 8 bits as grey, RGB or RGBA.
/// </summary>
internal sealed class PngCodec : ITextureCodec, ITextureDecoder, ITextureEncoder
{
    private static readonly byte[] Signature = [0x89, (byte)'P', (byte)'N', (byte)'G', 13, 10, 26, 10];

    private static readonly uint[] CrcTable = MakeCrcTable();

    public string FileExtension => "png";

    public ITextureDecoder[] GetDecoders() => [this];

    public ITextureEncoder[] GetEncoders() => [this];

    public TextureData? Decode(Stream stream, bool reverseY)
    {
        byte[] signature = new byte[Signature.Length];
        if (stream.ReadAtLeast(signature, signature.Length, throwOnEndOfStream: false) < signature.Length
            || !signature.AsSpan().SequenceEqual(Signature))
        {
            return null;
        }
        return new PngReader(stream).Read(reverseY);
    }

    public void Encode(TextureData texture, Stream stream)
    {
        if (texture.Width == 0 || texture.Height == 0)
            throw new ArgumentException("A PNG image has at least one pixel.", nameof(texture));
        (PixelFormat format, byte colorType, int size) = texture.PixelFormat switch
        {
            PixelFormat.L8 or PixelFormat.L16 => (PixelFormat.L8, (byte)0, 1),
            PixelFormat.R8G8B8 or PixelFormat.B8G8R8 or PixelFormat.X8R8G8B8 or PixelFormat.X8B8G8R8
                or PixelFormat.R5G6B5 or PixelFormat.B5G6R5 or PixelFormat.R3G3B2 or PixelFormat.ShortRGB
                or PixelFormat.R8 or PixelFormat.G8 or PixelFormat.B8 => (PixelFormat.R8G8B8, (byte)2, 3),
            _ => (PixelFormat.R8G8B8A8, (byte)6, 4),
        };
        using PixelMapping pixels = texture.MapPixels(PixelMapMode.ReadOnly, format);
        stream.Write(Signature);
        byte[] header = new byte[13];
        BinaryPrimitives.WriteInt32BigEndian(header, texture.Width);
        BinaryPrimitives.WriteInt32BigEndian(header.AsSpan(4), texture.Height);
        header[8] = 8;
        header[9] = colorType;
        WriteChunk(stream, "IHDR", header);

        using MemoryStream packed = new();
        using (ZLibStream zlib = new(packed, CompressionLevel.Optimal, leaveOpen: true))
        {
            for (int row = 0; row < texture.Height; ++row)
            {
                zlib.WriteByte(0);
                zlib.Write(pixels.Data, row * pixels.Stride, texture.Width * size);
            }
        }
        WriteChunk(stream, "IDAT", packed.ToArray());
        WriteChunk(stream, "IEND", []);
    }

    /// <summary>The check sum of the type and the data of a chunk.</summary>
    internal static uint Crc(ReadOnlySpan<byte> bytes)
    {
        uint crc = uint.MaxValue;
        foreach (byte value in bytes)
            crc = CrcTable[(crc ^ value) & 0xFF] ^ crc >> 8;
        return ~crc;
    }

    private static void WriteChunk(Stream stream, string type, byte[] data)
    {
        byte[] chunk = new byte[12 + data.Length];
        BinaryPrimitives.WriteInt32BigEndian(chunk, data.Length);
        for (int i = 0; i < 4; ++i)
            chunk[4 + i] = (byte)type[i];
        data.CopyTo(chunk, 8);
        BinaryPrimitives.WriteUInt32BigEndian(chunk.AsSpan(8 + data.Length),
            Crc(chunk.AsSpan(4, 4 + data.Length)));
        stream.Write(chunk);
    }

    private static uint[] MakeCrcTable()
    {
        uint[] table = new uint[256];
        for (uint n = 0; n < 256; ++n)
        {
            uint value = n;
            for (int bit = 0; bit < 8; ++bit)
                value = (value & 1) != 0 ? 0xEDB88320 ^ value >> 1 : value >> 1;
            table[n] = value;
        }
        return table;
    }
}
