namespace Velbor.Voxlar.Entities;

/// <summary>The third axis of texture space, perpendicular to normal and tangent, of length 1.</summary>
public class VertexElementBinormal : VertexElementVector4
{
    /// <summary>Makes the element without values.</summary>
    public VertexElementBinormal()
        : base(VertexElementType.Binormal)
    {
    }

    internal override VertexElement CreateEmpty() => new VertexElementBinormal
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };
}
