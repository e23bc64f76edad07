using System;
using System.Collections.Generic;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>Writes lines. A line without segments goes through its points in order.</summary>
internal static class GltfLines
{
    private const int MaximumChains = 1024;

    /// <summary>
    /// Whether a property of a line holds a vertex attribute, as the reader leaves it there.
    /// </summary>
    internal static bool IsAttribute(string name) =>
        name is "NORMAL" or "TANGENT" || name.StartsWith('_') || GltfSkinReader.IsSkinAttribute(name)
        || name.StartsWith("TEXCOORD_", StringComparison.Ordinal)
        || name.StartsWith("COLOR_", StringComparison.Ordinal);

    /// <summary>
    /// The primitives of a line, all over the same vertices: each chain of more than two points is a strip or
    /// loop, neighbouring segments of two points are lines together. Of very many chains only the lines are
    /// kept.
    /// </summary>
    internal static List<JsonObject> ToPrimitives(Line line, GltfDocument document, WriteContext context)
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
        int accessor = document.AddAttribute(positions, 3, 0, count, true);
        var primitives = new List<JsonObject>();
        foreach ((int mode, int[] indices) in Parts(line))
        {
            foreach (int index in indices)
            {
                if ((uint)index >= (uint)count)
                    throw context.Error(
                        $"a segment of the line '{line.Name}' uses control point {index}; the line has {count}");
            }
            var attributes = new JsonObject { [GltfPrimitive.Position] = accessor };
            AddAttributes(attributes, line, document, context);
            primitives.Add(new JsonObject
            {
                ["attributes"] = attributes,
                ["indices"] = document.AddIndices(indices, count),
                ["mode"] = mode,
            });
        }
        return primitives;
    }

    private static List<(int Mode, int[] Indices)> Parts(Line line)
    {
        if (line.Segments.Count == 0)
        {
            var all = new int[line.ControlPoints.Count];
            for (int i = 0; i < all.Length; i++)
                all[i] = i;
            return [(all.Length > 1 ? GltfPrimitive.LineStrip : GltfPrimitive.Points, all)];
        }
        int chains = 0;
        foreach (int[] segment in line.Segments)
            chains += segment.Length > 2 ? 1 : 0;
        var parts = new List<(int, int[])>();
        var pairs = new List<int>();
        foreach (int[] segment in line.Segments)
        {
            if (segment.Length == 2 || chains > MaximumChains)
            {
                for (int i = 0; i + 1 < segment.Length; i++)
                    pairs.AddRange([segment[i], segment[i + 1]]);
                continue;
            }
            EndPairs();
            if (segment.Length < 2)
                continue;
            bool isClosed = segment.Length > 3 && segment[0] == segment[^1];
            parts.Add(isClosed ? (GltfPrimitive.LineLoop, segment[..^1])
                : (GltfPrimitive.LineStrip, segment));
        }
        EndPairs();
        return parts;

        void EndPairs()
        {
            if (pairs.Count > 0)
                parts.Add((GltfPrimitive.Lines, [.. pairs]));
            pairs.Clear();
        }
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
