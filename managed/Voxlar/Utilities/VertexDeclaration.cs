using System;
using System.Collections;
using System.Collections.Generic;
using Velbor.Voxlar.Entities;

namespace Velbor.Voxlar.Utilities;

/// <summary>
/// The layout of a vertex: fields one after the other without gaps. A declaration in use by a mesh is sealed
/// and cannot change any more.
/// </summary>
public class VertexDeclaration : IEnumerable<VertexField>, IComparable<VertexDeclaration>
{
    private readonly List<VertexField> _fields = [];

    /// <summary>Whether a mesh uses this declaration, so that it cannot change.</summary>
    public bool Sealed { get; private set; }

    /// <summary>The number of fields.</summary>
    public int Count => _fields.Count;

    /// <summary>The size of a vertex in bytes.</summary>
    public int Size { get; private set; }

    /// <summary>The field at a place, counted from 0.</summary>
    /// <exception cref="ArgumentOutOfRangeException">There is no such field.</exception>
    public VertexField this[int index] => _fields[index];

    /// <summary>Removes all fields.</summary>
    /// <exception cref="InvalidOperationException">The declaration is sealed.</exception>
    public void Clear()
    {
        EnsureNotSealed();
        _fields.Clear();
        Size = 0;
    }

    /// <summary>Adds a field behind the others.</summary>
    /// <param name="dataType">The data type.</param>
    /// <param name="semantic">What the field means.</param>
    /// <param name="index">The index among the fields of the same semantic.</param>
    /// <param name="alias">The name of the field in a shader; may be null or empty.</param>
    /// <exception cref="InvalidOperationException">The declaration is sealed.</exception>
    /// <exception cref="ArgumentException">The type or the semantic is none of its enum, the index is
    /// negative, or there is such a field already.</exception>
    public VertexField AddField(
        VertexFieldDataType dataType, VertexFieldSemantic semantic, int index, string? alias)
    {
        EnsureNotSealed();
        if (!Enum.IsDefined(dataType))
            throw new ArgumentException($"There is no vertex field type {(int)dataType}.", nameof(dataType));
        if (!Enum.IsDefined(semantic))
            throw new ArgumentException($"There is no vertex field semantic {(int)semantic}.", nameof(semantic));
        ArgumentOutOfRangeException.ThrowIfNegative(index);
        if (Find(semantic, index) is not null)
            throw new ArgumentException($"The declaration has a field {semantic}[{index}] already.", nameof(index));
        VertexField field = new(dataType, semantic, index, alias ?? "", Size);
        _fields.Add(field);
        Size += field.Size;
        return field;
    }

    /// <summary>
    /// The declaration that holds what a geometry has: the position and one field a vertex element that has
    /// vertex data.
    /// </summary>
    /// <param name="geometry">The geometry.</param>
    /// <param name="useFloat">True for fields of single precision, false for double precision.</param>
    public static VertexDeclaration FromGeometry(Geometry geometry, bool useFloat)
    {
        ArgumentNullException.ThrowIfNull(geometry);
        VertexFieldDataType two = useFloat ? VertexFieldDataType.FVector2 : VertexFieldDataType.Vector2;
        VertexFieldDataType three = useFloat ? VertexFieldDataType.FVector3 : VertexFieldDataType.Vector3;
        VertexFieldDataType four = useFloat ? VertexFieldDataType.FVector4 : VertexFieldDataType.Vector4;
        VertexFieldDataType one = useFloat ? VertexFieldDataType.Float : VertexFieldDataType.Double;
        VertexDeclaration result = new();
        result.AddField(three, VertexFieldSemantic.Position, 0, null);
        foreach (VertexElement element in geometry.VertexElements)
        {
            (VertexFieldSemantic Semantic, VertexFieldDataType Type)? row = element.VertexElementType switch
            {
                VertexElementType.Binormal => (VertexFieldSemantic.Binormal, three),
                VertexElementType.Normal => (VertexFieldSemantic.Normal, three),
                VertexElementType.Tangent => (VertexFieldSemantic.Tangent, three),
                VertexElementType.UV => (VertexFieldSemantic.UV, two),
                VertexElementType.VertexColor => (VertexFieldSemantic.VertexColor, four),
                VertexElementType.Specular => (VertexFieldSemantic.Specular, four),
                VertexElementType.VertexCrease => (VertexFieldSemantic.VertexCrease, one),
                VertexElementType.EdgeCrease => (VertexFieldSemantic.EdgeCrease, one),
                VertexElementType.Weight => (VertexFieldSemantic.Weight, one),
                VertexElementType.Visibility => (VertexFieldSemantic.Visibility, VertexFieldDataType.Int8),
                _ => null,
            };
            if (row is { } found)
                result.AddField(found.Type, found.Semantic, result.CountOf(found.Semantic), null);
        }
        return result;
    }

    /// <summary>Compares field by field; a declaration that runs out of fields comes first.</summary>
    /// <returns>A negative number, zero or a positive number.</returns>
    public int CompareTo(VertexDeclaration? other)
    {
        if (other is null)
            return 1;
        int common = Math.Min(Count, other.Count);
        for (int i = 0; i < common; i++)
        {
            int result = _fields[i].CompareTo(other._fields[i]);
            if (result != 0)
                return result;
        }
        return Count.CompareTo(other.Count);
    }

    /// <summary>Gives the fields in their order.</summary>
    public IEnumerator<VertexField> GetEnumerator() => _fields.GetEnumerator();

    IEnumerator IEnumerable.GetEnumerator() => GetEnumerator();

    /// <summary>Forbids any further change.</summary>
    internal void Seal() => Sealed = true;

    /// <summary>The field with this meaning and index, or null.</summary>
    internal VertexField? Find(VertexFieldSemantic semantic, int index) =>
        _fields.Find(field => field.Semantic == semantic && field.Index == index);

    private int CountOf(VertexFieldSemantic semantic)
    {
        int count = 0;
        foreach (VertexField field in _fields)
            count += field.Semantic == semantic ? 1 : 0;
        return count;
    }

    private void EnsureNotSealed()
    {
        if (Sealed)
            throw new InvalidOperationException("The vertex declaration is in use and cannot be changed.");
    }
}
