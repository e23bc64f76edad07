namespace Velbor.Voxlar.Render;

/// <summary>How polygons are filled.</summary>
public enum PolygonMode
{
    Point = 0,
    Line = 1,
    Fill = 2,
}
