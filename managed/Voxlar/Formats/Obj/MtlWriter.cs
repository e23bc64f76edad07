using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;
using Velbor.Voxlar.Formats.Text;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// Writes a material library. Lambert and Phong materials get the classic keys, physically based ones Pr and
/// Pm in place of highlights; those with specular colour and glossiness become classic. Kept keys of a
/// library that was read are written as they were. There are no keys for the colour of reflections and the
/// rotation of textures.
/// </summary>
internal sealed class MtlWriter
{
    private readonly TextOutput _output;
    private readonly ObjSaveOptions _options;
    private readonly WriteContext _context;
    private readonly Dictionary<string, byte[]> _images = new(StringComparer.Ordinal);

    public MtlWriter(Stream stream, ObjSaveOptions options, WriteContext context)
    {
        _output = new TextOutput(stream);
        _options = options;
        _context = context;
    }

    public void Write(ObjMaterialNames materials)
    {
        foreach (Material material in materials.All)
        {
            Text("newmtl ", materials.NameOf(material));
            Values(material);
            foreach (Property property in material.Properties)
            {
                if (property is UserProperty { Value: string value } && IsKept(property.Name, out string key))
                    Text(key + " ", value);
            }
            foreach (TextureSlot slot in material)
                Map(slot.SlotName, slot.Texture);
        }
        _output.Flush();
    }

    // The raw dissolve stands where the transparency is; see Dissolve.
    private static bool IsKept(string name, out string key)
    {
        bool isKey = name.StartsWith(ObjNames.Mtl, StringComparison.Ordinal);
        key = isKey ? name[ObjNames.Mtl.Length..] : "";
        return isKey && key != "d";
    }

    private void Values(Material material)
    {
        switch (material)
        {
            case PbrMaterial pbr:
                Color("Kd", pbr.Albedo);
                Color("Ke", pbr.EmissiveColor);
                Dissolve(material, pbr.Transparency);
                Number("Pr", pbr.RoughnessFactor);
                Number("Pm", pbr.MetallicFactor);
                break;
            case PbrSpecularMaterial specular:
                Color("Kd", specular.Diffuse);
                Color("Ks", specular.Specular);
                Color("Ke", specular.EmissiveColor);
                double roughness = Math.Max(1 - specular.GlossinessFactor, 0.01);
                Number("Ns", 2 / (roughness * roughness) - 2);
                Dissolve(material, specular.Transparency);
                break;
            case LambertMaterial lambert:
                Color("Ka", lambert.AmbientColor);
                Color("Kd", lambert.DiffuseColor);
                if (lambert is PhongMaterial phong)
                {
                    Color("Ks", phong.SpecularColor * phong.SpecularFactor);
                    Number("Ns", phong.Shininess);
                }
                Color("Ke", lambert.EmissiveColor);
                if (lambert.TransparentColor != default(Vector3))
                    Color("Tf", lambert.TransparentColor);
                Dissolve(material, lambert.Transparency);
                break;
            default:
                throw _context.Error(
                    $"a material library has no form for a {material.GetType().Name} ('{material.Name}')");
        }
    }

    private void Dissolve(Material material, double transparency)
    {
        if (material.GetProperty(ObjNames.Mtl + "d") is string kept
            && double.TryParse(kept, NumberStyles.Float, CultureInfo.InvariantCulture, out double dissolve)
            && 1 - dissolve == transparency)
            Text("d ", kept);
        else
            Number("d", 1 - transparency);
    }

    private void Map(string slot, TextureBase source)
    {
        if (source is not Texture texture)
            throw _context.Error(
                "a material library has no form for a texture of the type "
                + $"{source.GetType().Name} ('{source.Name}')");
        int cube = slot.IndexOf(".cube", StringComparison.Ordinal);
        string key = MtlKeys.KeyOf(cube < 0 ? slot : slot[..cube]);
        if (key.AsSpan().ContainsAny(" \t"))
            throw _context.Error($"a material library has no form for the texture slot '{slot}'");
        _output.Text(key);
        Pair("-s", texture.UVScale, new Vector2(1, 1), texture);
        Pair("-o", texture.UVTranslation, default, texture);
        if (texture is { WrapModeU: WrapMode.Clamp, WrapModeV: WrapMode.Clamp })
            _output.Text(" -clamp on");
        foreach (Property property in texture.Properties)
        {
            if (property is UserProperty { Value: string value } && IsKept(property.Name, out string option)
                && option is not ("-s" or "-o"))
            {
                _output.Text($" {option} ");
                _output.OneLine(value);
            }
        }
        Text(" ", FileNameOf(texture));
    }

    // The third value of a scale or offset, for volumes, is kept in the property of the raw option.
    private void Pair(string option, Vector2 value, Vector2 usual, Texture texture)
    {
        string[] kept = MtlOptions.Words(texture.GetProperty(ObjNames.Mtl + option) as string ?? "");
        if (value == usual && kept.Length < 3)
            return;
        _output.Text(" " + option);
        _output.Number(value.x);
        _output.Number(value.y);
        if (kept.Length == 3)
            _output.Text(" " + kept[2]);
    }

    private string FileNameOf(Texture texture)
    {
        string name = texture.FileName ?? "";
        if (name.Length == 0)
            name = (texture.Name.Length > 0 ? texture.Name : "texture") + ExtensionOf(texture.Content);
        if (!_options.ExportTextures || texture.Content is not { } content)
            return name;
        string inside = ObjFileNames.Inside(name);
        if (inside.Length == 0)
            throw _context.Error($"the texture '{texture.Name}' has no file name to be written under");
        if (_images.TryGetValue(inside, out byte[]? written))
        {
            if (!written.AsSpan().SequenceEqual(content))
                throw _context.Error($"two textures of different content have the file name '{inside}'");
            return inside;
        }
        _images.Add(inside, content);
        using Stream stream = _context.CreateSideFile(inside);
        stream.Write(content);
        return inside;
    }

    private static string ExtensionOf(byte[]? content) => content switch
    {
        [0x89, (byte)'P', (byte)'N', (byte)'G', ..] => ".png",
        [0xff, 0xd8, ..] => ".jpg",
        _ => "",
    };

    private void Color(string key, Vector3 color)
    {
        _output.Text(key);
        _output.Number(color.x);
        _output.Number(color.y);
        _output.Number(color.z);
        _output.Byte((byte)'\n');
    }

    private void Number(string key, double value)
    {
        _output.Text(key);
        _output.Number(value);
        _output.Byte((byte)'\n');
    }

    private void Text(string word, string text)
    {
        _output.Text(word);
        _output.OneLine(text);
        _output.Byte((byte)'\n');
    }
}
