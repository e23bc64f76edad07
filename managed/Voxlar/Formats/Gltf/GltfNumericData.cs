using System;
using System.Runtime.InteropServices;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>User data of numbers as vertex attributes.</summary>
internal static class GltfNumericData
{
    /// <summary>
    /// Floats, or bytes of integers whose elements are filled up to multiples of four bytes.
    /// </summary>
    internal readonly record struct Packed(float[]? Floats, byte[]? Bytes, int ComponentType);

    /// <summary>The values in the order of the vertices; null for values that are no numbers.</summary>
    internal static Packed? Pack(Array data, int components, GltfVertices vertices)
    {
        // Integers of more than four components would need columns; they are exact as single precision as
        // well.
        bool keepsIntegers = components <= 4;
        return data switch
        {
            float[] values => ToFloats(values, components, vertices, static v => v),
            double[] values => ToFloats(values, components, vertices, static v => (float)v),
            int[] values => ToFloats(values, components, vertices, static v => v),
            uint[] values => ToFloats(values, components, vertices, static v => v),
            byte[] values when keepsIntegers =>
                ToBytes(values, components, vertices, GltfComponents.UnsignedByte),
            sbyte[] values when keepsIntegers => ToBytes(values, components, vertices, GltfComponents.Byte),
            ushort[] values when keepsIntegers =>
                ToBytes(values, components, vertices, GltfComponents.UnsignedShort),
            short[] values when keepsIntegers => ToBytes(values, components, vertices, GltfComponents.Short),
            byte[] values => ToFloats(values, components, vertices, static v => v),
            sbyte[] values => ToFloats(values, components, vertices, static v => v),
            ushort[] values => ToFloats(values, components, vertices, static v => v),
            short[] values => ToFloats(values, components, vertices, static v => v),
            _ => null,
        };
    }

    private static Packed ToFloats<T>(T[] values, int components, GltfVertices vertices,
        Func<T, float> convert)
    {
        var floats = new float[vertices.Count * components];
        for (int vertex = 0, k = 0; vertex < vertices.Count; vertex++)
        {
            int at = vertices.ControlPointOf(vertex) * components;
            for (int c = 0; c < components; c++)
                floats[k++] = convert(values[at + c]);
        }
        return new Packed(floats, null, GltfComponents.Float);
    }

    private static Packed ToBytes<T>(T[] values, int components, GltfVertices vertices, int componentType)
        where T : unmanaged
    {
        int stride = (components * GltfComponents.SizeOf(componentType) + 3) & ~3;
        var bytes = new byte[vertices.Count * stride];
        for (int vertex = 0; vertex < vertices.Count; vertex++)
        {
            ReadOnlySpan<T> element = values.AsSpan(vertices.ControlPointOf(vertex) * components, components);
            MemoryMarshal.AsBytes(element).CopyTo(bytes.AsSpan(vertex * stride));
        }
        return new Packed(null, bytes, componentType);
    }
}
