using System;
using Velbor.Voxlar.Profiles;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A body made by turning a profile, which lies in the plane of x and y on one side of the axis, about an
/// axis in that plane.
/// </summary>
public class RevolvedAreaSolid : Entity, IMeshConvertible
{
    private const int SegmentsPerTurn = 32;

    /// <summary>Makes a body without a shape, over a full turn about y.</summary>
    public RevolvedAreaSolid()
        : base("")
    {
    }

    /// <summary>Where the turn begins, in radians.</summary>
    public double AngleStart { get; set; }

    /// <summary>Where the turn ends, in radians; a full turn and no more counts.</summary>
    public double AngleEnd { get; set; } = 2 * Math.PI;

    /// <summary>The direction of the axis; y at first.</summary>
    public Vector3 Axis { get; set; } = Vector3.YAxis;

    /// <summary>A point of the axis; the origin at first.</summary>
    public Vector3 Origin { get; set; }

    /// <summary>The profile.</summary>
    public Profile? Shape { get; set; }

    /// <inheritdoc/>
    public override EntityRendererKey GetEntityRendererKey() => SolidEntity.RendererKey;

    /// <summary>The box around the mesh of the body; empty without a shape.</summary>
    public override BoundingBox GetBoundingBox() =>
        Shape is null ? BoundingBox.Null : ToMesh().GetBoundingBox();

    /// <summary>Makes a closed mesh with 32 segments for a full turn.</summary>
    /// <exception cref="InvalidOperationException">
    /// There is no shape, or the axis or the turn has no extent.
    /// </exception>
    /// <exception cref="NotSupportedException">The outline of the shape cannot be found.</exception>
    public Mesh ToMesh()
    {
        ProfileOutline outline = SolidEntity.Outline(Shape);
        Vector3 axis = Axis.Normalize();
        if (!(axis.Length > 0.5))
            throw new InvalidOperationException("The axis of a revolved body has a direction.");
        double length = AngleEnd - AngleStart;
        if (!(Math.Abs(length) > 1e-9))
            throw new InvalidOperationException("A revolved body has angles that differ.");
        bool closed = Math.Abs(length) >= 2 * Math.PI - 1e-9;
        length = closed ? 2 * Math.PI : length;
        int steps = Math.Max((int)Math.Ceiling(Math.Abs(length) / (2 * Math.PI) * SegmentsPerTurn - 1e-9),
            closed ? 3 : 1);
        Vector2[] flat = SweptSolid.Flatten(outline);
        Vector3[][] sections = new Vector3[steps + 1][];
        for (int k = 0; k <= steps; ++k)
        {
            double angle = AngleStart + length * k / steps;
            sections[k] = closed && k == steps ? sections[0]
                : Array.ConvertAll(flat, point => Turned(point, axis, angle));
        }
        return SweptSolid.Build(Name, outline, sections, closed);
    }

    private Vector3 Turned(Vector2 point, Vector3 axis, double angle)
    {
        Vector3 arm = new Vector3(point.x, point.y, 0) - Origin;
        Vector3 foot = axis * arm.Dot(axis);
        Vector3 away = arm - foot;
        // A point on the axis stays where it is to the last bit, so that all places of it are one.
        if (away.Length <= 1e-12 * Math.Max(1, arm.Length))
            return new Vector3(point.x, point.y, 0);
        (double sin, double cos) = Math.SinCos(angle);
        return Origin + foot + away * cos + axis.Cross(away) * sin;
    }
}
