using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A ring with a rectangular cross section about the y axis, or a part of one, which is closed by a rectangle
/// at either end.
/// </summary>
public class RectangularTorus : Primitive
{
    private int _radialSegments = 32;

    /// <summary>Makes a full ring from radius 10 to radius 20 with a height of 20.</summary>
    public RectangularTorus()
        : this("")
    {
    }

    /// <summary>Makes a full ring from radius 10 to radius 20 with a height of 20.</summary>
    /// <param name="name">Its name.</param>
    public RectangularTorus(string name)
        : base(name)
    {
    }

    /// <summary>The radius of the inner wall.</summary>
    public double InnerRadius { get; set; } = 10;

    /// <summary>The radius of the outer wall.</summary>
    public double OuterRadius { get; set; } = 20;

    /// <summary>The height.</summary>
    public double Height { get; set; } = 20;

    /// <summary>How far it goes round the axis, in radians, counter-clockwise as seen from above.</summary>
    public double Arc { get; set; } = 2 * Math.PI;

    /// <summary>Where it begins round the axis, in radians from x.</summary>
    public double AngleStart { get; set; }

    /// <summary>
    /// The number of segments round the axis, at least 1; a full ring has at least 3. 32 at first.
    /// </summary>
    public int RadialSegments
    {
        get => _radialSegments;
        set => _radialSegments = Segments.Checked(value);
    }

    /// <summary>Makes a mesh of quads.</summary>
    public override Mesh ToMesh()
    {
        AngleRange ring = new(AngleStart, Arc, RadialSegments);
        double half = Height / 2;
        // The corners of the section, counter-clockwise as seen along the ring from its begin backwards.
        (double Radius, double Y)[] section =
            [(OuterRadius, -half), (OuterRadius, half), (InnerRadius, half), (InnerRadius, -half)];
        SurfaceBuilder surface = new();
        for (int side = 0; side < 4; ++side)
        {
            (double Radius, double Y) from = section[side];
            (double Radius, double Y) to = section[(side + 1) % 4];
            surface.Grid(ring.Steps, 1, (i, j) =>
            {
                (double radius, double y) = j == 0 ? from : to;
                Vector3 outward = ring.Outward(i);
                Vector3 normal = side switch
                {
                    0 => outward,
                    1 => Vector3.YAxis,
                    2 => -outward,
                    _ => -Vector3.YAxis,
                };
                return new SurfaceBuilder.Corner(Point(outward, radius, y), normal,
                    new Vector2((double)i / ring.Steps, j));
            });
        }
        if (!ring.Closed)
        {
            SurfaceBuilder.Corner[] begin = new SurfaceBuilder.Corner[4];
            SurfaceBuilder.Corner[] end = new SurfaceBuilder.Corner[4];
            Vector2[] uv = [new(1, 0), new(1, 1), new(0, 1), new(0, 0)];
            for (int k = 0; k < 4; ++k)
            {
                (double radius, double y) = section[k];
                begin[k] = new(Point(ring.Outward(0), radius, y), -ring.Along(0), uv[k]);
                end[3 - k] = new(
                    Point(ring.Outward(ring.Steps), radius, y), ring.Along(ring.Steps),
                    new Vector2(1 - uv[k].x, uv[k].y));
            }
            surface.Polygon(begin);
            surface.Polygon(end);
        }
        return surface.ToMesh(Name);
    }

    private static Vector3 Point(Vector3 outward, double radius, double y) =>
        outward * radius + Vector3.YAxis * y;
}
