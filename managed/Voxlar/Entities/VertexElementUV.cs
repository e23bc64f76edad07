using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// Texture coordinates: u, v and, for volumes, w. The origin is the lower left corner of the image.
/// </summary>
public class VertexElementUV : VertexElementVector4
{
    /// <summary>Makes coordinates for diffuse textures.</summary>
    public VertexElementUV()
        : this(TextureMapping.Diffuse)
    {
    }

    /// <summary>Makes coordinates.</summary>
    /// <param name="textureMapping">The kind of texture they are for.</param>
    public VertexElementUV(TextureMapping textureMapping)
        : base(VertexElementType.UV)
    {
        TextureMapping = textureMapping;
    }

    /// <summary>The kind of texture the coordinates are for.</summary>
    internal TextureMapping TextureMapping { get; }

    /// <summary>Appends coordinates.</summary>
    /// <param name="data">Pairs of u and v.</param>
    public void AddData(IEnumerable<Vector2> data)
    {
        ArgumentNullException.ThrowIfNull(data);
        foreach (Vector2 uv in data)
            DataList.Add(new Vector4(uv.x, uv.y, 0, 1));
    }

    /// <summary>Appends coordinates.</summary>
    /// <param name="data">Triples of u, v and w.</param>
    public void AddData(IEnumerable<Vector3> data)
    {
        ArgumentNullException.ThrowIfNull(data);
        foreach (Vector3 uvw in data)
            DataList.Add(new Vector4(uvw, 1));
    }

    internal override VertexElement CreateEmpty() => new VertexElementUV(TextureMapping)
    {
        Name = Name,
        MappingMode = MappingMode,
        ReferenceMode = ReferenceMode,
    };
}
