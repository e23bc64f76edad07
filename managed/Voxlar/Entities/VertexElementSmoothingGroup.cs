namespace Velbor.Voxlar.Entities;

/// <summary>
/// A bit mask of smoothing groups for each polygon; polygons with a common bit share smooth normals. Mapped
/// by polygon at first.
/// </summary>
public class VertexElementSmoothingGroup : VertexElementIntsTemplate
{
    /// <summary>Makes the element without values.</summary>
    public VertexElementSmoothingGroup()
        : base(VertexElementType.SmoothingGroup)
    {
    }

    internal override VertexElement CreateEmpty() => new VertexElementSmoothingGroup
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };
}
