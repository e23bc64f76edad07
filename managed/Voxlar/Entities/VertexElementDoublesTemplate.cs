using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>A vertex element whose values are numbers.</summary>
public abstract class VertexElementDoublesTemplate : VertexElement
{
    private readonly List<double> _data = new();

    private protected VertexElementDoublesTemplate(VertexElementType type, MappingMode mapping)
        : base(type, mapping, ReferenceMode.Direct)
    {
    }

    internal List<double> DataList => _data;

    internal override int ValueCount => _data.Count;

    /// <summary>Copies name, modes, indices and values into another element.</summary>
    /// <param name="target">The element that takes them.</param>
    public void CopyTo(VertexElementDoublesTemplate target)
    {
        ArgumentNullException.ThrowIfNull(target);
        if (ReferenceEquals(target, this))
            return;
        CopyHeaderTo(target);
        CopyValuesTo(target);
    }

    /// <summary>Replaces the values.</summary>
    /// <param name="data">The new values, which are copied.</param>
    public void SetData(double[] data) => VertexElementTemplate.Assign(_data, data);

    /// <inheritdoc/>
    public override void Clear()
    {
        base.Clear();
        _data.Clear();
    }

    private protected override void CopyValuesTo(VertexElement target) =>
        VertexElementTemplate.Assign(((VertexElementDoublesTemplate)target)._data, _data);

    internal override void AppendValue(VertexElement source, int index) =>
        _data.Add(((VertexElementDoublesTemplate)source)._data[index]);

    internal override void AppendDefault() => _data.Add(0);
}
