using System;

namespace Velbor.Voxlar.Entities;

/// <summary>Makes vertex elements by kind.</summary>
internal static class VertexElementFactory
{
    public static VertexElement Create(VertexElementType type) => type switch
    {
        VertexElementType.Binormal => new VertexElementBinormal(),
        VertexElementType.Normal => new VertexElementNormal(),
        VertexElementType.Tangent => new VertexElementTangent(),
        VertexElementType.Material => new VertexElementMaterial(),
        VertexElementType.PolygonGroup => new VertexElementPolygonGroup(),
        VertexElementType.UV => new VertexElementUV(),
        VertexElementType.VertexColor => new VertexElementVertexColor(),
        VertexElementType.SmoothingGroup => new VertexElementSmoothingGroup(),
        VertexElementType.VertexCrease => new VertexElementVertexCrease(),
        VertexElementType.EdgeCrease => new VertexElementEdgeCrease(),
        VertexElementType.UserData => new VertexElementUserData(),
        VertexElementType.Visibility => new VertexElementVisibility(),
        VertexElementType.Specular => new VertexElementSpecular(),
        VertexElementType.Weight => new VertexElementWeight(),
        VertexElementType.Hole => new VertexElementHole(),
        _ => throw new ArgumentOutOfRangeException(nameof(type)),
    };
}
