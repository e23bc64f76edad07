namespace Velbor.Voxlar.Entities;

/// <summary>Data of any type that a program ties to a geometry.</summary>
public class VertexElementUserData : VertexElement
{
    /// <summary>Makes the element.</summary>
    public VertexElementUserData()
        : base(VertexElementType.UserData, MappingMode.ControlPoint, ReferenceMode.Direct)
    {
    }

    /// <summary>The data.</summary>
    public object? Data { get; set; }

    /// <summary>Removes the data and all indices.</summary>
    public override void Clear()
    {
        base.Clear();
        Data = null;
    }

    internal override VertexElement CreateEmpty() => new VertexElementUserData
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };

    private protected override void CopyValuesTo(VertexElement target) =>
        ((VertexElementUserData)target).Data = Data;

    internal override void AppendValue(VertexElement source, int index) =>
        Data = ((VertexElementUserData)source).Data;
}
