using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Formats.Ply;

/// <summary>The scalar types of PLY.</summary>
internal enum PlyType
{
    Char,
    UChar,
    Short,
    UShort,
    Int,
    UInt,
    Float,
    Double,
}

/// <summary>The names and sizes of the scalar types.</summary>
internal static class PlyTypes
{
    // The first name of a type is the one that is written.
    private static readonly (string Name, string Other, int Size)[] Table =
    [
        ("char", "int8", 1), ("uchar", "uint8", 1), ("short", "int16", 2), ("ushort", "uint16", 2),
        ("int", "int32", 4), ("uint", "uint32", 4), ("float", "float32", 4), ("double", "float64", 8),
    ];

    /// <summary>The name that is written.</summary>
    public static string NameOf(PlyType type) => Table[(int)type].Name;

    /// <summary>The size of a binary value in bytes.</summary>
    public static int SizeOf(PlyType type) => Table[(int)type].Size;

    /// <summary>The type of a name; null when there is none.</summary>
    public static PlyType? Find(string name)
    {
        int at = Array.FindIndex(Table, row => row.Name == name || row.Other == name);
        return at < 0 ? null : (PlyType)at;
    }
}

/// <summary>One property of all rows of an element.</summary>
internal sealed class PlyColumn
{
    /// <summary>Makes a column without values.</summary>
    /// <param name="name">The name of the property.</param>
    /// <param name="type">The type of the values.</param>
    /// <param name="countType">The type of the lengths of lists; null where the values are no lists.</param>
    public PlyColumn(string name, PlyType type, PlyType? countType = null)
    {
        Name = name;
        Type = type;
        CountType = countType;
    }

    /// <summary>The name of the property.</summary>
    public string Name { get; }

    /// <summary>The type of the values.</summary>
    public PlyType Type { get; }

    /// <summary>The type of the lengths of lists; null where the values are no lists.</summary>
    public PlyType? CountType { get; }

    /// <summary>
    /// The values: one a row, or those of all lists. Doubles hold the values of all types exactly.
    /// </summary>
    public double[] Values { get; set; } = [];

    /// <summary>The place behind the last value of the list of each row.</summary>
    public int[] Ends { get; set; } = [];

    /// <summary>The place of the first value of a list.</summary>
    public int Start(int row) => row == 0 ? 0 : Ends[row - 1];
}

/// <summary>A table of rows.</summary>
internal sealed class PlyElement
{
    /// <summary>Makes an element without columns.</summary>
    public PlyElement(string name, long count)
    {
        Name = name;
        Announced = count;
    }

    /// <summary>The name.</summary>
    public string Name { get; }

    /// <summary>The number of rows as the header tells it; not held against the data.</summary>
    public long Announced { get; }

    /// <summary>The number of rows.</summary>
    public int Count { get; set; }

    /// <summary>Where each row starts in the file.</summary>
    public int[] Places { get; set; } = [];

    /// <summary>The columns.</summary>
    public List<PlyColumn> Columns { get; } = [];

    /// <summary>The column of a name; null when there is none.</summary>
    public PlyColumn? Find(string name) => Columns.Find(column => column.Name == name);

    /// <summary>The column of a name, when its values are no lists.</summary>
    public PlyColumn? FindScalar(string name) => Find(name) is { CountType: null } column ? column : null;
}
