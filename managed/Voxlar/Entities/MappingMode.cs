namespace Velbor.Voxlar.Entities;

/// <summary>What one value of a vertex element belongs to.</summary>
public enum MappingMode
{
    /// <summary>One value for each control point.</summary>
    ControlPoint = 0,

    /// <summary>One value for each corner of each polygon, in polygon order.</summary>
    PolygonVertex = 1,

    /// <summary>One value for each polygon.</summary>
    Polygon = 2,

    /// <summary>One value for each edge, in the order of <see cref="Mesh.Edges"/>.</summary>
    Edge = 3,

    /// <summary>One value for the whole geometry.</summary>
    AllSame = 4,
}
