namespace Velbor.Voxlar.Entities;

/// <summary>
/// The direction of growing u on the surface, of length 1; w is the handedness of the binormal, 1 or -1.
/// </summary>
public class VertexElementTangent : VertexElementVector4
{
    /// <summary>Makes the element without values.</summary>
    public VertexElementTangent()
        : base(VertexElementType.Tangent)
    {
    }

    internal override VertexElement CreateEmpty() => new VertexElementTangent
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };
}
