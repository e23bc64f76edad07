using System;
using Velbor.Voxlar.Profiles;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A body made by moving a profile, which lies in the plane of x and y, along a direction; it may turn about
/// that direction on its way.
/// </summary>
public class LinearExtrusion : Entity, IMeshConvertible
{
    private int _slices = 1;

    /// <summary>Makes an extrusion without a shape, of height 1.</summary>
    public LinearExtrusion()
        : base("")
    {
    }

    /// <summary>Makes an extrusion along z.</summary>
    /// <param name="shape">The profile.</param>
    /// <param name="height">The height.</param>
    public LinearExtrusion(Profile shape, double height)
        : base("")
    {
        Shape = shape;
        Height = height;
    }

    /// <summary>The profile.</summary>
    public Profile? Shape { get; set; }

    /// <summary>
    /// The direction; z at first. Its length does not count, and it does not lie in the profile's plane.
    /// </summary>
    public Vector3 Direction { get; set; } = Vector3.ZAxis;

    /// <summary>How far the profile is moved.</summary>
    public double Height { get; set; } = 1;

    /// <summary>The number of segments along the height, at least 1.</summary>
    public int Slices
    {
        get => _slices;
        set => _slices = Segments.Checked(value);
    }

    /// <summary>
    /// Whether the body is moved back by half its height, so that the profile lies in the middle.
    /// </summary>
    public bool Center { get; set; }

    /// <summary>The point of the profile's plane about which it turns; the origin at first.</summary>
    public Vector3 TwistOffset { get; set; }

    /// <summary>How far the profile turns over the whole height, in radians from x to y.</summary>
    public double Twist { get; set; }

    /// <inheritdoc/>
    public override EntityRendererKey GetEntityRendererKey() => SolidEntity.RendererKey;

    /// <summary>The box around the mesh of the body; empty without a shape.</summary>
    public override BoundingBox GetBoundingBox() =>
        Shape is null ? BoundingBox.Null : ToMesh().GetBoundingBox();

    /// <summary>Makes a closed mesh.</summary>
    /// <exception cref="InvalidOperationException">
    /// There is no shape, or the direction lies in its plane.
    /// </exception>
    /// <exception cref="NotSupportedException">The outline of the shape cannot be found.</exception>
    public Mesh ToMesh()
    {
        ProfileOutline outline = SolidEntity.Outline(Shape);
        Vector3 direction = Direction.Normalize();
        if (!(Math.Abs(direction.z) > 1e-9))
            throw new InvalidOperationException(
                "The direction of an extrusion does not lie in the plane of its shape.");
        Vector2[] flat = SweptSolid.Flatten(outline);
        Vector3[][] sections = new Vector3[Slices + 1][];
        for (int k = 0; k <= Slices; ++k)
        {
            double share = (double)k / Slices;
            Vector3 moved = direction * (Height * (Center ? share - 0.5 : share));
            (double sin, double cos) = Math.SinCos(Twist * share);
            sections[k] = Array.ConvertAll(flat, point =>
            {
                double x = point.x - TwistOffset.x;
                double y = point.y - TwistOffset.y;
                Vector3 turned = new(x * cos - y * sin, x * sin + y * cos, 0);
                return moved + turned + new Vector3(TwistOffset.x, TwistOffset.y, 0);
            });
        }
        return SweptSolid.Build(Name, outline, sections, closed: false);
    }
}
