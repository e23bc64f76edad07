using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// Values that belong to the points, corners, polygons or edges of a geometry. The mapping mode tells what
/// one value belongs to, the reference mode how it is found.
/// </summary>
public abstract class VertexElement : IIndexedVertexElement
{
    private readonly List<int> _indices = new();
    private MappingMode _mappingMode;
    private ReferenceMode _referenceMode;

    private protected VertexElement(VertexElementType type, MappingMode mapping, ReferenceMode reference)
    {
        VertexElementType = type;
        _mappingMode = mapping;
        _referenceMode = reference;
    }

    /// <summary>The kind of the element.</summary>
    public VertexElementType VertexElementType { get; }

    /// <summary>The name of the element.</summary>
    public string Name { get; set; } = "";

    /// <summary>What one value belongs to.</summary>
    /// <exception cref="ArgumentOutOfRangeException">The value is none of the enum.</exception>
    public MappingMode MappingMode
    {
        get => _mappingMode;
        set => _mappingMode =
            Enum.IsDefined(value) ? value : throw new ArgumentOutOfRangeException(nameof(value));
    }

    /// <summary>How values are found.</summary>
    /// <exception cref="ArgumentOutOfRangeException">The value is none of the enum.</exception>
    public ReferenceMode ReferenceMode
    {
        get => _referenceMode;
        set => _referenceMode =
            Enum.IsDefined(value) ? value : throw new ArgumentOutOfRangeException(nameof(value));
    }

    /// <summary>
    /// The indices, one for each thing that is mapped, unless the reference mode is direct.
    /// </summary>
    public IList<int> Indices => _indices;

    internal List<int> IndexList => _indices;

    /// <summary>The number of values; that of the indices where these are the values themselves.</summary>
    internal virtual int ValueCount => _indices.Count;

    /// <summary>Replaces the indices.</summary>
    /// <param name="data">The new indices, which are copied.</param>
    /// <exception cref="ArgumentException">An index is negative.</exception>
    public void SetIndices(int[] data)
    {
        ArgumentNullException.ThrowIfNull(data);
        if (Array.Exists(data, index => index < 0))
            throw new ArgumentException("An index of a vertex element is not negative.", nameof(data));
        _indices.Clear();
        _indices.AddRange(data);
    }

    /// <summary>Removes all indices and values.</summary>
    public virtual void Clear() => _indices.Clear();

    /// <inheritdoc/>
    public override string ToString() => $"{VertexElementType} {MappingMode} {ReferenceMode}";

    /// <summary>
    /// Finds the place of the value of something, or -1 when the element has none for it: where an index is
    /// missing or points beyond the values.
    /// </summary>
    /// <param name="controlPoint">The index of the control point.</param>
    /// <param name="corner">The index of the corner over all polygons.</param>
    /// <param name="polygon">The index of the polygon.</param>
    internal int ValueIndex(int controlPoint, int corner, int polygon)
    {
        int item = MappingMode switch
        {
            MappingMode.ControlPoint => controlPoint,
            MappingMode.PolygonVertex => corner,
            MappingMode.Polygon => polygon,
            MappingMode.AllSame => 0,
            _ => -1,
        };
        if (item < 0)
            return -1;
        if (ReferenceMode == ReferenceMode.IndexToDirect)
        {
            if (item >= _indices.Count)
                return -1;
            item = _indices[item];
        }
        return item < ValueCount ? item : -1;
    }

    /// <summary>
    /// Makes an element of the same kind without values, with the name and the two modes of this one.
    /// </summary>
    internal abstract VertexElement CreateEmpty();

    /// <summary>Copies name, modes and indices.</summary>
    private protected void CopyHeaderTo(VertexElement target)
    {
        target.Name = Name;
        target.MappingMode = MappingMode;
        target.ReferenceMode = ReferenceMode;
        target._indices.Clear();
        target._indices.AddRange(_indices);
    }

    /// <summary>Makes a copy.</summary>
    internal VertexElement Clone()
    {
        VertexElement copy = CreateEmpty();
        CopyHeaderTo(copy);
        CopyValuesTo(copy);
        return copy;
    }

    /// <summary>Copies the values into an element of the same kind, in place of those it has.</summary>
    private protected virtual void CopyValuesTo(VertexElement target)
    {
    }

    /// <summary>Appends a value of another element of the same kind to the values of this one.</summary>
    internal virtual void AppendValue(VertexElement source, int index)
    {
    }

    /// <summary>
    /// Appends the value that stands for none: zeros, or true where it is about visibility.
    /// </summary>
    internal virtual void AppendDefault()
    {
    }
}
