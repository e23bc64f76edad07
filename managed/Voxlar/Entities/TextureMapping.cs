namespace Velbor.Voxlar.Entities;

/// <summary>The kind of texture a UV set belongs to.</summary>
public enum TextureMapping
{
    Ambient = 0,
    Emissive = 1,
    Diffuse = 2,
    Opacity = 3,
    Bump = 4,
    Normal = 5,
    Specular = 6,
    Glow = 7,
    Reflection = 8,
    Shadow = 9,
    Shininess = 10,
    Displacement = 11,
}
