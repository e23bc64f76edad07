using System;
using System.Collections.Generic;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Makes morph target deformers: a channel with one shape for each target. The document tells differences; a
/// shape holds the sums, so what it shows is the geometry with the target in full.
/// </summary>
internal static class GltfMorphReader
{
    internal static MorphTargetDeformer Make(Geometry geometry, GltfJson mesh,
        List<(GltfPrimitive Primitive, int Start)> blocks,
            GltfAccessors accessors, double[]? weights, bool flipV)
    {
        var deformer = new MorphTargetDeformer(mesh.StringOrNull("name") ?? string.Empty);
        string[] names = NamesOf(mesh);
        int count = blocks[0].Primitive.Targets.Length;
        for (int target = 0; target < count; target++)
        {
            string name = target < names.Length ? names[target] : string.Empty;
            var channel = new MorphTargetChannel(name)
            {
                ChannelWeight = weights is not null && target < weights.Length ? weights[target] : 0,
            };
            channel.Targets.Add(MakeShape(name, geometry, blocks, target, accessors, flipV));
            deformer.Channels.Add(channel);
        }
        return deformer;
    }

    private static string[] NamesOf(GltfJson mesh)
    {
        if (!mesh.TryGet(GltfNames.Extras, out GltfJson extras)
            || !extras.TryGet("targetNames", out GltfJson names)
            || names.Element.ValueKind != System.Text.Json.JsonValueKind.Array)
            return [];
        return Array.ConvertAll(names.Items(), static item =>
            item.Element.ValueKind == System.Text.Json.JsonValueKind.String ? item.AsString() : string.Empty);
    }

    private static Shape MakeShape(string name, Geometry geometry,
        List<(GltfPrimitive Primitive, int Start)> blocks, int target,
            GltfAccessors accessors, bool flipV)
    {
        var shape = new Shape(name);
        Vector4[] points = [.. geometry.ControlPoints];
        foreach (string semantic in blocks[0].Primitive.Targets[target].Keys)
        {
            if (semantic == GltfPrimitive.Position)
            {
                Add(points, blocks, target, semantic, accessors, 1);
                continue;
            }
            VertexElementVector4? element = NewElement(semantic);
            VertexElement? original = GltfElements.FindNamed(geometry, semantic);
            if (element is null || original is not VertexElementVector4 given
                || given.Data.Count != points.Length)
                throw blocks[0].Primitive.Place.Child("targets").Fault(
                    $"a morph target of {semantic} is not supported");
            Vector4[] values = [.. given.Data];
            Add(values, blocks, target, semantic, accessors, flipV && element is VertexElementUV ? -1 : 1);
            element.SetData(values);
            shape.AddElement(GltfElements.Named(element, semantic));
        }
        shape.ControlPointList.AddRange(points);
        return shape;
    }

    private static VertexElementVector4? NewElement(string semantic)
    {
        if (semantic == "NORMAL")
            return new VertexElementNormal();
        if (semantic == "TANGENT")
            return new VertexElementTangent();
        if (semantic.StartsWith("TEXCOORD_", StringComparison.Ordinal))
            return new VertexElementUV(TextureMapping.Diffuse);
        return semantic.StartsWith("COLOR_", StringComparison.Ordinal) ? new VertexElementVertexColor()
            : null;
    }

    private static void Add(Vector4[] values, List<(GltfPrimitive Primitive, int Start)> blocks, int target,
        string semantic,
            GltfAccessors accessors, double signOfV)
    {
        foreach ((GltfPrimitive primitive, int start) in blocks)
        {
            int accessor = primitive.Targets[target][semantic];
            int components = accessors.ComponentCount(accessor);
            float[] differences = accessors.ReadFloats(accessor);
            for (int i = 0; i < primitive.VertexCount; i++)
            {
                ref Vector4 value = ref values[start + i];
                ReadOnlySpan<float> d = differences.AsSpan(i * components, components);
                value.x += d[0];
                if (components > 1)
                    value.y += d[1] * signOfV;
                if (components > 2)
                    value.z += d[2];
                if (components > 3)
                    value.w += d[3];
            }
        }
    }
}
