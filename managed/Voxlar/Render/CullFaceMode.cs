namespace Velbor.Voxlar.Render;

/// <summary>Which faces are left out of drawing.</summary>
public enum CullFaceMode
{
    Back = 1,
    Front = 2,
    Both = 3,
}
