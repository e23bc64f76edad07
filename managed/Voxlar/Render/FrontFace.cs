namespace Velbor.Voxlar.Render;

/// <summary>The winding of front faces.</summary>
public enum FrontFace
{
    Clockwise = 0,
    CounterClockwise = 1,
}
