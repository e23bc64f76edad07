using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A body given by a few values. It is centred about the origin unless told otherwise, and its upward
/// direction is y.
/// </summary>
public abstract class Primitive : Entity, IMeshConvertible
{
    private static readonly EntityRendererKey RendererKey = new("Primitive");

    private protected Primitive(string name)
        : base(name)
    {
    }

    /// <summary>Whether the body throws shadows; true at first.</summary>
    public bool CastShadows { get; set; } = true;

    /// <summary>Whether shadows fall on the body; true at first.</summary>
    public bool ReceiveShadows { get; set; } = true;

    /// <summary>
    /// Makes a mesh of the body, with normals and texture coordinates for each corner of each polygon.
    /// Polygons run counter-clockwise as seen from outside, and neighbouring ones share their control points.
    /// </summary>
    public abstract Mesh ToMesh();

    /// <inheritdoc/>
    public override EntityRendererKey GetEntityRendererKey() => RendererKey;

    /// <summary>The box around the mesh of the body.</summary>
    public override BoundingBox GetBoundingBox() => ToMesh().GetBoundingBox();
}
