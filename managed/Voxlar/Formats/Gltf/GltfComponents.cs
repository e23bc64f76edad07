using System;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>The component types of accessors and the sizes that follow from them.</summary>
internal static class GltfComponents
{
    internal const int Byte = 5120;
    internal const int UnsignedByte = 5121;
    internal const int Short = 5122;
    internal const int UnsignedShort = 5123;
    internal const int UnsignedInt = 5125;
    internal const int Float = 5126;

    /// <summary>Bytes of one component, or 0 for a type that does not exist.</summary>
    internal static int SizeOf(long componentType) => componentType switch
    {
        Byte or UnsignedByte => 1,
        Short or UnsignedShort => 2,
        UnsignedInt or Float => 4,
        _ => 0,
    };

    /// <summary>
    /// Columns and rows of an accessor type; vectors have one column. (0, 0) for a type that does not exist.
    /// </summary>
    internal static (int Columns, int Rows) ShapeOf(string type) => type switch
    {
        "SCALAR" => (1, 1),
        "VEC2" => (1, 2),
        "VEC3" => (1, 3),
        "VEC4" => (1, 4),
        "MAT2" => (2, 2),
        "MAT3" => (3, 3),
        "MAT4" => (4, 4),
        _ => (0, 0),
    };

    /// <summary>The accessor type for a number of components in an element.</summary>
    internal static string TypeOf(int components) => components switch
    {
        1 => "SCALAR",
        2 => "VEC2",
        3 => "VEC3",
        4 => "VEC4",
        9 => "MAT3",
        16 => "MAT4",
        _ => throw new ArgumentOutOfRangeException(nameof(components)),
    };
}
