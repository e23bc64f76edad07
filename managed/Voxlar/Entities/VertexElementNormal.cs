namespace Velbor.Voxlar.Entities;

/// <summary>The outward normals of the surface, of length 1; w counts for nothing.</summary>
public class VertexElementNormal : VertexElementVector4
{
    /// <summary>Makes the element without values.</summary>
    public VertexElementNormal()
        : base(VertexElementType.Normal)
    {
    }

    internal override VertexElement CreateEmpty() => new VertexElementNormal
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };
}
