using System;
using System.Collections.Generic;
using Velbor.Voxlar.Profiles;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A body made by moving a profile along a curve. The profile's origin is on the curve, and its plane is at
/// right angles to it; at a corner of the curve the body is mitred.
/// </summary>
public class SweptAreaSolid : Entity, IMeshConvertible
{
    /// <summary>Makes a body without a shape and without a curve.</summary>
    public SweptAreaSolid()
        : base("")
    {
    }

    /// <summary>The profile.</summary>
    public Profile? Shape { get; set; }

    /// <summary>The curve the profile is moved along.</summary>
    public Curve? Directrix { get; set; }

    /// <summary>
    /// Where on the curve the body begins. While both ends are parameters of 0, the whole curve counts.
    /// </summary>
    public EndPoint StartPoint { get; set; }

    /// <summary>Where on the curve the body ends.</summary>
    public EndPoint EndPoint { get; set; }

    /// <inheritdoc/>
    public override EntityRendererKey GetEntityRendererKey() => SolidEntity.RendererKey;

    /// <summary>The box around the mesh of the body; empty without a shape or a curve.</summary>
    public override BoundingBox GetBoundingBox() =>
        Shape is null || Directrix is null ? BoundingBox.Null : ToMesh().GetBoundingBox();

    /// <summary>
    /// Makes a closed mesh. A plane curve that ends where it begins gives a ring without end faces.
    /// </summary>
    /// <exception cref="InvalidOperationException">
    /// The shape or the curve is missing, or the curve has no extent.
    /// </exception>
    /// <exception cref="NotSupportedException">The outline of the shape cannot be found.</exception>
    public Mesh ToMesh()
    {
        ProfileOutline outline = SolidEntity.Outline(Shape);
        List<Vector3> way = Way();
        bool ring = way.Count > 3 && (way[0] - way[^1]).Length < 1e-9 * Math.Max(1, (way[0] - way[1]).Length);
        int segments = way.Count - 1;
        Vector3[] along = new Vector3[segments];
        for (int k = 0; k < segments; ++k)
            along[k] = (way[k + 1] - way[k]).Normalize();

        Vector2[] flat = SweptSolid.Flatten(outline);
        Vector3[][] sections = new Vector3[segments + 1][];
        Vector3 first = ring ? Mitre(along[^1], along[0]) : along[0];
        sections[0] = FirstSection(flat, way[0], along[0], first);
        for (int k = 1; k <= segments; ++k)
        {
            Vector3 arrive = along[k - 1];
            Vector3 normal = k < segments ? Mitre(arrive, along[k]) : ring ? first : arrive;
            Vector3 place = way[k];
            sections[k] = Array.ConvertAll(sections[k - 1], point => Slid(point, arrive, place, normal));
        }
        // A curve that winds in space brings the profile back turned; the ring cannot be joined then.
        if (ring)
        {
            double size = 0;
            double gap = 0;
            for (int i = 0; i < flat.Length; ++i)
            {
                size = Math.Max(size, (sections[0][i] - way[0]).Length);
                gap = Math.Max(gap, (sections[0][i] - sections[segments][i]).Length);
            }
            ring = gap <= 1e-6 * size;
            if (ring)
                sections[segments] = sections[0];
        }
        return SweptSolid.Build(Name, outline, sections, ring);
    }

    private List<Vector3> Way()
    {
        if (Directrix is null)
            throw new InvalidOperationException("The body has no directrix.");
        Curve curve = Directrix;
        if (StartPoint != default || EndPoint != default)
            curve = new TrimmedCurve { BasisCurve = Directrix, First = StartPoint, Second = EndPoint };
        List<Vector3> way = new();
        foreach (Vector3 point in curve.Tessellate())
        {
            if (way.Count == 0 || (point - way[^1]).Length > 1e-12)
                way.Add(point);
        }
        if (way.Count < 2)
            throw new InvalidOperationException("The directrix has no extent.");
        return way;
    }

    // The plane half way between two directions; for a turn back, the plane across the arriving one.
    private static Vector3 Mitre(Vector3 arrive, Vector3 leave)
    {
        Vector3 middle = (arrive + leave).Normalize();
        return middle.Dot(arrive) > 0.05 ? middle : arrive;
    }

    // The profile's x and y turned the shortest way from z to the direction of the curve, then slid onto the
    // first plane.
    private static Vector3[] FirstSection(Vector2[] flat, Vector3 place, Vector3 along, Vector3 normal)
    {
        Vector3 x = Vector3.XAxis;
        Vector3 y = along.z < 0 ? -Vector3.YAxis : Vector3.YAxis;
        if (Math.Abs(along.z) < 1 - 1e-12)
        {
            Vector3 axis = Vector3.ZAxis.Cross(along);
            x = Vector3.XAxis * along.z + axis.Cross(Vector3.XAxis) + axis * (axis.x / (1 + along.z));
            y = Vector3.YAxis * along.z + axis.Cross(Vector3.YAxis) + axis * (axis.y / (1 + along.z));
        }
        return Array.ConvertAll(flat, point => Slid(place + x * point.x + y * point.y, along, place, normal));
    }

    private static Vector3 Slid(Vector3 point, Vector3 along, Vector3 place, Vector3 normal) =>
        point + along * ((place - point).Dot(normal) / along.Dot(normal));
}
