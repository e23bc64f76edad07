namespace Velbor.Voxlar.Entities;

/// <summary>Colours, linear RGB and alpha from 0 to 1.</summary>
public class VertexElementVertexColor : VertexElementVector4
{
    /// <summary>Makes the element without values.</summary>
    public VertexElementVertexColor()
        : base(VertexElementType.VertexColor)
    {
    }

    internal override VertexElement CreateEmpty() => new VertexElementVertexColor
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };
}
