namespace Velbor.Voxlar.Entities;

/// <summary>The number of the group each polygon belongs to. Mapped by polygon at first.</summary>
public class VertexElementPolygonGroup : VertexElementIntsTemplate
{
    /// <summary>Makes the element without values.</summary>
    public VertexElementPolygonGroup()
        : base(VertexElementType.PolygonGroup)
    {
    }

    internal override VertexElement CreateEmpty() => new VertexElementPolygonGroup
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };
}
