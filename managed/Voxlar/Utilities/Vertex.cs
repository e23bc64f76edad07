using System;
using System.Buffers.Binary;

namespace Velbor.Voxlar.Utilities;

/// <summary>
/// One vertex: bytes laid out by a <see cref="VertexDeclaration"/>. A field is read as any type of vector or
/// number; components that the field does not have are 0, but w is 1, and byte colours are scaled to the
/// range 0 to 1.
/// </summary>
public sealed class Vertex : IComparable<Vertex>
{
    private readonly VertexDeclaration _declaration;
    private readonly Memory<byte> _data;

    /// <summary>Makes a view on the bytes; it does not copy them.</summary>
    internal Vertex(VertexDeclaration declaration, Memory<byte> data)
    {
        if (data.Length < declaration.Size)
            throw new ArgumentException("There are fewer bytes than a vertex takes.", nameof(data));
        _declaration = declaration;
        _data = data[..declaration.Size];
    }

    internal VertexDeclaration Declaration => _declaration;

    internal ReadOnlyMemory<byte> Data => _data;

    /// <summary>Compares the components of all fields, one after the other.</summary>
    /// <returns>A negative number, zero or a positive number.</returns>
    public int CompareTo(Vertex? other)
    {
        if (other is null)
            return 1;
        int result = _declaration.CompareTo(other._declaration);
        if (result != 0)
            return result;
        foreach (VertexField field in _declaration)
        {
            for (int i = 0; i < field.ComponentCount; i++)
            {
                result = Component(field, i).CompareTo(other.Component(field, i));
                if (result != 0)
                    return result;
            }
        }
        return 0;
    }

    /// <summary>Reads the field as four doubles.</summary>
    /// <exception cref="ArgumentNullException"><paramref name="field"/> is null.</exception>
    /// <exception cref="ArgumentException">The field belongs to another declaration.</exception>
    public Vector4 ReadVector4(VertexField field)
    {
        Check(field);
        return new Vector4(
            Value(field, 0, 0), Value(field, 1, 0), Value(field, 2, 0), Value(field, 3, 1));
    }

    /// <summary>Reads the field as four singles.</summary>
    public FVector4 ReadFVector4(VertexField field) => new(ReadVector4(field));

    /// <summary>Reads the field as three doubles.</summary>
    public Vector3 ReadVector3(VertexField field) => new(ReadVector4(field));

    /// <summary>Reads the field as three singles.</summary>
    public FVector3 ReadFVector3(VertexField field) => new(ReadVector4(field));

    /// <summary>Reads the field as two doubles.</summary>
    public Vector2 ReadVector2(VertexField field)
    {
        Vector4 value = ReadVector4(field);
        return new Vector2(value.x, value.y);
    }

    /// <summary>Reads the field as two singles.</summary>
    public FVector2 ReadFVector2(VertexField field) => new(ReadVector2(field));

    /// <summary>Reads the first component of the field.</summary>
    public double ReadDouble(VertexField field) => ReadVector4(field).x;

    /// <summary>Reads the first component of the field.</summary>
    public float ReadFloat(VertexField field) => (float)ReadDouble(field);

    /// <summary>Writes as many of the components as the field has.</summary>
    internal void Write(VertexField field, Vector4 value)
    {
        Check(field);
        ReadOnlySpan<double> components = [value.x, value.y, value.z, value.w];
        for (int i = 0; i < field.ComponentCount; i++)
            Set(field, i, components[i]);
    }

    private void Check(VertexField field)
    {
        ArgumentNullException.ThrowIfNull(field);
        if (field.Offset + field.Size > _data.Length)
            throw new ArgumentException($"The vertex has no field {field}.", nameof(field));
    }

    private double Value(VertexField field, int index, double missing)
    {
        if (index >= field.ComponentCount)
            return missing;
        double value = Component(field, index);
        return field.DataType == VertexFieldDataType.ByteVector4 ? value / 255 : value;
    }

    private double Component(VertexField field, int index)
    {
        ReadOnlySpan<byte> bytes = _data.Span[(field.Offset + index * field.ComponentSize)..];
        return ((int)field.DataType >> 4) switch
        {
            1 => BinaryPrimitives.ReadSingleLittleEndian(bytes),
            2 => BinaryPrimitives.ReadDoubleLittleEndian(bytes),
            3 => field.DataType == VertexFieldDataType.Int8 ? (sbyte)bytes[0] : bytes[0],
            4 => BinaryPrimitives.ReadInt16LittleEndian(bytes),
            5 => BinaryPrimitives.ReadInt32LittleEndian(bytes),
            _ => BinaryPrimitives.ReadInt64LittleEndian(bytes),
        };
    }

    private void Set(VertexField field, int index, double value)
    {
        Span<byte> bytes = _data.Span[(field.Offset + index * field.ComponentSize)..];
        switch ((int)field.DataType >> 4)
        {
            case 1:
                BinaryPrimitives.WriteSingleLittleEndian(bytes, (float)value);
                break;
            case 2:
                BinaryPrimitives.WriteDoubleLittleEndian(bytes, value);
                break;
            case 3:
                bytes[0] = field.DataType == VertexFieldDataType.Int8
                    ? unchecked((byte)(sbyte)Math.Clamp(value, sbyte.MinValue, sbyte.MaxValue))
                    : (byte)Math.Clamp(Math.Round(value * 255), 0, 255);
                break;
            case 4:
                BinaryPrimitives.WriteInt16LittleEndian(
                    bytes, (short)Math.Clamp(value, short.MinValue, short.MaxValue));
                break;
            case 5:
                BinaryPrimitives.WriteInt32LittleEndian(bytes, (int)Math.Clamp(value, int.MinValue, int.MaxValue));
                break;
            default:
                BinaryPrimitives.WriteInt64LittleEndian(bytes, (long)value);
                break;
        }
    }
}
