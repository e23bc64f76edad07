using System.Collections.Generic;

namespace Velbor.Voxlar.Render;

/// <summary>Textures that can be drawn on.</summary>
public interface IRenderTexture : IRenderTarget
{
    /// <summary>The textures of colour.</summary>
    IList<ITextureUnit> Targets { get; }

    /// <summary>The texture of depth, or null.</summary>
    ITextureUnit? DepthTexture { get; }
}
