using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Shading;

/// <summary>
/// A physically based material of the metallic and roughness kind. Its textures are slots as well and appear
/// when the material is enumerated.
/// </summary>
public class PbrMaterial : Material
{
    private const string AlbedoSlot = "Albedo";
    private const string OcclusionSlot = "Occlusion";
    private const string MetallicRoughnessSlot = "MetallicRoughness";

    /// <summary>Makes a white, rough, non-metallic material.</summary>
    public PbrMaterial()
        : this(new Vector3(1, 1, 1))
    {
    }

    /// <summary>Makes a rough, non-metallic material.</summary>
    /// <param name="albedo">The base colour, linear RGB from 0 to 1.</param>
    public PbrMaterial(Vector3 albedo)
        : base("")
    {
        Albedo = albedo;
    }

    /// <summary>How much light passes, from 0 (opaque) to 1 (invisible).</summary>
    public double Transparency { get; set; }

    /// <summary>The texture of tangent-space normals.</summary>
    public TextureBase? NormalTexture
    {
        get => GetTexture(MapNormal);
        set => SetTexture(MapNormal, value);
    }

    /// <summary>The texture of specular colours.</summary>
    public TextureBase? SpecularTexture
    {
        get => GetTexture(MapSpecular);
        set => SetTexture(MapSpecular, value);
    }

    /// <summary>The texture of base colours.</summary>
    public TextureBase? AlbedoTexture
    {
        get => GetTexture(AlbedoSlot);
        set => SetTexture(AlbedoSlot, value);
    }

    /// <summary>The base colour, linear RGB from 0 to 1; a factor on the texture.</summary>
    public Vector3 Albedo { get; set; }

    /// <summary>The texture of ambient occlusion, in its red channel.</summary>
    public TextureBase? OcclusionTexture
    {
        get => GetTexture(OcclusionSlot);
        set => SetTexture(OcclusionSlot, value);
    }

    /// <summary>The strength of the occlusion, from 0 to 1; 1 at first.</summary>
    public double OcclusionFactor { get; set; } = 1;

    /// <summary>How metallic the surface is, from 0 to 1; 0 at first.</summary>
    public double MetallicFactor { get; set; }

    /// <summary>How rough the surface is, from 0 (mirror) to 1; 1 at first.</summary>
    public double RoughnessFactor { get; set; } = 1;

    /// <summary>The texture of metalness in its blue channel and roughness in its green one.</summary>
    public TextureBase? MetallicRoughness
    {
        get => GetTexture(MetallicRoughnessSlot);
        set => SetTexture(MetallicRoughnessSlot, value);
    }

    /// <summary>The texture of the light the surface gives off.</summary>
    public TextureBase? EmissiveTexture
    {
        get => GetTexture(MapEmissive);
        set => SetTexture(MapEmissive, value);
    }

    /// <summary>The light the surface gives off, linear RGB; black at first.</summary>
    public Vector3 EmissiveColor { get; set; }

    /// <summary>
    /// Makes the physically based material closest to another one. Highlights of a Phong material become
    /// roughness by the usual relation of the exponent, the square root of 2 / (shininess + 2).
    /// </summary>
    /// <param name="material">A Lambert, Phong or physically based material.</param>
    /// <returns>A new material with the name and the textures of the source.</returns>
    /// <exception cref="ArgumentNullException">The material is null.</exception>
    /// <exception cref="NotSupportedException">
    /// The material is of another kind, such as a shader material.
    /// </exception>
    public static PbrMaterial FromMaterial(Material material)
    {
        ArgumentNullException.ThrowIfNull(material);
        PbrMaterial result = material switch
        {
            PbrMaterial pbr => FromPbr(pbr),
            PbrSpecularMaterial specular => FromSpecular(specular),
            LambertMaterial lambert => FromLambert(lambert),
            _ => throw new NotSupportedException(
                $"A {material.GetType().Name} has no equivalent physically based material."),
        };
        result.Name = material.Name;
        return result;
    }

    private static PbrMaterial FromPbr(PbrMaterial source)
    {
        PbrMaterial result = new(source.Albedo)
        {
            Transparency = source.Transparency,
            OcclusionFactor = source.OcclusionFactor,
            MetallicFactor = source.MetallicFactor,
            RoughnessFactor = source.RoughnessFactor,
            EmissiveColor = source.EmissiveColor,
        };
        foreach (TextureSlot slot in source)
        {
            result.SetTexture(slot.SlotName, slot.Texture);
        }
        return result;
    }

    private static PbrMaterial FromSpecular(PbrSpecularMaterial source) => new(source.Diffuse)
    {
        Transparency = source.Transparency,
        RoughnessFactor = 1 - source.GlossinessFactor,
        EmissiveColor = source.EmissiveColor,
        AlbedoTexture = source.DiffuseTexture,
        NormalTexture = source.NormalTexture,
        EmissiveTexture = source.EmissiveTexture,
    };

    private static PbrMaterial FromLambert(LambertMaterial source) => new(source.DiffuseColor)
    {
        Transparency = source.Transparency,
        RoughnessFactor = source is PhongMaterial phong
            ? Math.Sqrt(2 / (Math.Max(phong.Shininess, 0) + 2))
            : 1,
        EmissiveColor = source.EmissiveColor,
        AlbedoTexture = source.GetTexture(MapDiffuse),
        NormalTexture = source.GetTexture(MapNormal),
        SpecularTexture = source.GetTexture(MapSpecular),
        EmissiveTexture = source.GetTexture(MapEmissive),
    };
}
