using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Render;

public class TextureDataTests
{
    private static TextureData Noise(int width, int height, PixelFormat format, int seed = 3)
    {
        TextureData image = new(width, height, format);
        new Random(seed).NextBytes(image.Data);
        return image;
    }

    [Fact]
    public void SizesFollowTheFormat()
    {
        TextureData image = new(5, 4, PixelFormat.R8G8B8);
        Assert.Equal((15, 3, 60), (image.Stride, image.BytesPerPixel, image.Data.Length));
        TextureData packed = new(5, 4, PixelFormat.Dxt1);
        Assert.Equal((16, 0, 16), (packed.Stride, packed.BytesPerPixel, packed.Data.Length));
        Assert.Empty(new TextureData().Data);
        Assert.Throws<ArgumentException>(() => new TextureData(1, 1, PixelFormat.Unknown));
        Assert.Throws<ArgumentOutOfRangeException>(() => new TextureData(-1, 1, PixelFormat.L8));
    }

    [Fact]
    public void ValuesThatDoNotFitAreRefused()
    {
        Assert.Throws<ArgumentException>(() =>
            new TextureData(4, 4, 8, 4, PixelFormat.R8G8B8A8, new byte[64]));
        Assert.Throws<ArgumentException>(() =>
            new TextureData(4, 4, 16, 3, PixelFormat.R8G8B8A8, new byte[64]));
        Assert.Throws<ArgumentException>(() =>
            new TextureData(4, 4, 16, 4, PixelFormat.R8G8B8A8, new byte[63]));
        Assert.Throws<ArgumentException>(
            () => new TextureData(int.MaxValue, int.MaxValue, int.MaxValue, 1, PixelFormat.L8, new byte[9]));
        Assert.Equal(20, new TextureData(4, 4, 20, 4, PixelFormat.R8G8B8A8, new byte[76]).Stride);
    }

    [Theory]
    [InlineData(PixelFormat.R8G8B8A8, new byte[] { 10, 20, 30, 40 })]
    [InlineData(PixelFormat.B8G8R8A8, new byte[] { 30, 20, 10, 40 })]
    [InlineData(PixelFormat.A8R8G8B8, new byte[] { 40, 10, 20, 30 })]
    [InlineData(PixelFormat.A8B8G8R8, new byte[] { 40, 30, 20, 10 })]
    [InlineData(PixelFormat.X8B8G8R8, new byte[] { 0, 30, 20, 10 })]
    [InlineData(PixelFormat.B8G8R8, new byte[] { 30, 20, 10 })]
    [InlineData(PixelFormat.R8, new byte[] { 10 })]
    [InlineData(PixelFormat.G8, new byte[] { 20 })]
    [InlineData(PixelFormat.A8, new byte[] { 40 })]
    [InlineData(PixelFormat.L8, new byte[] { 18 })]
    [InlineData(PixelFormat.ByteLA, new byte[] { 18, 40 })]
    [InlineData(PixelFormat.L16, new byte[] { 0x39, 0x12 })]
    [InlineData(PixelFormat.R5G6B5, new byte[] { 0xA4, 0x08 })]
    public void PixelsAreConverted(PixelFormat format, byte[] expected)
    {
        TextureData image = new(1, 1, 4, 4, PixelFormat.R8G8B8A8, [10, 20, 30, 40]);
        image.TransformPixelFormat(format);
        Assert.Equal(format, image.PixelFormat);
        Assert.Equal(expected.Length, image.BytesPerPixel);
        Assert.Equal(expected, image.Data);
    }

    [Fact]
    public void EveryConvertibleFormatSurvivesWiderOnes()
    {
        foreach (PixelFormat format in Enum.GetValues<PixelFormat>())
        {
            TextureData image;
            try
            {
                image = Noise(7, 5, format);
                image.TransformPixelFormat(PixelFormat.ShortRGBA);
            }
            catch (Exception error) when (error is NotSupportedException or ArgumentException)
            {
                continue;
            }
            byte[] wide = [.. image.Data];
            image.TransformPixelFormat(format);
            image.TransformPixelFormat(PixelFormat.ShortRGBA);
            Assert.Equal(wide, image.Data);
        }
    }

    [Fact]
    public void FloatFormatsAreNotConverted()
    {
        TextureData image = new(2, 2, PixelFormat.Float32RGBA);
        Assert.Throws<NotSupportedException>(() => image.TransformPixelFormat(PixelFormat.R8G8B8A8));
        Assert.Equal(PixelFormat.Float32RGBA, image.PixelFormat);
        using PixelMapping same = image.MapPixels(PixelMapMode.ReadOnly);
        Assert.Equal(64, same.Data.Length);
    }

    [Fact]
    public void MappingARectangle()
    {
        TextureData image = new(4, 3, PixelFormat.L8);
        for (int i = 0; i < 12; i++)
            image.Data[i] = (byte)i;
        using (PixelMapping read =
            image.MapPixels(new Rect(1, 1, 2, 2), PixelMapMode.ReadOnly, PixelFormat.R8G8B8))
        {
            Assert.Equal((6, 2, 2), (read.Stride, read.Width, read.Height));
            Assert.Equal([5, 5, 5, 6, 6, 6, 9, 9, 9, 10, 10, 10], read.Data);
            read.Data[0] = 99;
        }
        Assert.Equal(5, image.Data[5]);
        PixelMapping write = image.MapPixels(new Rect(2, 0, 2, 3), PixelMapMode.ReadWrite, PixelFormat.L8);
        write.Data[5] = 200;
        Assert.Equal(11, image.Data[11]);
        write.Dispose();
        Assert.Equal(200, image.Data[11]);
        Assert.Equal(10, image.Data[10]);
        write.Data[5] = 1;
        write.Dispose();
        Assert.Equal(200, image.Data[11]);
        Assert.Throws<ArgumentOutOfRangeException>(
            () => image.MapPixels(new Rect(3, 0, 2, 1), PixelMapMode.ReadOnly, PixelFormat.L8));
        using PixelMapping blank = image.MapPixels(PixelMapMode.WriteOnly);
        Assert.All(blank.Data, b => Assert.Equal(0, b));
    }

    [Theory]
    [InlineData("png", PixelFormat.R8G8B8A8)]
    [InlineData(".PNG", PixelFormat.R8G8B8)]
    [InlineData("png", PixelFormat.L8)]
    [InlineData("bmp", PixelFormat.R8G8B8)]
    public void ImagesRoundTrip(string format, PixelFormat pixels)
    {
        TextureData image = Noise(13, 7, pixels);
        using MemoryStream stream = new();
        image.Save(stream, format);
        stream.Position = 0;
        TextureData back = TextureData.FromStream(stream);
        Assert.Equal((13, 7, pixels), (back.Width, back.Height, back.PixelFormat));
        Assert.Equal(image.Data, back.Data);
        stream.Position = 0;
        TextureData turned = TextureCodec.Decode(stream, true);
        Assert.Equal(image.Data[..image.Stride], turned.Data[(6 * image.Stride)..]);
    }

    [Fact]
    public void PngWithAllFiltersIsRead()
    {
        // A 2 x 5 image of 8-bit grey whose rows use the filters none, sub, up, average and Paeth.
        byte[] rows = [0, 10, 20, 1, 30, 10, 2, 5, 5, 3, 1, 2, 4, 7, 8];
        using MemoryStream packed = new();
        using (System.IO.Compression.ZLibStream zlib =
            new(packed, System.IO.Compression.CompressionLevel.Fastest, true))
            zlib.Write(rows);
        byte[] png = Png([0, 0, 0, 2, 0, 0, 0, 5, 8, 0, 0, 0, 0], packed.ToArray());
        TextureData image = TextureData.FromStream(new MemoryStream(png));
        // Average: 1 + 35/2 = 18, 2 + (18+45)/2 = 33. Paeth: 7 + 18 = 25; 8 + nearest to 25+33-18 = 40 among
        // 25, 33, 18 = 41.
        Assert.Equal([10, 20, 30, 40, 35, 45, 18, 33, 25, 41], image.Data);
    }

    [Fact]
    public void PngOfOneBitAndInterlacedPaletteAreRead()
    {
        byte[] bits = Png([0, 0, 0, 10, 0, 0, 0, 1, 1, 0, 0, 0, 0], Packed([0, 0b10110010, 0b01000000]));
        TextureData image = TextureData.FromStream(new MemoryStream(bits));
        Assert.Equal(new byte[] { 255, 0, 255, 255, 0, 0, 255, 0, 0, 255 }, image.Data);

        // Interlaced 3 x 3 with a palette: passes 1, 4 (column 2), 5 (row 2), 6 (column 1 of even rows) and 7
        // (row 1).
        byte[] palette = [0, 0, 0, 10, 0, 0, 20, 0, 0, 30, 0, 0, 40, 0, 0, 50, 0, 0, 60, 0, 0, 70, 0, 0, 80,
            0, 0];
        byte[] data = Packed([0, 0, 0, 2, 0, 6, 8, 0, 1, 0, 7, 0, 3, 4, 5]);
        byte[] png = Png([0, 0, 0, 3, 0, 0, 0, 3, 8, 3, 0, 0, 1], data, ("PLTE", palette), ("tRNS", [0]));
        TextureData interlaced = TextureData.FromStream(new MemoryStream(png));
        Assert.Equal(PixelFormat.R8G8B8A8, interlaced.PixelFormat);
        Assert.Equal(Enumerable.Range(0, 9).Select(i => (byte)(10 * i)),
            interlaced.Data.Where((_, i) => i % 4 == 0));
        Assert.Equal(new byte[] { 0, 255, 255 }, interlaced.Data.Where((_, i) => i % 4 == 3).Take(3));
    }

    [Fact]
    public void DamagedImagesAreRefused()
    {
        TextureData image = Noise(8, 8, PixelFormat.R8G8B8);
        foreach (string format in new[] { "png", "bmp" })
        {
            using MemoryStream stream = new();
            image.Save(stream, format);
            byte[] whole = stream.ToArray();
            for (int length = 2; length < whole.Length - 12; length += 7)
            {
                byte[] cut = whole[..length];
                Exception error = Assert.ThrowsAny<Exception>(() =>
                    TextureData.FromStream(new MemoryStream(cut)));
                Assert.True(error is InvalidDataException or NotSupportedException, error.ToString());
            }
            if (format == "png")
            {
                whole[40] ^= 1;
                Assert.Throws<InvalidDataException>(() => TextureData.FromStream(new MemoryStream(whole)));
            }
        }
        Assert.Throws<NotSupportedException>(() => TextureData.FromStream(new MemoryStream([1, 2, 3])));
        byte[] huge = Png([0, 0, 0x40, 0, 0, 0, 0x40, 0, 8, 6, 0, 0, 0], Packed([0]));
        long before = GC.GetAllocatedBytesForCurrentThread();
        Assert.Throws<InvalidDataException>(() => TextureData.FromStream(new MemoryStream(huge)));
        Assert.InRange(GC.GetAllocatedBytesForCurrentThread() - before, 0, 1_000_000);
    }

    [Fact]
    public void FilesAreSavedByTheirExtension()
    {
        string path = Path.Combine(Path.GetTempPath(), Path.GetRandomFileName() + ".png");
        try
        {
            TextureData image = Noise(3, 3, PixelFormat.R8G8B8);
            image.Save(path);
            Assert.Equal(image.Data, TextureData.FromFile(path).Data);
            Assert.Throws<NotSupportedException>(() => image.Save(path, "tga"));
            Assert.Equal(image.Data, TextureData.FromFile(path).Data);
        }
        finally
        {
            File.Delete(path);
        }
    }

    [Fact]
    public void CodecsCanBeRegistered()
    {
        Assert.Contains("png", TextureCodec.GetSupportedEncoderFormats());
        TextureCodec.RegisterCodec(new OneByte());
        Assert.Contains("one", TextureCodec.GetSupportedEncoderFormats());
        using MemoryStream stream = new();
        TextureCodec.Encode(new TextureData(1, 1, 1, 1, PixelFormat.L8, [77]), stream, "one");
        stream.Position = 0;
        Assert.Equal([77], TextureCodec.Decode(stream, false).Data);
        Assert.Throws<ArgumentNullException>(() => TextureCodec.RegisterCodec(null!));
    }

    private static byte[] Packed(byte[] rows)
    {
        using MemoryStream packed = new();
        using (System.IO.Compression.ZLibStream zlib =
            new(packed, System.IO.Compression.CompressionLevel.Fastest, true))
            zlib.Write(rows);
        return packed.ToArray();
    }

    private static byte[] Png(byte[] header, byte[] data, params (string Type, byte[] Data)[] further)
    {
        List<byte> png = [0x89, (byte)'P', (byte)'N', (byte)'G', 13, 10, 26, 10];
        void Chunk(string type, byte[] content)
        {
            byte[] typed = [.. type.Select(c => (byte)c), .. content];
            png.AddRange([0, 0, (byte)(content.Length >> 8), (byte)content.Length, .. typed]);
            // The check sum of the format, written out bit by bit.
            uint crc = uint.MaxValue;
            foreach (byte value in typed)
            {
                crc ^= value;
                for (int bit = 0; bit < 8; bit++)
                    crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
            }
            crc = ~crc;
            png.AddRange([(byte)(crc >> 24), (byte)(crc >> 16), (byte)(crc >> 8), (byte)crc]);
        }

        Chunk("IHDR", header);
        foreach ((string type, byte[] content) in further)
            Chunk(type, content);
        Chunk("IDAT", data);
        Chunk("IEND", []);
        return png.ToArray();
    }

    private sealed class OneByte : ITextureCodec, ITextureDecoder, ITextureEncoder
    {
        public string FileExtension => "ONE";

        public ITextureDecoder[] GetDecoders() => [this];

        public ITextureEncoder[] GetEncoders() => [this];

        public TextureData? Decode(Stream stream, bool reverseY) =>
            stream.Length == 1 ? new TextureData(1, 1, 1, 1, PixelFormat.L8, [(byte)stream.ReadByte()])
                : null;

        public void Encode(TextureData texture, Stream stream) => stream.WriteByte(texture.Data[0]);
    }
}
