namespace Velbor.Voxlar.Render;

/// <summary>The stencil test of one side of polygons.</summary>
public class StencilState
{
    internal StencilState()
    {
    }

    /// <summary>The comparison with the stencil value; always true at first.</summary>
    public CompareFunction Compare { get; set; } = CompareFunction.Always;

    /// <summary>What happens when the stencil test fails.</summary>
    public StencilAction FailAction { get; set; }

    /// <summary>What happens when the stencil test passes and the depth test fails.</summary>
    public StencilAction DepthFailAction { get; set; }

    /// <summary>What happens when both tests pass.</summary>
    public StencilAction PassAction { get; set; }

    internal (int, int, int, int) OrderKey =>
        ((int)Compare, (int)FailAction, (int)DepthFailAction, (int)PassAction);
}
