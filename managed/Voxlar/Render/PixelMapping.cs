using System;

namespace Velbor.Voxlar.Render;

/// <summary>
/// A copy of the pixels of an image, or of a part of it. Unless it was made to read only, disposing it puts
/// the pixels back into the image.
/// </summary>
public sealed class PixelMapping : IDisposable
{
    private Action<PixelMapping>? _writeBack;

    internal PixelMapping(byte[] data, int stride, int width, int height, Action<PixelMapping>? writeBack)
    {
        Data = data;
        Stride = stride;
        Width = width;
        Height = height;
        _writeBack = writeBack;
    }

    /// <summary>The number of bytes from one row to the next.</summary>
    public int Stride { get; }

    /// <summary>The number of rows.</summary>
    public int Height { get; }

    /// <summary>The number of pixels in a row.</summary>
    public int Width { get; }

    /// <summary>The bytes of the pixels.</summary>
    public byte[] Data { get; }

    /// <summary>
    /// Puts the pixels back into the image, once, if the mapping was not made to read only.
    /// </summary>
    public void Dispose()
    {
        Action<PixelMapping>? writeBack = _writeBack;
        _writeBack = null;
        writeBack?.Invoke(this);
    }
}
