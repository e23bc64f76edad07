using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>Which polygons or edges can be seen. Mapped by polygon at first.</summary>
public class VertexElementVisibility : VertexElement
{
    private readonly List<bool> _data = new();

    /// <summary>Makes the element without values.</summary>
    public VertexElementVisibility()
        : base(VertexElementType.Visibility, MappingMode.Polygon, ReferenceMode.Direct)
    {
    }

    internal List<bool> DataList => _data;

    internal override int ValueCount => _data.Count;

    /// <summary>Replaces the values.</summary>
    /// <param name="data">True for each that can be seen; the array is copied.</param>
    public void SetData(bool[] data) => VertexElementTemplate.Assign(_data, data);

    /// <inheritdoc/>
    public override void Clear()
    {
        base.Clear();
        _data.Clear();
    }

    internal override VertexElement CreateEmpty() => new VertexElementVisibility
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };

    private protected override void CopyValuesTo(VertexElement target) =>
        VertexElementTemplate.Assign(((VertexElementVisibility)target)._data, _data);

    internal override void AppendValue(VertexElement source, int index) =>
        _data.Add(((VertexElementVisibility)source)._data[index]);

    internal override void AppendDefault() => _data.Add(true);
}
