using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Render;

/// <summary>A part of a render target and the camera it shows.</summary>
public class Viewport
{
    internal Viewport(IRenderTarget renderTarget, Frustum frustum, RelativeRectangle area)
    {
        RenderTarget = renderTarget;
        Frustum = frustum;
        Area = area;
    }

    /// <summary>The camera or light it shows the view of.</summary>
    public Frustum Frustum { get; set; }

    /// <summary>Whether it is drawn.</summary>
    public bool Enabled { get; set; } = true;

    /// <summary>The target it lies on.</summary>
    public IRenderTarget RenderTarget { get; }

    /// <summary>Where it lies on the target.</summary>
    public RelativeRectangle Area { get; set; }

    /// <summary>Its place among overlapping viewports; a higher one covers a lower one.</summary>
    public int ZOrder { get; set; }

    /// <summary>The background, linear RGB from 0 to 1.</summary>
    public Vector3 BackgroundColor { get; set; } = new(0.5, 0.5, 0.5);

    /// <summary>The depth it is cleared to; 1, the farthest, at first.</summary>
    public float DepthClear { get; set; } = 1;
}
