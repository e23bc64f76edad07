namespace Velbor.Voxlar.Render;

/// <summary>Which shader set a renderer uses.</summary>
public enum PresetShaders
{
    Default = 0,
    Customized = 1,
}
