using System;

namespace Velbor.Voxlar.Render;

/// <summary>The calls an entity renderer wants.</summary>
[Flags]
public enum EntityRendererFeatures : byte
{
    /// <summary>Rendering alone.</summary>
    Default = 0,

    /// <summary>A call at the begin of each frame.</summary>
    FrameBegin = 1,

    /// <summary>A call at the end of each frame.</summary>
    FrameEnd = 2,

    /// <summary>A part in the shadow map.</summary>
    Shadowmap = 4,
}
