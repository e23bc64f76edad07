using System;
using System.Collections.Generic;
using System.Globalization;

namespace Velbor.Voxlar.Formats.Ply;

/// <summary>Turns columns into arrays of their own types, as which properties keep them, and back.</summary>
internal static class PlyArrays
{
    /// <summary>The values of a column: an array, or for lists an array of arrays.</summary>
    public static Array ToArray(PlyColumn column) => column.Type switch
    {
        PlyType.Char => To(column, static v => (sbyte)v),
        PlyType.UChar => To(column, static v => (byte)v),
        PlyType.Short => To(column, static v => (short)v),
        PlyType.UShort => To(column, static v => (ushort)v),
        PlyType.Int => To(column, static v => (int)v),
        PlyType.UInt => To(column, static v => (uint)v),
        PlyType.Float => To(column, static v => (float)v),
        _ => To(column, static v => v),
    };

    /// <summary>The column that an array makes; null when it holds no numbers.</summary>
    public static PlyColumn? ToColumn(string name, Array array)
    {
        Type? item = array.GetType().GetElementType();
        if (item is not null && TypeOf(item) is { } type)
            return new PlyColumn(name, type) { Values = Values(array) };
        if (item is not { IsArray: true } || TypeOf(item.GetElementType()!) is not { } listType)
            return null;
        List<double> values = [];
        int[] ends = new int[array.Length];
        int longest = 0;
        for (int i = 0; i < ends.Length; i++)
        {
            if (array.GetValue(i) is Array list)
            {
                values.AddRange(Values(list));
                longest = Math.Max(longest, list.Length);
            }
            ends[i] = values.Count;
        }
        return new PlyColumn(name, listType, CountTypeFor(longest)) { Values = [.. values], Ends = ends };
    }

    /// <summary>The type for the lengths of lists.</summary>
    public static PlyType CountTypeFor(int longest) => longest <= byte.MaxValue ? PlyType.UChar : PlyType.Int;

    /// <summary>Float where that holds all values exactly, else double.</summary>
    public static PlyType TypeFor(ReadOnlySpan<double> values)
    {
        foreach (double value in values)
        {
            if ((float)value != value && !double.IsNaN(value))
                return PlyType.Double;
        }
        return PlyType.Float;
    }

    private static Array To<T>(PlyColumn column, Func<double, T> convert)
    {
        T[] all = new T[column.Values.Length];
        for (int i = 0; i < all.Length; i++)
            all[i] = convert(column.Values[i]);
        if (column.CountType is null)
            return all;
        T[][] lists = new T[column.Ends.Length][];
        for (int i = 0; i < lists.Length; i++)
            lists[i] = all[column.Start(i)..column.Ends[i]];
        return lists;
    }

    private static PlyType? TypeOf(Type type) => Type.GetTypeCode(type) switch
    {
        TypeCode.SByte => PlyType.Char,
        TypeCode.Byte => PlyType.UChar,
        TypeCode.Int16 => PlyType.Short,
        TypeCode.UInt16 => PlyType.UShort,
        TypeCode.Int32 => PlyType.Int,
        TypeCode.UInt32 => PlyType.UInt,
        TypeCode.Single => PlyType.Float,
        TypeCode.Double => PlyType.Double,
        _ => null,
    };

    private static double[] Values(Array array)
    {
        double[] values = new double[array.Length];
        for (int i = 0; i < values.Length; i++)
            values[i] = Convert.ToDouble(array.GetValue(i), CultureInfo.InvariantCulture);
        return values;
    }
}
