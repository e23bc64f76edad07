using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>Flat single-precision numbers to vectors and matrices.</summary>
internal static class GltfVectors
{
    internal static Vector4[] From(float[] floats, int components, double last)
    {
        var values = new Vector4[floats.Length / components];
        Copy(floats, components, last, values);
        return values;
    }

    /// <summary>
    /// Widens elements of two to four components; a third one that is missing is 0, the fourth is given.
    /// </summary>
    internal static void Copy(ReadOnlySpan<float> floats, int components, double last, Span<Vector4> target)
    {
        int count = floats.Length / components;
        switch (components)
        {
            case 2:
                for (int i = 0, k = 0; i < count; i++, k += 2)
                    target[i] = new Vector4(floats[k], floats[k + 1], 0, last);
                break;
            case 3:
                for (int i = 0, k = 0; i < count; i++, k += 3)
                    target[i] = new Vector4(floats[k], floats[k + 1], floats[k + 2], last);
                break;
            default:
                for (int i = 0, k = 0; i < count; i++, k += 4)
                    target[i] = new Vector4(floats[k], floats[k + 1], floats[k + 2], floats[k + 3]);
                break;
        }
    }

    internal static void FlipV(Span<Vector4> coordinates)
    {
        for (int i = 0; i < coordinates.Length; i++)
            coordinates[i].y = 1 - coordinates[i].y;
    }

    // The document stores matrices by columns and works with column vectors, the library by rows and with row
    // vectors: the sixteen numbers stand in the same order.
    internal static Matrix4 MatrixFrom(ReadOnlySpan<float> m) => new(
        m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], m[9], m[10], m[11], m[12], m[13], m[14], m[15]);
}
