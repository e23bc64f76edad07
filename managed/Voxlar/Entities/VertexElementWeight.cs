namespace Velbor.Voxlar.Entities;

/// <summary>Weights of control points.</summary>
public class VertexElementWeight : VertexElementDoublesTemplate
{
    /// <summary>Makes the element without values.</summary>
    public VertexElementWeight()
        : base(VertexElementType.Weight, MappingMode.ControlPoint)
    {
    }

    internal override VertexElement CreateEmpty() => new VertexElementWeight
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };
}
