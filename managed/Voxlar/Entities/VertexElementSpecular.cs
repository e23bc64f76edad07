namespace Velbor.Voxlar.Entities;

/// <summary>Specular colours, linear RGB and alpha from 0 to 1.</summary>
public class VertexElementSpecular : VertexElementVector4
{
    /// <summary>Makes the element without values.</summary>
    public VertexElementSpecular()
        : base(VertexElementType.Specular)
    {
    }

    internal override VertexElement CreateEmpty() => new VertexElementSpecular
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };
}
