using System;
using System.Collections.Generic;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Morph targets on the way out. A document tells differences and reaches a target in full at weight 1, so a
/// channel's weight is divided by the weight at which its shape is reached. Channels with shapes in between
/// have no form.
/// </summary>
internal static class GltfMorphs
{
    internal static List<MorphTargetChannel> ChannelsOf(Entity entity)
    {
        var channels = new List<MorphTargetChannel>();
        if (entity is not Geometry geometry)
            return channels;
        foreach (Deformer deformer in geometry.Deformers)
        {
            if (deformer is MorphTargetDeformer morph)
                channels.AddRange(morph.Channels);
        }
        return channels;
    }

    internal static Shape? ShapeOf(MorphTargetChannel channel, WriteContext context) =>
        channel.Targets.Count switch
        {
            0 => null,
            1 => channel.Targets[0],
            _ => throw context.Error(
                $"the morph channel '{channel.Name}' has {channel.Targets.Count} shapes; glTF holds one a "
                + "channel"),
        };

    /// <summary>The factor from the weight of the channel to that in the document.</summary>
    internal static double ScaleOf(MorphTargetChannel channel)
    {
        double full = channel.Weights.Count == 1 ? channel.Weights[0] : 1;
        return full == 0 ? 1 : 1 / full;
    }

    internal static double[] DefaultWeights(List<MorphTargetChannel> channels, WriteContext context)
    {
        var weights = new double[channels.Count];
        for (int i = 0; i < weights.Length; i++)
        {
            ShapeOf(channels[i], context);
            weights[i] = channels[i].ChannelWeight * ScaleOf(channels[i]);
        }
        return weights;
    }

    /// <summary>
    /// The element of a shape that belongs to an element of the geometry: of its name, or else the first of
    /// its kind.
    /// </summary>
    internal static VertexElementVector4? Counterpart(Shape shape, VertexElementVector4 element,
        string semantic)
    {
        VertexElementVector4? first = null;
        foreach (VertexElement candidate in shape.VertexElements)
        {
            if (candidate is not VertexElementVector4 values
                || candidate.VertexElementType != element.VertexElementType)
                continue;
            if (candidate.Name == semantic)
                return values;
            first ??= values;
        }
        return semantic.EndsWith("_1", StringComparison.Ordinal) ? null : first;
    }

    /// <summary>What a shape adds to the values of the geometry, for every vertex.</summary>
    /// <param name="original">The values of the geometry's control points.</param>
    /// <param name="moved">Those of the shape.</param>
    /// <param name="shape">The shape, whose indices tell which control points it moves.</param>
    /// <param name="vertices">The vertices of the geometry.</param>
    /// <param name="signOfY">-1 where y is turned upside down on the way out.</param>
    /// <param name="context">For failure reports.</param>
    /// <param name="components">Components of a value.</param>
    internal static float[] Differences(List<Vector4> original, List<Vector4>? moved, Shape? shape,
        GltfVertices vertices,
            double signOfY, WriteContext context, int components = 3)
    {
        var differences = new Vector4[original.Count];
        if (moved is not null)
        {
            bool isIndexed = shape!.Indices.Count > 0;
            if (moved.Count != (isIndexed ? shape.Indices.Count : original.Count))
                throw context.Error(
                    $"the shape '{shape.Name}' has {moved.Count} values for "
                    + $"{(isIndexed ? shape.Indices.Count : original.Count)} control points");
            for (int i = 0; i < moved.Count; i++)
            {
                int at = isIndexed ? shape.Indices[i] : i;
                if ((uint)at >= (uint)original.Count)
                    throw context.Error(
                        $"the shape '{shape.Name}' moves control point {at}; the geometry has "
                        + $"{original.Count}");
                differences[at] = moved[i] - original[at];
            }
        }
        var floats = new float[vertices.Count * components];
        for (int vertex = 0, k = 0; vertex < vertices.Count; vertex++)
        {
            Vector4 d = differences[vertices.ControlPointOf(vertex)];
            floats[k++] = (float)d.x;
            floats[k++] = (float)(d.y * signOfY);
            if (components > 2)
                floats[k++] = (float)d.z;
            if (components > 3)
                floats[k++] = (float)d.w;
        }
        return floats;
    }
}
