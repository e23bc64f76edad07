using System;
using System.Collections.Generic;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Render;

/// <summary>Something that can be drawn on: a window or textures.</summary>
public interface IRenderTarget : IDisposable
{
    /// <summary>The size in pixels.</summary>
    Vector2 Size { get; set; }

    /// <summary>The viewports.</summary>
    IList<Viewport> Viewports { get; }

    /// <summary>Makes a viewport.</summary>
    /// <param name="camera">What it shows.</param>
    /// <param name="backgroundColor">Its background, linear RGB from 0 to 1.</param>
    /// <param name="rect">Where it lies on the target.</param>
    Viewport CreateViewport(Camera camera, Vector3 backgroundColor, RelativeRectangle rect);

    /// <summary>Makes a viewport with a grey background.</summary>
    /// <param name="camera">What it shows.</param>
    /// <param name="rect">Where it lies on the target.</param>
    Viewport CreateViewport(Camera camera, RelativeRectangle rect);

    /// <summary>Makes a viewport over the whole target.</summary>
    /// <param name="camera">What it shows.</param>
    Viewport CreateViewport(Camera camera);
}
