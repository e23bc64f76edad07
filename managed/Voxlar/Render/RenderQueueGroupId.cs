namespace Velbor.Voxlar.Render;

/// <summary>The group of a render queue; groups are drawn in ascending order.</summary>
public enum RenderQueueGroupId
{
    Background = 0,
    Skies = 1,
    Geometries = 2,
    Main = 3,
    Opaque = 4,
    Overlay = 5,
}
