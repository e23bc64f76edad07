using System;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Render;

/// <summary>A texture on a device.</summary>
public interface ITextureUnit : IDisposable
{
    /// <summary>The kind of the texture.</summary>
    TextureType Type { get; }

    /// <summary>The width in texels.</summary>
    int Width { get; }

    /// <summary>The height in texels.</summary>
    int Height { get; }

    /// <summary>The depth in texels.</summary>
    int Depth { get; }

    /// <summary>What lies beyond the texture in u.</summary>
    WrapMode UWrap { get; set; }

    /// <summary>What lies beyond the texture in v.</summary>
    WrapMode VWrap { get; set; }

    /// <summary>What lies beyond the texture in w.</summary>
    WrapMode WWrap { get; set; }

    /// <summary>The filter of a texture drawn smaller than it is.</summary>
    TextureFilter Minification { get; set; }

    /// <summary>The filter of a texture drawn larger than it is.</summary>
    TextureFilter Magnification { get; set; }

    /// <summary>The filter between mipmap levels.</summary>
    TextureFilter Mipmap { get; set; }

    /// <summary>The offset of the texture coordinates.</summary>
    Vector2 Scroll { get; set; }

    /// <summary>The scale of the texture coordinates.</summary>
    Vector2 Scale { get; set; }
}
