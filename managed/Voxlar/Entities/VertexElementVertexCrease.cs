namespace Velbor.Voxlar.Entities;

/// <summary>How sharp points stay when the surface is subdivided, from 0 to 1.</summary>
public class VertexElementVertexCrease : VertexElementDoublesTemplate
{
    /// <summary>Makes the element without values.</summary>
    public VertexElementVertexCrease()
        : base(VertexElementType.VertexCrease, MappingMode.ControlPoint)
    {
    }

    internal override VertexElement CreateEmpty() => new VertexElementVertexCrease
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };
}
