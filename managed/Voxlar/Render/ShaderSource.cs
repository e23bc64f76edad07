namespace Velbor.Voxlar.Render;

/// <summary>The source of a shader program; its subclasses tell in which form.</summary>
public abstract class ShaderSource
{
    private protected ShaderSource()
    {
    }
}
