namespace Velbor.Voxlar.Render;

/// <summary>A comparison of the depth or stencil test.</summary>
public enum CompareFunction
{
    Never = 0,
    Less = 1,
    Equal = 2,
    LEqual = 3,
    Greater = 4,
    NotEqual = 5,
    GEqual = 6,
    Always = 7,
}
