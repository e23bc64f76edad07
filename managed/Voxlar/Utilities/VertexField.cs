using System;

namespace Velbor.Voxlar.Utilities;

/// <summary>One field of a vertex: its type, its meaning and where it stands.</summary>
public sealed class VertexField : IComparable<VertexField>
{
    internal VertexField(
        VertexFieldDataType dataType, VertexFieldSemantic semantic, int index, string alias, int offset)
    {
        DataType = dataType;
        Semantic = semantic;
        Index = index;
        Alias = alias;
        Offset = offset;
        Size = ComponentCount * ComponentSize;
    }

    /// <summary>The data type.</summary>
    public VertexFieldDataType DataType { get; }

    /// <summary>What the field means.</summary>
    public VertexFieldSemantic Semantic { get; }

    /// <summary>The name of the field in a shader; empty when it has none.</summary>
    public string Alias { get; }

    /// <summary>The index among the fields of the same semantic, as for several texture
    /// coordinates.</summary>
    public int Index { get; }

    /// <summary>The place of the field inside the vertex, in bytes.</summary>
    public int Offset { get; }

    /// <summary>The size of the field in bytes.</summary>
    public int Size { get; }

    internal int ComponentCount => (int)DataType & 15;

    /// <summary>The size of one component in bytes; the kind of a component stands above the low four
    /// bits.</summary>
    internal int ComponentSize => ((int)DataType >> 4) switch
    {
        1 => sizeof(float),
        2 => sizeof(double),
        3 => sizeof(byte),
        4 => sizeof(short),
        5 => sizeof(int),
        _ => sizeof(long),
    };

    /// <summary>Compares by offset, type, semantic, index and alias.</summary>
    /// <returns>A negative number, zero or a positive number.</returns>
    public int CompareTo(VertexField? other)
    {
        if (other is null)
            return 1;
        int result = Offset.CompareTo(other.Offset);
        if (result == 0)
            result = DataType.CompareTo(other.DataType);
        if (result == 0)
            result = Semantic.CompareTo(other.Semantic);
        if (result == 0)
            result = Index.CompareTo(other.Index);
        return result != 0 ? result : string.CompareOrdinal(Alias, other.Alias);
    }

    /// <summary>The semantic with its index, the type and the offset.</summary>
    public override string ToString() => $"{Semantic}[{Index}] {DataType} at {Offset}";
}
