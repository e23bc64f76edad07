using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Render;

/// <summary>The fixed state of a pipeline: blending, culling, depth, stencil and scissor.</summary>
public class RenderState : IDisposable, IComparable<RenderState>
{
    /// <summary>Whether drawing blends with what is there.</summary>
    public bool Blend { get; set; }

    /// <summary>The colour of the constant blend factors.</summary>
    public FVector4 BlendColor { get; set; }

    /// <summary>The factor on what is drawn.</summary>
    public BlendFactor SourceBlendFactor { get; set; } = BlendFactor.One;

    /// <summary>The factor on what is there.</summary>
    public BlendFactor DestinationBlendFactor { get; set; } = BlendFactor.Zero;

    /// <summary>Whether faces are left out by their side; true at first.</summary>
    public bool CullFace { get; set; } = true;

    /// <summary>The side that is left out; the back at first.</summary>
    public CullFaceMode CullFaceMode { get; set; } = CullFaceMode.Back;

    /// <summary>The winding of front faces; counter-clockwise at first.</summary>
    public FrontFace FrontFace { get; set; } = FrontFace.CounterClockwise;

    /// <summary>Whether depth is tested; true at first.</summary>
    public bool DepthTest { get; set; } = true;

    /// <summary>Whether depth is written; true at first.</summary>
    public bool DepthMask { get; set; } = true;

    /// <summary>The comparison of the depth test; less at first.</summary>
    public CompareFunction DepthFunction { get; set; } = CompareFunction.Less;

    /// <summary>Whether the stencil is tested.</summary>
    public bool StencilTest { get; set; }

    /// <summary>The value the stencil is compared with.</summary>
    public int StencilReference { get; set; }

    /// <summary>The bits of the stencil that count; all at first.</summary>
    public uint StencilMask { get; set; } = uint.MaxValue;

    /// <summary>The stencil test of front faces.</summary>
    public StencilState StencilFrontFace { get; } = new();

    /// <summary>The stencil test of back faces.</summary>
    public StencilState StencilBackFace { get; } = new();

    /// <summary>Whether drawing is cut off at a rectangle.</summary>
    public bool ScissorTest { get; set; }

    /// <summary>How polygons are filled; filled at first.</summary>
    public PolygonMode PolygonMode { get; set; } = PolygonMode.Fill;

    /// <summary>
    /// Puts states into an order in which equal states stand together, so that a queue changes state seldom.
    /// </summary>
    /// <param name="other">The other state; null comes first.</param>
    /// <returns>Less than 0, 0 for equal states, or more than 0.</returns>
    public int CompareTo(RenderState? other)
    {
        if (other is null)
            return 1;
        int order = BlendKey.CompareTo(other.BlendKey);
        if (order == 0)
            order = FaceKey.CompareTo(other.FaceKey);
        if (order == 0)
            order = DepthKey.CompareTo(other.DepthKey);
        if (order == 0)
            order = StencilKey.CompareTo(other.StencilKey);
        if (order == 0)
            order = StencilFrontFace.OrderKey.CompareTo(other.StencilFrontFace.OrderKey);
        if (order == 0)
            order = StencilBackFace.OrderKey.CompareTo(other.StencilBackFace.OrderKey);
        return order;
    }

    /// <summary>
    /// Frees what a device keeps for the state; a state that is on no device has nothing to free.
    /// </summary>
    public void Dispose()
    {
        GC.SuppressFinalize(this);
    }

    private (bool, int, int, (float, float, float, float)) BlendKey =>
        (Blend, (int)SourceBlendFactor, (int)DestinationBlendFactor,
            (BlendColor.x, BlendColor.y, BlendColor.z, BlendColor.w));

    private (bool, int, int, int, bool) FaceKey =>
        (CullFace, (int)CullFaceMode, (int)FrontFace, (int)PolygonMode, ScissorTest);

    private (bool, bool, int) DepthKey => (DepthTest, DepthMask, (int)DepthFunction);

    private (bool, int, uint) StencilKey => (StencilTest, StencilReference, StencilMask);
}
