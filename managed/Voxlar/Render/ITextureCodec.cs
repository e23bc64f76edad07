namespace Velbor.Voxlar.Render;

/// <summary>
/// Reads and writes image formats; <see cref="TextureCodec.RegisterCodec"/> makes it known.
/// </summary>
public interface ITextureCodec
{
    /// <summary>Gives the decoders, one for each format that is read.</summary>
    ITextureDecoder[] GetDecoders();

    /// <summary>Gives the encoders, one for each format that is written.</summary>
    ITextureEncoder[] GetEncoders();
}
