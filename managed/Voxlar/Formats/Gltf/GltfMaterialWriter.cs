using System;
using System.Collections.Generic;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Writes materials. A Lambert or Phong material is told as the nearest physically based one and, when common
/// materials are asked for, with its own values in that extension as well.
/// </summary>
internal sealed class GltfMaterialWriter
{
    private readonly GltfDocument _document;
    private readonly GltfTextureWriter _textures;
    private readonly GltfSaveOptions _options;
    private readonly WriteContext _context;
    private readonly Dictionary<Vector3, int> _colors = [];
    private readonly Dictionary<Material, int> _written = new(ReferenceEqualityComparer.Instance);

    internal GltfMaterialWriter(GltfDocument document, GltfTextureWriter textures, GltfSaveOptions options,
        WriteContext context)
    {
        _context = context;
        _document = document;
        _textures = textures;
        _options = options;
    }

    internal int IndexOf(Material material)
    {
        if (!_written.TryGetValue(material, out int index))
            _written[material] = index = _document.Add("materials", Write(material));
        return index;
    }

    /// <summary>
    /// A material that shows a colour as it is, for lines that have a colour and no material.
    /// </summary>
    internal int IndexOfColor(Vector3 color)
    {
        if (_colors.TryGetValue(color, out int index))
            return index;
        var json = new JsonObject
        {
            ["pbrMetallicRoughness"] = new JsonObject { ["baseColorFactor"] = Color(color) },
        };
        _document.AddExtension(json, "KHR_materials_unlit", new JsonObject());
        return _colors[color] = _document.Add("materials", json);
    }

    private JsonObject Write(Material material)
    {
        var json = new JsonObject();
        if (material.Name.Length > 0)
            json["name"] = material.Name;
        switch (material)
        {
            case PbrMaterial pbr:
                WriteMetallic(json, pbr);
                break;
            case PbrSpecularMaterial specular:
                WriteSpecular(json, specular);
                break;
            case LambertMaterial lambert:
                WriteMetallic(json, PbrMaterial.FromMaterial(lambert));
                if (_options.UseCommonMaterials)
                    _document.AddExtension(json, GltfNames.MaterialsCommon, Common(lambert));
                break;
            default:
                throw _context.Error($"glTF has no form for a {material.GetType().Name} ('{material.Name}')");
        }
        WriteCommonMembers(json, material);
        WriteExtensions(json, material);
        if (_options.SaveExtras)
            GltfExtras.Write(json, material, HasOwnPlace);
        return json;
    }

    private static bool HasOwnPlace(string name) =>
        name is GltfNames.AlphaMode or GltfNames.AlphaCutoff or GltfNames.DoubleSided or GltfNames.NormalScale
        || GltfNames.TrySplitExtension(name, out _, out _);

    private void WriteMetallic(JsonObject json, PbrMaterial pbr)
    {
        var metallic = new JsonObject
        {
            ["baseColorFactor"] =
                GltfValues.Factors(pbr.Albedo.x, pbr.Albedo.y, pbr.Albedo.z, 1 - pbr.Transparency),
            ["metallicFactor"] = GltfValues.Factor(pbr.MetallicFactor),
            ["roughnessFactor"] = GltfValues.Factor(pbr.RoughnessFactor),
        };
        SetTexture(metallic, "baseColorTexture", pbr.AlbedoTexture);
        SetTexture(metallic, "metallicRoughnessTexture", pbr.MetallicRoughness);
        json["pbrMetallicRoughness"] = metallic;
        if (SetTexture(json, "occlusionTexture", pbr.OcclusionTexture) is JsonObject occlusion
            && pbr.OcclusionFactor != 1)
            occlusion["strength"] = GltfValues.Factor(pbr.OcclusionFactor);
        WriteEmission(json, pbr.EmissiveColor, pbr.EmissiveTexture);
        if (pbr.SpecularTexture is TextureBase specular)
        {
            var content = new JsonObject();
            SetTexture(content, "specularColorTexture", specular);
            _document.AddExtension(json, GltfNames.MaterialsSpecular, content);
        }
    }

    private void WriteSpecular(JsonObject json, PbrSpecularMaterial material)
    {
        WriteMetallic(json, PbrMaterial.FromMaterial(material));
        SetTexture(json, "occlusionTexture", material.GetTexture("Occlusion"));
        var content = new JsonObject
        {
            ["diffuseFactor"] = GltfValues.Factors(material.Diffuse.x, material.Diffuse.y, material.Diffuse.z,
                1 - material.Transparency),
            ["specularFactor"] =
                GltfValues.Factors(material.Specular.x, material.Specular.y, material.Specular.z),
            ["glossinessFactor"] = GltfValues.Factor(material.GlossinessFactor),
        };
        SetTexture(content, "diffuseTexture", material.DiffuseTexture);
        SetTexture(content, "specularGlossinessTexture", material.SpecularGlossinessTexture);
        _document.AddExtension(json, GltfNames.SpecularGlossiness, content);
    }

    private JsonObject Common(LambertMaterial lambert)
    {
        var values = new JsonObject
        {
            ["ambient"] = Color(lambert.AmbientColor),
            ["diffuse"] = Color(lambert.DiffuseColor),
            ["emission"] = Color(lambert.EmissiveColor),
            ["transparent"] = Color(lambert.TransparentColor),
            ["transparency"] = GltfValues.Factor(1 - lambert.Transparency),
        };
        if (lambert is PhongMaterial phong)
        {
            values["specular"] = Color(phong.SpecularColor);
            values["shininess"] = GltfValues.Factor(phong.Shininess);
        }
        SetTexture(values, "diffuseTexture", lambert.GetTexture(Material.MapDiffuse));
        SetTexture(values, "ambientTexture", lambert.GetTexture(Material.MapAmbient));
        SetTexture(values, "emissionTexture", lambert.GetTexture(Material.MapEmissive));
        SetTexture(values, "specularTexture", lambert.GetTexture(Material.MapSpecular));
        string technique = lambert is PhongMaterial ? "PHONG" : "LAMBERT";
        return new JsonObject { ["technique"] = technique, ["values"] = values };
    }

    private static JsonArray Color(Vector3 color) => GltfValues.Factors(color.x, color.y, color.z, 1);

    private void WriteEmission(JsonObject json, Vector3 color, TextureBase? texture)
    {
        if (color != Vector3.Origin)
        {
            // The core holds emission up to 1; what shines brighter needs the strength beside it.
            double strength = Math.Max(1, Math.Max(color.x, Math.Max(color.y, color.z)));
            json["emissiveFactor"] =
                GltfValues.Factors(color.x / strength, color.y / strength, color.z / strength);
            if (strength > 1)
            {
                var content = new JsonObject { ["emissiveStrength"] = GltfValues.Factor(strength) };
                _document.AddExtension(json, "KHR_materials_emissive_strength", content);
            }
        }
        SetTexture(json, "emissiveTexture", texture);
    }

    private void WriteCommonMembers(JsonObject json, Material material)
    {
        JsonObject? normal = SetTexture(json, "normalTexture", material.GetTexture(Material.MapNormal));
        if (normal is not null && material.GetProperty(GltfNames.NormalScale) is double scale)
            normal["scale"] = GltfValues.Factor(scale);
        string? mode = material.GetProperty(GltfNames.AlphaMode) as string;
        double transparency = material switch
        {
            PbrMaterial m => m.Transparency,
            PbrSpecularMaterial m => m.Transparency,
            LambertMaterial m => m.Transparency,
            _ => 0,
        };
        mode ??= transparency > 0 ? "BLEND" : null;
        if (mode is not null)
            json["alphaMode"] = mode;
        if (material.GetProperty(GltfNames.AlphaCutoff) is double cutoff && mode == "MASK")
            json["alphaCutoff"] = GltfValues.Factor(cutoff);
        if (material.GetProperty(GltfNames.DoubleSided) is true)
            json["doubleSided"] = true;
    }

    private void WriteExtensions(JsonObject json, Material material)
    {
        foreach (Property property in material.Properties)
        {
            if (property is not UserProperty
                || !GltfNames.TrySplitExtension(property.Name, out string name, out string member))
                continue;
            JsonObject content = ContentOf(json, name);
            if (member.Length > 0 && !member.Contains('.', StringComparison.Ordinal))
                content[member] = GltfValues.ToJson(property);
        }
        foreach (TextureSlot slot in material)
        {
            if (!GltfNames.TrySplitExtension(slot.SlotName, out string name, out string member)
                || member.Length == 0)
                continue;
            JsonObject? info = SetTexture(ContentOf(json, name), member, slot.Texture);
            if (info is not null && material.GetProperty(slot.SlotName + ".scale") is double scale)
                info["scale"] = GltfValues.Factor(scale);
        }
    }

    private JsonObject ContentOf(JsonObject json, string extension)
    {
        if (json["extensions"] is JsonObject all && all[extension] is JsonObject content)
            return content;
        content = [];
        _document.AddExtension(json, extension, content);
        return content;
    }

    private JsonObject? SetTexture(JsonObject owner, string name, TextureBase? texture)
    {
        if (texture is null)
            return null;
        JsonObject info = _textures.InfoOf(texture);
        owner[name] = info;
        return info;
    }
}
