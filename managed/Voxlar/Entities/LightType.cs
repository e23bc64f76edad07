namespace Velbor.Voxlar.Entities;

/// <summary>The kind of a light source.</summary>
public enum LightType
{
    Point = 0,
    Directional = 1,
    Spot = 2,
    Area = 3,
    Volume = 4,
}
