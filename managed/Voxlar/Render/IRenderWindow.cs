namespace Velbor.Voxlar.Render;

/// <summary>A window that can be drawn on.</summary>
public interface IRenderWindow : IRenderTarget
{
}
