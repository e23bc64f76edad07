namespace Velbor.Voxlar.Entities;

/// <summary>
/// How sharp edges stay when the surface is subdivided, from 0 to 1. Mapped by edge at first.
/// </summary>
public class VertexElementEdgeCrease : VertexElementDoublesTemplate
{
    /// <summary>Makes the element without values.</summary>
    public VertexElementEdgeCrease()
        : base(VertexElementType.EdgeCrease, MappingMode.Edge)
    {
    }

    internal override VertexElement CreateEmpty() => new VertexElementEdgeCrease
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };
}
