namespace Velbor.Voxlar.Entities;

/// <summary>How a camera projects.</summary>
public enum ProjectionType
{
    Perspective = 0,
    Orthographic = 1,
}
