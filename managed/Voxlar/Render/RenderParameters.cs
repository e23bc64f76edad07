namespace Velbor.Voxlar.Render;

/// <summary>What a render target has for each pixel.</summary>
public class RenderParameters
{
    /// <summary>Makes parameters.</summary>
    /// <param name="doubleBuffering">Whether drawing goes to a hidden buffer that is shown when done.</param>
    /// <param name="colorBits">The bits of colour.</param>
    /// <param name="depthBits">The bits of depth.</param>
    /// <param name="stencilBits">The bits of the stencil.</param>
    public RenderParameters(bool doubleBuffering, int colorBits, int depthBits, int stencilBits)
    {
        DoubleBuffering = doubleBuffering;
        ColorBits = colorBits;
        DepthBits = depthBits;
        StencilBits = stencilBits;
    }

    /// <summary>Whether drawing goes to a hidden buffer that is shown when done.</summary>
    public bool DoubleBuffering { get; set; }

    /// <summary>The bits of colour.</summary>
    public int ColorBits { get; set; }

    /// <summary>The bits of depth.</summary>
    public int DepthBits { get; set; }

    /// <summary>The bits of the stencil.</summary>
    public int StencilBits { get; set; }
}
