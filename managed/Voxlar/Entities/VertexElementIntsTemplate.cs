using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>A vertex element whose values are whole numbers.</summary>
public abstract class VertexElementIntsTemplate : VertexElement
{
    private readonly List<int> _data = new();

    private protected VertexElementIntsTemplate(VertexElementType type)
        : base(type, MappingMode.Polygon, ReferenceMode.Direct)
    {
    }

    /// <summary>The values.</summary>
    public IList<int> Data => _data;

    internal override int ValueCount => _data.Count;

    /// <summary>Copies name, modes, indices and values into another element.</summary>
    /// <param name="target">The element that takes them.</param>
    public void CopyTo(VertexElementIntsTemplate target)
    {
        ArgumentNullException.ThrowIfNull(target);
        if (ReferenceEquals(target, this))
            return;
        CopyHeaderTo(target);
        CopyValuesTo(target);
    }

    /// <summary>Replaces the values.</summary>
    /// <param name="data">The new values, which are copied.</param>
    public void SetData(int[] data) => VertexElementTemplate.Assign(_data, data);

    /// <inheritdoc/>
    public override void Clear()
    {
        base.Clear();
        _data.Clear();
    }

    private protected override void CopyValuesTo(VertexElement target) =>
        VertexElementTemplate.Assign(((VertexElementIntsTemplate)target)._data, _data);

    internal override void AppendValue(VertexElement source, int index) =>
        _data.Add(((VertexElementIntsTemplate)source)._data[index]);

    internal override void AppendDefault() => _data.Add(0);
}
