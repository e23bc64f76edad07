using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;
using System.Linq;
using System.Text;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Tests.Formats;

/// <summary>What two scenes are compared by: the geometry of all nodes, written out.</summary>
internal static class SceneContent
{
    /// <summary>What of a scene a format holds.</summary>
    [Flags]
    public enum Parts
    {
        Polygons = 0,
        Names = 1,
        Values = 2,
        Materials = 4,
        Properties = 8,
        All = Names | Values | Materials | Properties,
    }

    public static Scene SaveAndRead(Scene scene, FileFormat format, SaveOptions? options = null)
    {
        using TemporaryFolder folder = new();
        string file = folder.File("saved" + format.Extension);
        if (options is null)
            scene.Save(file, format);
        else
            scene.Save(file, options);
        return new Scene(file);
    }

    public static string Text(Scene scene, FileFormat format)
    {
        using TemporaryFolder folder = new();
        string file = folder.File("saved" + format.Extension);
        scene.Save(file, format);
        return File.ReadAllText(file);
    }

    /// <summary>A line for each thing there is.</summary>
    public static List<string> Of(Scene scene, Parts parts, bool isSingle = false)
    {
        List<string> lines = [];
        foreach (Node node in scene.RootNode.ChildNodes)
        {
            foreach (Entity entity in node.Entities)
            {
                lines.Add(parts.HasFlag(Parts.Names) ? $"{entity.GetType().Name} '{entity.Name}'" : entity.GetType().Name);
                Describe(entity, parts, isSingle, lines);
            }
            if (parts.HasFlag(Parts.Materials))
                lines.AddRange(node.Materials.Select(Describe));
        }
        return lines;
    }

    private static void Describe(Entity entity, Parts parts, bool isSingle, List<string> lines)
    {
        IList<Vector4> points = entity is Line l ? l.ControlPoints : ((Geometry)entity).ControlPoints;
        lines.Add($"{points.Count} points");
        lines.AddRange(points.Select(point => "  " + Numbers(isSingle, point.x, point.y, point.z, point.w)));
        if (entity is Mesh mesh)
            lines.AddRange(mesh.Polygons.Select(polygon => "  polygon " + string.Join(' ', polygon)));
        if (entity is Line line)
            lines.AddRange(line.Segments.Select(segment => "  segment " + string.Join(' ', segment)));
        if (parts.HasFlag(Parts.Values) && entity is Geometry geometry)
        {
            foreach (VertexElement element in geometry.VertexElements.OrderBy(e => e.VertexElementType))
                Describe(element, isSingle, lines);
        }
        if (parts.HasFlag(Parts.Properties))
            lines.AddRange(Properties(entity));
    }

    private static void Describe(VertexElement element, bool isSingle, List<string> lines)
    {
        lines.Add($"  {element.VertexElementType} {element.MappingMode} {element.ReferenceMode}: "
            + string.Join(' ', element.Indices));
        IEnumerable<string> values = element switch
        {
            VertexElementVector4 vectors => vectors.Data.Select(v => Numbers(isSingle, v.x, v.y, v.z, v.w)),
            VertexElementIntsTemplate ints => ints.Data.Select(v => v.ToString(CultureInfo.InvariantCulture)),
            _ => [],
        };
        lines.AddRange(values.Select(value => "    " + value));
    }

    private static string Describe(Material material)
    {
        StringBuilder text = new($"material {material.GetType().Name} '{material.Name}'");
        foreach (Property property in material.Properties)
        {
            if (property.Value is Vector3 v)
                text.Append(CultureInfo.InvariantCulture, $" {property.Name}={v.x:R},{v.y:R},{v.z:R}");
            else if (property.Value is double or string)
                text.Append(CultureInfo.InvariantCulture, $" {property.Name}={property.Value}");
        }
        foreach (TextureSlot slot in material)
        {
            var texture = (Texture)slot.Texture;
            text.Append(CultureInfo.InvariantCulture, $" [{slot.SlotName}: {texture.FileName} {texture.UVScale} ")
                .Append(CultureInfo.InvariantCulture, $"{texture.UVTranslation} {texture.WrapModeU} {texture.Content?.Length}")
                .Append(string.Join(' ', Properties(texture))).Append(']');
        }
        return text.ToString();
    }

    private static IEnumerable<string> Properties(VbrObject owner) => owner.Properties
        .Where(property => property is UserProperty)
        .OrderBy(property => property.Name, StringComparer.Ordinal)
        .Select(property => $"  {property.Name} = {Value(property.Value)}");

    private static string Value(object? value) => value is Array array
        ? "[" + string.Join(' ', array.Cast<object>().Select(Value)) + "]"
        : Convert.ToString(value, CultureInfo.InvariantCulture)!;

    private static string Numbers(bool isSingle, params double[] values) => string.Join(' ', values.Select(
        value => isSingle ? ((float)value).ToString("R", CultureInfo.InvariantCulture)
            : value.ToString("R", CultureInfo.InvariantCulture)));
}
