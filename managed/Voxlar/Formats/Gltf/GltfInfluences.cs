using System;
using System.Runtime.InteropServices;
using Velbor.Voxlar.Deformers;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Which bones move each control point and how much, in sets of four. Weights of a control point whose sum is
/// not 1 are scaled so that it is, as documents ask for.
/// </summary>
internal sealed class GltfInfluences
{
    private const double SumTolerance = 2e-7;

    private readonly int[] _starts;
    private readonly int[] _bones;
    private readonly float[] _weights;
    private readonly int _boneCount;

    private GltfInfluences(int[] starts, int[] bones, float[] weights, int boneCount)
    {
        _starts = starts;
        _bones = bones;
        _weights = weights;
        _boneCount = boneCount;
    }

    internal int SetCount { get; private set; }

    internal static GltfInfluences Of(SkinDeformer skin, int controlPoints)
    {
        var starts = new int[controlPoints + 1];
        foreach (Bone bone in skin.Bones)
        {
            for (int i = Math.Min(bone.WeightCount, controlPoints) - 1; i >= 0; i--)
                starts[i + 1] += bone[i] > 0 ? 1 : 0;
        }
        int most = 1;
        for (int i = 0; i < controlPoints; i++)
        {
            most = Math.Max(most, starts[i + 1]);
            starts[i + 1] += starts[i];
        }
        var bones = new int[starts[^1]];
        var weights = new float[starts[^1]];
        var written = new int[controlPoints];
        for (int b = 0; b < skin.Bones.Count; b++)
        {
            Bone bone = skin.Bones[b];
            int count = Math.Min(bone.WeightCount, controlPoints);
            for (int i = 0; i < count; i++)
            {
                if (!(bone[i] > 0))
                    continue;
                int at = starts[i] + written[i]++;
                bones[at] = b;
                weights[at] = (float)bone[i];
            }
        }
        for (int i = 0; i < controlPoints; i++)
            Normalize(weights.AsSpan(starts[i]..starts[i + 1]));
        return new GltfInfluences(starts, bones, weights, skin.Bones.Count) { SetCount = (most + 3) / 4 };
    }

    private static void Normalize(Span<float> weights)
    {
        double sum = 0;
        foreach (float weight in weights)
            sum += weight;
        if (sum == 0 || Math.Abs(sum - 1) <= SumTolerance * weights.Length)
            return;
        foreach (ref float weight in weights)
            weight = (float)(weight / sum);
    }

    /// <summary>The bones of a set, four for each vertex, in the smallest type that holds them.</summary>
    internal byte[] Joints(int set, GltfVertices vertices, out int componentType)
    {
        bool isWide = _boneCount > 256;
        componentType = isWide ? GltfComponents.UnsignedShort : GltfComponents.UnsignedByte;
        var bytes = new byte[vertices.Count * 4 * (isWide ? 2 : 1)];
        Span<ushort> wide = MemoryMarshal.Cast<byte, ushort>(bytes.AsSpan());
        for (int vertex = 0; vertex < vertices.Count; vertex++)
        {
            (int start, int count) = RangeOf(set, vertices.ControlPointOf(vertex));
            for (int k = 0; k < count; k++)
            {
                if (isWide)
                    wide[vertex * 4 + k] = (ushort)_bones[start + k];
                else
                    bytes[vertex * 4 + k] = (byte)_bones[start + k];
            }
        }
        return bytes;
    }

    /// <summary>The weights of a set, four for each vertex.</summary>
    internal float[] Weights(int set, GltfVertices vertices)
    {
        var floats = new float[vertices.Count * 4];
        for (int vertex = 0; vertex < vertices.Count; vertex++)
        {
            (int start, int count) = RangeOf(set, vertices.ControlPointOf(vertex));
            _weights.AsSpan(start, count).CopyTo(floats.AsSpan(vertex * 4));
        }
        return floats;
    }

    private (int Start, int Count) RangeOf(int set, int controlPoint)
    {
        int start = _starts[controlPoint] + set * 4;
        return (Math.Min(start, _bones.Length), Math.Clamp(_starts[controlPoint + 1] - start, 0, 4));
    }
}
