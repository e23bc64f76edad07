using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A vertex element whose values have four components; those that need fewer leave the rest alone.
/// </summary>
public abstract class VertexElementVector4 : VertexElement
{
    private readonly List<Vector4> _data = new();

    private protected VertexElementVector4(VertexElementType type)
        : base(type, MappingMode.ControlPoint, ReferenceMode.Direct)
    {
    }

    /// <summary>The values.</summary>
    public IList<Vector4> Data => _data;

    internal List<Vector4> DataList => _data;

    internal override int ValueCount => _data.Count;

    /// <summary>Copies name, modes, indices and values into another element.</summary>
    /// <param name="target">The element that takes them.</param>
    public void CopyTo(VertexElementVector4 target)
    {
        ArgumentNullException.ThrowIfNull(target);
        if (ReferenceEquals(target, this))
            return;
        CopyHeaderTo(target);
        CopyValuesTo(target);
    }

    /// <summary>Replaces the values.</summary>
    /// <param name="data">The new values, which are copied.</param>
    public void SetData(Vector4[] data) => VertexElementTemplate.Assign(_data, data);

    /// <inheritdoc/>
    public override void Clear()
    {
        base.Clear();
        _data.Clear();
    }

    private protected override void CopyValuesTo(VertexElement target) =>
        VertexElementTemplate.Assign(((VertexElementVector4)target)._data, _data);

    internal override void AppendValue(VertexElement source, int index) =>
        _data.Add(((VertexElementVector4)source)._data[index]);

    internal override void AppendDefault() => _data.Add(default);
}
