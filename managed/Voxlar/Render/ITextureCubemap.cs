namespace Velbor.Voxlar.Render;

/// <summary>A texture on the six faces of a cube.</summary>
public interface ITextureCubemap : ITextureUnit
{
    /// <summary>Takes the content of a bitmap for a face.</summary>
    /// <param name="face">The face.</param>
    /// <param name="data">The bitmap.</param>
    void Load(CubeFace face, TextureData data);

    /// <summary>Copies a face into a bitmap.</summary>
    /// <param name="side">The face.</param>
    /// <param name="bitmap">The bitmap that takes it.</param>
    void Save(CubeFace side, TextureData bitmap);

    /// <summary>Makes a bitmap of a face.</summary>
    /// <param name="side">The face.</param>
    TextureData ToBitmap(CubeFace side);
}
