using System;
using System.Collections.Generic;
using System.Text.Json;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Makes materials with their textures. A core material becomes a <see cref="PbrMaterial"/>, the specular and
/// glossiness extension a <see cref="PbrSpecularMaterial"/>, the common materials a Phong or Lambert
/// material. The values of all other material extensions become dynamic properties named "EXTENSION.member",
/// their textures slots of such a name.
/// </summary>
internal sealed class GltfMaterialReader
{
    private readonly GltfJson[] _materials;
    private readonly GltfTextureReader _textures;
    private readonly Material?[] _made;

    internal GltfMaterialReader(GltfJson root, GltfTextureReader textures)
    {
        _materials = root.Objects("materials");
        _made = new Material?[_materials.Length];
        _textures = textures;
    }

    internal int Count => _materials.Length;

    /// <summary>The material of a primitive that tells none: white, metallic and rough.</summary>
    internal Material Default { get; } = new PbrMaterial { MetallicFactor = 1, RoughnessFactor = 1 };

    internal bool IsUsed(int index) => _made[index] is not null;

    internal Material Get(int index) => _made[index] ??= Make(_materials[index]);

    private Material Make(GltfJson json)
    {
        json.TryGetObject("pbrMetallicRoughness", out GltfJson metallic);
        Material material;
        string? typed = null;
        if (json.TryGetExtension(GltfNames.SpecularGlossiness, out GltfJson glossy))
        {
            typed = GltfNames.SpecularGlossiness;
            material = MakeSpecular(json, glossy);
        }
        else if (json.TryGetExtension(GltfNames.MaterialsCommon, out GltfJson common)
            && common.TryGet("technique", out _))
        {
            typed = GltfNames.MaterialsCommon;
            material = MakeCommon(common);
        }
        else
        {
            material = MakePbr(json, metallic);
        }
        material.Name = json.StringOrNull("name") ?? string.Empty;
        ReadCommonMembers(json, material);
        ReadExtensions(json, material, typed);
        GltfExtras.Read(json, material);
        return material;
    }

    private PbrMaterial MakePbr(GltfJson json, GltfJson metallic)
    {
        double[] color = Factor(metallic, "baseColorFactor", [1, 1, 1, 1]);
        var material = new PbrMaterial(new Vector3(color[0], color[1], color[2]))
        {
            Transparency = 1 - color[3],
            MetallicFactor = metallic.IsObject ? metallic.Double("metallicFactor", 1) : 1,
            RoughnessFactor = metallic.IsObject ? metallic.Double("roughnessFactor", 1) : 1,
            EmissiveColor = ToVector(Factor(json, "emissiveFactor", [0, 0, 0])),
        };
        if (_textures.TryRead(metallic, "baseColorTexture", out Texture? albedo, out _))
            material.AlbedoTexture = albedo;
        if (_textures.TryRead(metallic, "metallicRoughnessTexture", out Texture? roughness, out _))
            material.MetallicRoughness = roughness;
        if (_textures.TryRead(json, "occlusionTexture", out Texture? occlusion, out GltfJson info))
        {
            material.OcclusionTexture = occlusion;
            material.OcclusionFactor = info.Double("strength", 1);
        }
        if (_textures.TryRead(json, "emissiveTexture", out Texture? emissive, out _))
            material.EmissiveTexture = emissive;
        return material;
    }

    private PbrSpecularMaterial MakeSpecular(GltfJson json, GltfJson glossy)
    {
        double[] diffuse = Factor(glossy, "diffuseFactor", [1, 1, 1, 1]);
        var material = new PbrSpecularMaterial
        {
            Diffuse = new Vector3(diffuse[0], diffuse[1], diffuse[2]),
            Transparency = 1 - diffuse[3],
            Specular = ToVector(Factor(glossy, "specularFactor", [1, 1, 1])),
            GlossinessFactor = glossy.Double("glossinessFactor", 1),
            EmissiveColor = ToVector(Factor(json, "emissiveFactor", [0, 0, 0])),
        };
        if (_textures.TryRead(glossy, "diffuseTexture", out Texture? diffuseTexture, out _))
            material.DiffuseTexture = diffuseTexture;
        if (_textures.TryRead(glossy, "specularGlossinessTexture", out Texture? specular, out _))
            material.SpecularGlossinessTexture = specular;
        if (_textures.TryRead(json, "emissiveTexture", out Texture? emissive, out _))
            material.EmissiveTexture = emissive;
        if (_textures.TryRead(json, "occlusionTexture", out Texture? occlusion, out _))
            material.SetTexture("Occlusion", occlusion);
        return material;
    }

    private LambertMaterial MakeCommon(GltfJson common)
    {
        string technique = common.Require("technique").AsString();
        common.TryGetObject("values", out GltfJson values);
        LambertMaterial material = technique is "PHONG" or "BLINN" ? new PhongMaterial()
            : new LambertMaterial();
        material.AmbientColor = ToVector(Factor(values, "ambient", [0, 0, 0, 1]));
        material.EmissiveColor = ToVector(Factor(values, "emission", [0, 0, 0, 1]));
        material.DiffuseColor = ToVector(Factor(values, "diffuse", [0, 0, 0, 1]));
        material.TransparentColor = ToVector(Factor(values, "transparent", [0, 0, 0, 1]));
        material.Transparency = values.IsObject ? 1 - values.Double("transparency", 1) : 0;
        if (material is PhongMaterial phong)
        {
            phong.SpecularColor = ToVector(Factor(values, "specular", [0, 0, 0, 1]));
            phong.Shininess = values.IsObject ? values.Double("shininess", 0) : 0;
        }
        ReadSlot(values, "diffuseTexture", material, Material.MapDiffuse);
        ReadSlot(values, "ambientTexture", material, Material.MapAmbient);
        ReadSlot(values, "emissionTexture", material, Material.MapEmissive);
        ReadSlot(values, "specularTexture", material, Material.MapSpecular);
        return material;
    }

    private void ReadSlot(GltfJson json, string name, Material material, string slot)
    {
        if (_textures.TryRead(json, name, out Texture? texture, out _))
            material.SetTexture(slot, texture);
    }

    private void ReadCommonMembers(GltfJson json, Material material)
    {
        if (_textures.TryRead(json, "normalTexture", out Texture? normal, out GltfJson info))
        {
            material.SetTexture(Material.MapNormal, normal);
            if (info.TryGet("scale", out GltfJson scale))
                material.SetProperty(GltfNames.NormalScale, scale.AsDouble());
        }
        if (json.StringOrNull("alphaMode") is string mode)
            material.SetProperty(GltfNames.AlphaMode, mode);
        if (json.TryGet("alphaCutoff", out GltfJson cutoff))
            material.SetProperty(GltfNames.AlphaCutoff, cutoff.AsDouble());
        if (json.Bool("doubleSided", false))
            material.SetProperty(GltfNames.DoubleSided, true);
    }

    private void ReadExtensions(GltfJson json, Material material, string? typed)
    {
        if (!json.TryGetObject("extensions", out GltfJson extensions))
            return;
        foreach ((string name, GltfJson content) in extensions.Members())
        {
            if (name == typed || !content.IsObject)
                continue;
            bool empty = true;
            foreach ((string member, GltfJson value) in content.Members())
            {
                empty = false;
                string property = name + "." + member;
                if (IsTexture(value)
                    && _textures.TryRead(content, member, out Texture? texture, out GltfJson info))
                    ReadExtensionTexture(material, property, texture!, info);
                else
                    material.SetProperty(property, GltfValues.FromJson(value.Element));
            }
            if (empty)
                material.SetProperty(name, true);
        }
    }

    private static void ReadExtensionTexture(Material material, string property, Texture texture,
        GltfJson info)
    {
        bool isSpecularColor = property == GltfNames.MaterialsSpecular + ".specularColorTexture";
        material.SetTexture(isSpecularColor && material is PbrMaterial ? Material.MapSpecular : property,
            texture);
        if (info.TryGet("scale", out GltfJson scale))
            material.SetProperty(property + ".scale", scale.AsDouble());
    }

    private static bool IsTexture(GltfJson value) =>
        value.IsObject && value.TryGet("index", out GltfJson index)
            && index.Element.ValueKind == JsonValueKind.Number;

    private static double[] Factor(GltfJson owner, string name, double[] otherwise)
    {
        if (!owner.IsObject || !owner.TryGet(name, out GltfJson value))
            return otherwise;
        double[] factor = Array.ConvertAll(value.Items(), static item => item.AsDouble());
        if (factor.Length < Math.Min(3, otherwise.Length))
            throw value.Place.Fault($"{otherwise.Length} numbers are expected, {factor.Length} are there");
        // Common materials tell colours with or without alpha; a missing one is opaque.
        return factor.Length < otherwise.Length ? [.. factor, 1] : factor;
    }

    private static Vector3 ToVector(double[] values) => new(values[0], values[1], values[2]);
}
