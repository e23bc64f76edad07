using System;
using System.Collections.Generic;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Writes lines: a single segment of several points as a strip or loop, everything else as separate lines. A
/// line without segments goes through its points in order.
/// </summary>
internal static class GltfLines
{
    /// <summary>
    /// Whether a property of a line holds a vertex attribute, as the reader leaves it there.
    /// </summary>
    internal static bool IsAttribute(string name) =>
        name is "NORMAL" or "TANGENT" || name.StartsWith('_') || GltfSkinReader.IsSkinAttribute(name)
        || name.StartsWith("TEXCOORD_", StringComparison.Ordinal)
        || name.StartsWith("COLOR_", StringComparison.Ordinal);

    internal static JsonObject ToPrimitive(Line line, GltfDocument document, WriteContext context)
    {
        int count = line.ControlPoints.Count;
        var positions = new float[count * 3];
        for (int i = 0; i < count; i++)
        {
            Vector4 point = line.ControlPoints[i];
            positions[i * 3] = (float)point.x;
            positions[i * 3 + 1] = (float)point.y;
            positions[i * 3 + 2] = (float)point.z;
        }
        var attributes = new JsonObject
        {
            [GltfPrimitive.Position] = document.AddAttribute(positions, 3, 0, count, true),
        };
        AddAttributes(attributes, line, document, context);
        int[] indices = Indices(line, out int mode);
        foreach (int index in indices)
        {
            if ((uint)index >= (uint)count)
                throw context.Error(
                    $"a segment of the line '{line.Name}' uses control point {index}; the line has {count}");
        }
        return new JsonObject
        {
            ["attributes"] = attributes,
            ["indices"] = document.AddIndices(indices, count),
            ["mode"] = mode,
        };
    }

    private static int[] Indices(Line line, out int mode)
    {
        if (line.Segments.Count == 0)
        {
            mode = line.ControlPoints.Count > 1 ? GltfPrimitive.LineStrip : GltfPrimitive.Points;
            var all = new int[line.ControlPoints.Count];
            for (int i = 0; i < all.Length; i++)
                all[i] = i;
            return all;
        }
        if (line.Segments.Count == 1 && line.Segments[0].Length > 2)
        {
            int[] only = line.Segments[0];
            bool isClosed = only.Length > 3 && only[0] == only[^1];
            mode = isClosed ? GltfPrimitive.LineLoop : GltfPrimitive.LineStrip;
            return isClosed ? only[..^1] : only;
        }
        mode = GltfPrimitive.Lines;
        var pairs = new List<int>();
        foreach (int[] segment in line.Segments)
        {
            for (int i = 0; i + 1 < segment.Length; i++)
            {
                pairs.Add(segment[i]);
                pairs.Add(segment[i + 1]);
            }
        }
        return [.. pairs];
    }

    private static void AddAttributes(JsonObject attributes, Line line, GltfDocument document,
        WriteContext context)
    {
        int count = line.ControlPoints.Count;
        foreach (Property property in line.Properties)
        {
            if (property is not UserProperty { Value: Array data } || !IsAttribute(property.Name))
                continue;
            int components = data.Length / count;
            GltfNumericData.Packed? packed = components is 1 or 2 or 3 or 4
                && components * count == data.Length
                ? GltfNumericData.Pack(data, components, GltfVertices.Plain(count)) : null;
            if (packed is not { } values)
                throw context.Error(
                    $"the property '{property.Name}' of the line '{line.Name}' does not hold numbers "
                    + $"for its {count} control points");
            attributes[property.Name] = values.Floats is not null
                ? document.AddAttribute(values.Floats, components, 0, count, false)
                : document.AddVertexData(values.Bytes, values.Bytes!.Length / count, values.ComponentType,
                    components, 0, count);
        }
    }
}
