using System;
using System.Collections.Generic;
using System.IO;
using Velbor.Voxlar.Formats.Text;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// Reads a material library. A material with one of the keys Pr, Pm and their maps is physically based, every
/// other one is a Phong material. Keys that these have no place for are kept as they stand, as properties
/// "mtl." and the key.
/// </summary>
internal sealed class MtlReader
{
    private readonly TextScanner _text;
    private readonly string _folder;
    private readonly ObjMaterials _materials;
    private readonly ReadContext _context;
    private readonly Dictionary<string, byte[]?> _images = new(StringComparer.Ordinal);

    /// <summary>Reads from the start of a library.</summary>
    /// <param name="data">Its bytes in UTF-8, which are changed.</param>
    /// <param name="name">Its name, relative to the OBJ file.</param>
    /// <param name="materials">What takes the materials.</param>
    /// <param name="context">Side files and failure reports.</param>
    public MtlReader(byte[] data, string name, ObjMaterials materials, ReadContext context)
    {
        TextScanner.JoinContinuedLines(data);
        _text = new TextScanner(context, data, name);
        _folder = name[..(name.LastIndexOf('/') + 1)];
        _materials = materials;
        _context = context;
    }

    private readonly record struct Statement(string Key, int Place, string Rest);

    public void Read()
    {
        string? name = null;
        List<Statement> statements = [];
        while (true)
        {
            _text.SkipSpace();
            if (_text.AtEnd)
                break;
            int place = _text.Position;
            string key = TextBytes.ToText(_text.Word());
            if (key == "newmtl")
            {
                Finish(name, statements);
                name = _text.RestOfLine();
            }
            else if (key[0] != '#' && name is not null)
            {
                statements.Add(new Statement(key, place, _text.RestOfLine()));
            }
            _text.NextLine();
        }
        Finish(name, statements);
    }

    private void Finish(string? name, List<Statement> statements)
    {
        if (name is null)
            return;
        bool isPbr = statements.Exists(statement => MtlKeys.IsPbr(statement.Key));
        Material material = isPbr ? new PbrMaterial { Name = name } : new PhongMaterial(name);
        bool hasDissolve = statements.Exists(statement => statement.Key == "d");
        foreach (Statement statement in statements)
        {
            if (MtlKeys.SlotOf(statement.Key, isPbr) is { } slot)
                Map(material, slot, statement);
            else if (!(statement.Key == "Tr" && hasDissolve)
                && !(material is PbrMaterial pbr
                    ? TrySet(pbr, statement) : TrySet((PhongMaterial)material, statement)))
                material.SetProperty(ObjNames.Mtl + statement.Key, statement.Rest);
        }
        statements.Clear();
        _materials.Add(material);
    }

    private bool TrySet(PhongMaterial material, Statement statement)
    {
        switch (statement.Key)
        {
            case "Ka" when TryColor(statement, out Vector3 color):
                material.AmbientColor = color;
                return true;
            case "Kd" when TryColor(statement, out Vector3 color):
                material.DiffuseColor = color;
                return true;
            case "Ks" when TryColor(statement, out Vector3 color):
                material.SpecularColor = color;
                return true;
            case "Ke" when TryColor(statement, out Vector3 color):
                material.EmissiveColor = color;
                return true;
            case "Tf" when TryColor(statement, out Vector3 color):
                material.TransparentColor = color;
                return true;
            case "Ns":
                material.Shininess = Number(statement);
                return true;
            case "d" when TryNumbers(statement, out double[] numbers, 1):
                material.Transparency = 1 - numbers[0];
                KeepDissolve(material, numbers[0], material.Transparency, statement);
                return true;
            case "Tr":
                material.Transparency = Transparency(statement);
                return true;
            default:
                return false;
        }
    }

    private bool TrySet(PbrMaterial material, Statement statement)
    {
        switch (statement.Key)
        {
            case "Kd" when TryColor(statement, out Vector3 color):
                material.Albedo = color;
                return true;
            case "Ke" when TryColor(statement, out Vector3 color):
                material.EmissiveColor = color;
                return true;
            case "Pr":
                material.RoughnessFactor = Number(statement);
                return true;
            case "Pm":
                material.MetallicFactor = Number(statement);
                return true;
            case "d" when TryNumbers(statement, out double[] numbers, 1):
                material.Transparency = 1 - numbers[0];
                KeepDissolve(material, numbers[0], material.Transparency, statement);
                return true;
            case "Tr":
                material.Transparency = Transparency(statement);
                return true;
            default:
                return false;
        }
    }

    // Some programs write opacity under this key. A surface of which nothing is seen is not what they mean by
    // 1.
    private double Transparency(Statement statement) => Number(statement) is var told && told == 1 ? 0 : told;

    // A dissolve whose complement is rounded would not come back as it was.
    private static void KeepDissolve(
        Material material, double dissolve, double transparency, Statement statement)
    {
        if (1 - transparency != dissolve)
            material.SetProperty(ObjNames.Mtl + statement.Key, statement.Rest);
    }

    private double Number(Statement statement)
    {
        if (TryNumbers(statement, out double[] numbers, 1))
            return numbers[0];
        throw _text.ErrorAt(statement.Place, $"the value of '{statement.Key}' is no number");
    }

    // One number is a grey; colours by spectral curves are kept as they stand.
    private bool TryColor(Statement statement, out Vector3 color)
    {
        color = default;
        if (TryNumbers(statement, out double[] grey, 1))
            color = new Vector3(grey[0], grey[0], grey[0]);
        else if (TryNumbers(statement, out double[] rgb, 3))
            color = new Vector3(rgb[0], rgb[1], rgb[2]);
        else if (statement.Rest.StartsWith("spectral", StringComparison.Ordinal)
            || statement.Rest.StartsWith("xyz", StringComparison.Ordinal))
            return false;
        else
            throw _text.ErrorAt(statement.Place, $"the value of '{statement.Key}' is no colour");
        return true;
    }

    private static bool TryNumbers(Statement statement, out double[] numbers, int count) =>
        MtlOptions.TryNumbers(MtlOptions.Words(statement.Rest), 0, count, out numbers) == count
        && MtlOptions.Words(statement.Rest).Length == count;

    private void Map(Material material, string slot, Statement statement)
    {
        Texture texture = MtlOptions.Parse(statement.Rest, out string type);
        if (texture.FileName is not { Length: > 0 })
            return;
        // A reflection may be six textures, one for each side of a cube.
        if (type.StartsWith("cube", StringComparison.Ordinal))
            slot += "." + type;
        string told = ObjFileNames.Inside(texture.FileName);
        texture.Name = Path.GetFileNameWithoutExtension(told);
        if (told.Length > 0)
        {
            texture.Content = Image(_folder + told);
            if (texture.Content is not null)
                texture.FileName = _folder + told;
            else if (_folder.Length > 0)
                texture.Content = Image(told);
        }
        material.SetTexture(slot, texture);
    }

    // A scene without one of its images is still of use; the name of the file stays.
    private byte[]? Image(string name)
    {
        if (_images.TryGetValue(name, out byte[]? known))
            return known;
        using Stream? stream = _context.TryOpenSideFile(name);
        return _images[name] = stream is null ? null : _context.ReadAll(stream);
    }
}
