using System;
using System.Buffers.Binary;
using System.IO;
using System.IO.Compression;

namespace Velbor.Voxlar.Render;

/// <summary>Reads the chunks of one PNG image, after its signature.</summary>
internal sealed class PngReader(Stream stream)
{
    private const long MaximumPixels = 1L << 28;

    /// <summary>More than the compression of the format can reach, which is about 1032.</summary>
    private const long MaximumRatio = 1100;

    private const int Grey = 0;
    private const int Rgb = 2;
    private const int Palette = 3;
    private const int GreyAlpha = 4;
    private const int Rgba = 6;

    private readonly MemoryStream _packed = new();
    private int _width;
    private int _height;
    private int _depth;
    private int _colorType;
    private bool _interlaced;
    private byte[] _palette = [];
    private byte[] _transparency = [];

    public TextureData Read(bool reverseY)
    {
        while (ReadChunk())
        {
        }
        if (_width == 0)
            throw Damaged("it has no header");
        PixelFormat format = (_colorType, _transparency.Length > 0) switch
        {
            (Grey, false) => PixelFormat.L8,
            (Rgb or Palette, false) => PixelFormat.R8G8B8,
            _ => PixelFormat.R8G8B8A8,
        };
        // A header that promises far more than compressed data can hold would make room for nothing.
        long promised = (long)_width * _height * Channels * _depth / 8;
        if (promised > MaximumRatio * (_packed.Length + 64))
            throw Damaged("it has too few pixels");
        TextureData texture = new(_width, _height, format);
        _packed.Position = 0;
        using ZLibStream zlib = new(_packed, CompressionMode.Decompress);
        if (!_interlaced)
        {
            ReadPass(zlib, texture, 0, 0, 1, 1, reverseY);
            return texture;
        }
        ReadOnlySpan<(int X, int Y, int StepX, int StepY)> passes =
            [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2),
                (0, 1, 1, 2)];
        foreach ((int x, int y, int stepX, int stepY) in passes)
            ReadPass(zlib, texture, x, y, stepX, stepY, reverseY);
        return texture;
    }

    private static InvalidDataException Damaged(string why) => new($"The PNG image is damaged: {why}.");

    private bool ReadChunk()
    {
        Span<byte> head = stackalloc byte[8];
        Fill(head);
        uint length = BinaryPrimitives.ReadUInt32BigEndian(head);
        if (length > int.MaxValue || length > stream.Length - stream.Position)
            throw Damaged("a chunk is longer than the file");
        byte[] typed = new byte[4 + length];
        head[4..].CopyTo(typed);
        Fill(typed.AsSpan(4));
        Span<byte> crc = stackalloc byte[4];
        Fill(crc);
        if (BinaryPrimitives.ReadUInt32BigEndian(crc) != PngCodec.Crc(typed))
            throw Damaged("a check sum is wrong");
        ReadOnlySpan<byte> data = typed.AsSpan(4);
        switch (System.Text.Encoding.ASCII.GetString(typed, 0, 4))
        {
            case "IHDR":
                ReadHeader(data);
                break;
            case "PLTE":
                _palette = data.ToArray();
                break;
            case "tRNS":
                _transparency = data.ToArray();
                break;
            case "IDAT":
                _packed.Write(data);
                break;
            case "IEND":
                return false;
        }
        return true;
    }

    private void ReadHeader(ReadOnlySpan<byte> data)
    {
        if (data.Length < 13)
            throw Damaged("its header is too short");
        _width = BinaryPrimitives.ReadInt32BigEndian(data);
        _height = BinaryPrimitives.ReadInt32BigEndian(data[4..]);
        _depth = data[8];
        _colorType = data[9];
        _interlaced = data[12] == 1;
        bool depthFits = _colorType switch
        {
            Grey => _depth is 1 or 2 or 4 or 8 or 16,
            Palette => _depth is 1 or 2 or 4 or 8,
            Rgb or GreyAlpha or Rgba => _depth is 8 or 16,
            _ => false,
        };
        if (_width <= 0 || _height <= 0 || (long)_width * _height > MaximumPixels || !depthFits
            || data[10] != 0 || data[11] != 0 || data[12] > 1)
        {
            throw Damaged("its header has values that do not go together");
        }
    }

    private void ReadPass(Stream packed, TextureData texture, int x, int y, int stepX, int stepY,
        bool reverseY)
    {
        int columns = (_width - x + stepX - 1) / stepX;
        int rows = (_height - y + stepY - 1) / stepY;
        if (columns <= 0 || rows <= 0)
            return;
        int bits = Channels * _depth;
        int rowBytes = checked((int)(((long)columns * bits + 7) / 8));
        int distance = Math.Max(bits / 8, 1);
        byte[] current = new byte[rowBytes];
        byte[] previous = new byte[rowBytes];
        for (int row = 0; row < rows; ++row)
        {
            int filter = packed.ReadByte();
            try
            {
                packed.ReadExactly(current);
            }
            catch (EndOfStreamException)
            {
                throw Damaged("it has too few pixels");
            }
            Unfilter(filter, current, previous, distance);
            int targetRow = y + row * stepY;
            if (reverseY)
                targetRow = _height - 1 - targetRow;
            for (int column = 0; column < columns; ++column)
            {
                int at = targetRow * texture.Stride + (x + column * stepX) * texture.BytesPerPixel;
                Store(current, column, texture.Data.AsSpan(at, texture.BytesPerPixel));
            }
            (current, previous) = (previous, current);
        }
    }

    private int Channels => _colorType switch
    {
        Rgb => 3,
        GreyAlpha => 2,
        Rgba => 4,
        _ => 1,
    };

    private static void Unfilter(int filter, byte[] row, byte[] above, int distance)
    {
        for (int i = 0; i < row.Length; ++i)
        {
            int left = i >= distance ? row[i - distance] : 0;
            int corner = i >= distance ? above[i - distance] : 0;
            int predicted = filter switch
            {
                0 => 0,
                1 => left,
                2 => above[i],
                3 => (left + above[i]) / 2,
                4 => Paeth(left, above[i], corner),
                _ => throw Damaged("a row has an unknown filter"),
            };
            row[i] = (byte)(row[i] + predicted);
        }
    }

    private static int Paeth(int left, int above, int corner)
    {
        int guess = left + above - corner;
        int toLeft = Math.Abs(guess - left);
        int toAbove = Math.Abs(guess - above);
        int toCorner = Math.Abs(guess - corner);
        if (toLeft <= toAbove && toLeft <= toCorner)
            return left;
        return toAbove <= toCorner ? above : corner;
    }

    // Writes one pixel in the format of the texture: grey, RGB or RGBA.
    private void Store(byte[] row, int column, Span<byte> pixel)
    {
        if (_colorType == Palette)
        {
            int entry = Sample(row, column, 0);
            if (entry * 3 + 2 >= _palette.Length)
                throw Damaged("a pixel has no entry in the palette");
            _palette.AsSpan(entry * 3, 3).CopyTo(pixel);
            if (pixel.Length == 4)
                pixel[3] = entry < _transparency.Length ? _transparency[entry] : byte.MaxValue;
            return;
        }
        int channels = Channels;
        int colors = channels < 3 ? 1 : 3;
        bool see = _transparency.Length >= 2 * colors && channels is 1 or 3;
        for (int c = 0; c < colors; ++c)
        {
            int sample = Sample(row, column, c);
            see = see && sample == (_transparency[2 * c] << 8 | _transparency[2 * c + 1]);
            pixel[c] = To8Bits(sample);
        }
        if (pixel.Length == 1)
            return;
        if (colors == 1)
            pixel[1] = pixel[2] = pixel[0];
        if (pixel.Length == 4)
        {
            byte mask = see ? (byte)0 : byte.MaxValue;
            pixel[3] = channels is 2 or 4 ? To8Bits(Sample(row, column, channels - 1)) : mask;
        }
    }

    private int Sample(byte[] row, int column, int channel)
    {
        int index = column * Channels + channel;
        if (_depth == 16)
            return row[2 * index] << 8 | row[2 * index + 1];
        if (_depth == 8)
            return row[index];
        int bit = index * _depth;
        return row[bit / 8] >> (8 - _depth - bit % 8) & ((1 << _depth) - 1);
    }

    private byte To8Bits(int sample) => _depth switch
    {
        16 => (byte)((sample * 255 + 32767) / 65535),
        8 => (byte)sample,
        _ => (byte)(sample * 255 / ((1 << _depth) - 1)),
    };

    private void Fill(Span<byte> bytes)
    {
        if (stream.ReadAtLeast(bytes, bytes.Length, throwOnEndOfStream: false) < bytes.Length)
            throw Damaged("it ends too early");
    }
}
