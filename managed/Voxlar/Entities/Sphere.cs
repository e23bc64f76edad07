using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A sphere or a part of its surface. Phi runs round the y axis from x, counter-clockwise as seen from above;
/// theta runs down from the top. All angles are in radians. A part is not closed by further faces.
/// </summary>
public class Sphere : Primitive
{
    private int _widthSegments;
    private int _heightSegments;

    /// <summary>Makes a sphere of radius 1.</summary>
    public Sphere()
        : this(1)
    {
    }

    /// <summary>Makes a sphere of 32 x 16 segments.</summary>
    /// <param name="radius">Its radius.</param>
    public Sphere(double radius)
        : this(radius, 32, 16)
    {
    }

    /// <summary>Makes a sphere.</summary>
    /// <param name="radius">Its radius.</param>
    /// <param name="widthSegments">The number of segments round the axis; a full ring has at least 3.</param>
    /// <param name="heightSegments">
    /// The number of segments from top to bottom; a full sphere has at least 2.
    /// </param>
    public Sphere(double radius, int widthSegments, int heightSegments)
        : this("", radius, widthSegments, heightSegments, 0, 2 * Math.PI, 0, Math.PI)
    {
    }

    /// <summary>Makes a part of a sphere.</summary>
    /// <param name="name">Its name.</param>
    /// <param name="radius">Its radius.</param>
    /// <param name="widthSegments">The number of segments round the axis; a full ring has at least 3.</param>
    /// <param name="heightSegments">
    /// The number of segments from top to bottom; a full sphere has at least 2.
    /// </param>
    /// <param name="phiStart">Where it begins round the axis, in radians.</param>
    /// <param name="phiLength">How far it goes round the axis, in radians.</param>
    /// <param name="thetaStart">Where it begins below the top, in radians.</param>
    /// <param name="thetaLength">How far it goes down, in radians.</param>
    public Sphere(
        string name, double radius, int widthSegments, int heightSegments, double phiStart, double phiLength,
        double thetaStart, double thetaLength)
        : base(name)
    {
        Radius = radius;
        WidthSegments = widthSegments;
        HeightSegments = heightSegments;
        PhiStart = phiStart;
        PhiLength = phiLength;
        ThetaStart = thetaStart;
        ThetaLength = thetaLength;
    }

    /// <summary>The number of segments round the axis, at least 1; a full ring has at least 3.</summary>
    public int WidthSegments
    {
        get => _widthSegments;
        set => _widthSegments = Segments.Checked(value);
    }

    /// <summary>
    /// The number of segments from top to bottom, at least 1; a full sphere has at least 2.
    /// </summary>
    public int HeightSegments
    {
        get => _heightSegments;
        set => _heightSegments = Segments.Checked(value);
    }

    /// <summary>Where it begins round the axis, in radians.</summary>
    public double PhiStart { get; set; }

    /// <summary>How far it goes round the axis, in radians.</summary>
    public double PhiLength { get; set; }

    /// <summary>Where it begins below the top, in radians.</summary>
    public double ThetaStart { get; set; }

    /// <summary>How far it goes down, in radians; it ends at the bottom at the latest.</summary>
    public double ThetaLength { get; set; }

    /// <summary>The radius.</summary>
    public double Radius { get; set; }

    /// <summary>Makes a mesh of quads, with triangles at the poles.</summary>
    public override Mesh ToMesh()
    {
        AngleRange phi = new(PhiStart, PhiLength, WidthSegments);
        double top = Math.Clamp(ThetaStart, 0, Math.PI);
        double bottom = Math.Clamp(ThetaStart + ThetaLength, top, Math.PI);
        int rows = Math.Max(HeightSegments, bottom - top > Math.PI - 1e-9 ? 2 : 1);
        SurfaceBuilder surface = new();
        surface.Grid(phi.Steps, rows, (i, j) =>
        {
            double theta = bottom + (top - bottom) * j / rows;
            Vector3 normal = OnUnitSphere(phi.Outward(i), theta);
            return new SurfaceBuilder.Corner(
                normal * Radius, normal, new Vector2((double)i / phi.Steps, (double)j / rows));
        });
        return surface.ToMesh(Name);
    }

    // The poles are exact, so that all corners there fall together.
    private static Vector3 OnUnitSphere(Vector3 outward, double theta)
    {
        if (theta < 1e-12)
            return Vector3.YAxis;
        if (theta > Math.PI - 1e-12)
            return -Vector3.YAxis;
        (double sin, double cos) = Math.SinCos(theta);
        return outward * sin + Vector3.YAxis * cos;
    }
}
