namespace Velbor.Voxlar.Render;

/// <summary>What happens to the stencil value.</summary>
public enum StencilAction
{
    Keep = 0,
    Zero = 1,
    Replace = 2,
    Increment = 3,
    IncrementWrap = 4,
    Decrement = 5,
    DecrementWrap = 6,
    Invert = 7,
}
