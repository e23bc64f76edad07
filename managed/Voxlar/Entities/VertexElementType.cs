namespace Velbor.Voxlar.Entities;

/// <summary>The kind of a vertex element.</summary>
public enum VertexElementType
{
    Binormal = 0,
    Normal = 1,
    Tangent = 2,
    Material = 3,
    PolygonGroup = 4,
    UV = 5,
    VertexColor = 6,
    SmoothingGroup = 7,
    VertexCrease = 8,
    EdgeCrease = 9,
    UserData = 10,
    Visibility = 11,
    Specular = 12,
    Weight = 13,
    Hole = 14,
}
