using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A ring with a round cross section about the y axis, or a part of one. The part begins at x, runs
/// counter-clockwise as seen from above, and is closed by a disc at either end.
/// </summary>
public class Torus : Primitive
{
    private int _radialSegments;
    private int _tubularSegments;

    /// <summary>Makes a ring of radius 1 with a tube of radius 0.4.</summary>
    public Torus()
        : this(1, 0.4)
    {
    }

    /// <summary>Makes a ring of 16 x 48 segments.</summary>
    /// <param name="radius">The distance from the axis to the middle of the tube.</param>
    /// <param name="tube">The radius of the tube.</param>
    public Torus(double radius, double tube)
        : this(radius, tube, 2 * Math.PI)
    {
    }

    /// <summary>Makes a part of a ring of 16 x 48 segments.</summary>
    /// <param name="radius">The distance from the axis to the middle of the tube.</param>
    /// <param name="tube">The radius of the tube.</param>
    /// <param name="arc">How far it goes round the axis, in radians.</param>
    public Torus(double radius, double tube, double arc)
        : this("", radius, tube, 16, 48, arc)
    {
    }

    /// <summary>Makes a part of a ring.</summary>
    /// <param name="name">Its name.</param>
    /// <param name="radius">The distance from the axis to the middle of the tube.</param>
    /// <param name="tube">The radius of the tube.</param>
    /// <param name="radialSegments">The number of segments round the tube; a mesh has at least 3.</param>
    /// <param name="tubularSegments">
    /// The number of segments round the axis; a full ring has at least 3.
    /// </param>
    /// <param name="arc">How far it goes round the axis, in radians.</param>
    public Torus(string name, double radius, double tube, int radialSegments, int tubularSegments, double arc)
        : base(name)
    {
        Radius = radius;
        Tube = tube;
        RadialSegments = radialSegments;
        TubularSegments = tubularSegments;
        Arc = arc;
    }

    /// <summary>The distance from the axis to the middle of the tube.</summary>
    public double Radius { get; set; }

    /// <summary>The radius of the tube.</summary>
    public double Tube { get; set; }

    /// <summary>The number of segments round the tube, at least 1; a mesh has at least 3.</summary>
    public int RadialSegments
    {
        get => _radialSegments;
        set => _radialSegments = Segments.Checked(value);
    }

    /// <summary>The number of segments round the axis, at least 1; a full ring has at least 3.</summary>
    public int TubularSegments
    {
        get => _tubularSegments;
        set => _tubularSegments = Segments.Checked(value);
    }

    /// <summary>How far it goes round the axis, in radians.</summary>
    public double Arc { get; set; }

    /// <summary>Makes a mesh of quads; the ends of a part are polygons.</summary>
    public override Mesh ToMesh()
    {
        AngleRange ring = new(0, Arc, TubularSegments);
        AngleRange section = new(0, 2 * Math.PI, RadialSegments);
        SurfaceBuilder surface = new();
        SurfaceBuilder.Corner At(int i, int j)
        {
            Vector3 outward = ring.Outward(i);
            (double sin, double cos) = Math.SinCos(section.Angle(j));
            Vector3 normal = outward * cos + Vector3.YAxis * sin;
            return new SurfaceBuilder.Corner(
                outward * Radius + normal * Tube, normal,
                new Vector2((double)i / ring.Steps, (double)j / section.Steps));
        }

        surface.Grid(ring.Steps, section.Steps, At);
        if (!ring.Closed)
        {
            SurfaceBuilder.Corner[] begin = new SurfaceBuilder.Corner[section.Steps];
            SurfaceBuilder.Corner[] end = new SurfaceBuilder.Corner[section.Steps];
            for (int j = 0; j < section.Steps; ++j)
            {
                (double sin, double cos) = Math.SinCos(section.Angle(j));
                begin[j] = new(At(0, j).Position, -ring.Along(0), new Vector2(0.5 + cos / 2, 0.5 + sin / 2));
                end[section.Steps - 1 - j] = new(
                    At(ring.Steps, j).Position, ring.Along(ring.Steps),
                    new Vector2(0.5 - cos / 2, 0.5 + sin / 2));
            }
            surface.Polygon(begin);
            surface.Polygon(end);
        }
        return surface.ToMesh(Name);
    }
}
