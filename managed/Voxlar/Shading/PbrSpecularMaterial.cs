using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Shading;

/// <summary>A physically based material of the specular and glossiness kind.</summary>
public class PbrSpecularMaterial : Material
{
    /// <summary>The slot of the texture of specular colour and glossiness.</summary>
    public static readonly string MapSpecularGlossiness = "SpecularGlossiness";

    /// <summary>Makes a white material with full glossiness.</summary>
    public PbrSpecularMaterial()
        : base("")
    {
    }

    /// <summary>How much light passes, from 0 (opaque) to 1 (invisible).</summary>
    public double Transparency { get; set; }

    /// <summary>The texture of tangent-space normals.</summary>
    public TextureBase? NormalTexture
    {
        get => GetTexture(MapNormal);
        set => SetTexture(MapNormal, value);
    }

    /// <summary>The texture of specular colour (RGB) and glossiness (alpha).</summary>
    public TextureBase? SpecularGlossinessTexture
    {
        get => GetTexture(MapSpecularGlossiness);
        set => SetTexture(MapSpecularGlossiness, value);
    }

    /// <summary>How smooth the surface is, from 0 to 1; 1 at first.</summary>
    public double GlossinessFactor { get; set; } = 1;

    /// <summary>The specular colour, linear RGB from 0 to 1; white at first.</summary>
    public Vector3 Specular { get; set; } = new(1, 1, 1);

    /// <summary>The texture of diffuse colours.</summary>
    public TextureBase? DiffuseTexture
    {
        get => GetTexture(MapDiffuse);
        set => SetTexture(MapDiffuse, value);
    }

    /// <summary>The diffuse colour, linear RGB from 0 to 1; white at first.</summary>
    public Vector3 Diffuse { get; set; } = new(1, 1, 1);

    /// <summary>The texture of the light the surface gives off.</summary>
    public TextureBase? EmissiveTexture
    {
        get => GetTexture(MapEmissive);
        set => SetTexture(MapEmissive, value);
    }

    /// <summary>The light the surface gives off, linear RGB; black at first.</summary>
    public Vector3 EmissiveColor { get; set; }
}
