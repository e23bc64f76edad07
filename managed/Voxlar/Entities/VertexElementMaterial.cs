namespace Velbor.Voxlar.Entities;

/// <summary>
/// Which material each polygon has: the indices are places in the material list of the node. Mapped by
/// polygon at first.
/// </summary>
public class VertexElementMaterial : VertexElement
{
    /// <summary>Makes the element.</summary>
    public VertexElementMaterial()
        : base(VertexElementType.Material, MappingMode.Polygon, ReferenceMode.Index)
    {
    }

    /// <summary>Removes all indices.</summary>
    public override void Clear() => base.Clear();

    /// <summary>The material of a polygon: 0 where none is given.</summary>
    internal int MaterialOf(int polygon)
    {
        int item = MappingMode == MappingMode.AllSame ? 0 : polygon;
        return item < IndexList.Count ? IndexList[item] : 0;
    }

    internal override VertexElement CreateEmpty() => new VertexElementMaterial
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };
}
