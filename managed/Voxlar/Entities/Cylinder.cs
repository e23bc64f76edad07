using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A cylinder, cone or frustum of a cone along y, or a part of one round the axis. Theta runs round the axis
/// from x, counter-clockwise as seen from above, in radians.
/// </summary>
public class Cylinder : Primitive
{
    private int _radialSegments;
    private int _heightSegments;

    /// <summary>Makes a cylinder of radius 1 and height 2.</summary>
    public Cylinder()
        : this(1, 2)
    {
    }

    /// <summary>Makes a cylinder of 20 segments.</summary>
    /// <param name="radius">The radius.</param>
    /// <param name="height">The height.</param>
    public Cylinder(double radius, double height)
        : this(radius, radius, height)
    {
    }

    /// <summary>Makes a frustum of a cone of 20 segments.</summary>
    /// <param name="radiusTop">The radius at the top; 0 for a cone.</param>
    /// <param name="radiusBottom">The radius at the bottom.</param>
    /// <param name="height">The height.</param>
    public Cylinder(double radiusTop, double radiusBottom, double height)
        : this(radiusTop, radiusBottom, height, 20, 1, false)
    {
    }

    /// <summary>Makes a frustum of a cone.</summary>
    /// <param name="radiusTop">The radius at the top; 0 for a cone.</param>
    /// <param name="radiusBottom">The radius at the bottom.</param>
    /// <param name="height">The height.</param>
    /// <param name="radialSegments">
    /// The number of segments round the axis; a full ring has at least 3.
    /// </param>
    /// <param name="heightSegments">The number of segments along the axis, at least 1.</param>
    /// <param name="openEnded">Whether top and bottom are left out.</param>
    public Cylinder(
        double radiusTop, double radiusBottom, double height, int radialSegments, int heightSegments,
        bool openEnded)
        : this("", radiusTop, radiusBottom, height, radialSegments, heightSegments, openEnded, 0, 2 * Math.PI)
    {
    }

    /// <summary>Makes a part of a frustum of a cone.</summary>
    /// <param name="name">Its name.</param>
    /// <param name="radiusTop">The radius at the top; 0 for a cone.</param>
    /// <param name="radiusBottom">The radius at the bottom.</param>
    /// <param name="height">The height.</param>
    /// <param name="radialSegments">
    /// The number of segments round the axis; a full ring has at least 3.
    /// </param>
    /// <param name="heightSegments">The number of segments along the axis, at least 1.</param>
    /// <param name="openEnded">Whether top and bottom are left out.</param>
    /// <param name="thetaStart">Where it begins round the axis, in radians.</param>
    /// <param name="thetaLength">How far it goes round the axis, in radians.</param>
    public Cylinder(
        string name, double radiusTop, double radiusBottom, double height, int radialSegments,
        int heightSegments,
        bool openEnded, double thetaStart, double thetaLength)
        : base(name)
    {
        RadiusTop = radiusTop;
        RadiusBottom = radiusBottom;
        Height = height;
        RadialSegments = radialSegments;
        HeightSegments = heightSegments;
        OpenEnded = openEnded;
        ThetaStart = thetaStart;
        ThetaLength = thetaLength;
    }

    /// <summary>How far the bottom is moved from its place.</summary>
    public Vector3 OffsetBottom { get; set; }

    /// <summary>How far the top is moved from its place.</summary>
    public Vector3 OffsetTop { get; set; }

    /// <summary>
    /// Whether a part round the axis is closed by two faces from the axis to its ends, as a slice of a cake
    /// is. It has no effect on a full ring.
    /// </summary>
    public bool GenerateFanCylinder { get; set; }

    /// <summary>The slope of the bottom along x and z, as angles in radians below a quarter turn.</summary>
    public Vector2 ShearBottom { get; set; }

    /// <summary>The slope of the top along x and z, as angles in radians below a quarter turn.</summary>
    public Vector2 ShearTop { get; set; }

    /// <summary>The radius at the top; 0 for a cone.</summary>
    public double RadiusTop { get; set; }

    /// <summary>The radius at the bottom.</summary>
    public double RadiusBottom { get; set; }

    /// <summary>The height.</summary>
    public double Height { get; set; }

    /// <summary>The number of segments round the axis, at least 1; a full ring has at least 3.</summary>
    public int RadialSegments
    {
        get => _radialSegments;
        set => _radialSegments = Segments.Checked(value);
    }

    /// <summary>The number of segments along the axis, at least 1.</summary>
    public int HeightSegments
    {
        get => _heightSegments;
        set => _heightSegments = Segments.Checked(value);
    }

    /// <summary>Whether top and bottom are left out.</summary>
    public bool OpenEnded { get; set; }

    /// <summary>Where it begins round the axis, in radians.</summary>
    public double ThetaStart { get; set; }

    /// <summary>How far it goes round the axis, in radians.</summary>
    public double ThetaLength { get; set; }

    /// <summary>
    /// Makes a mesh: quads round the side, and top and bottom as triangles about their middles.
    /// </summary>
    public override Mesh ToMesh()
    {
        AngleRange theta = new(ThetaStart, ThetaLength, RadialSegments);
        End bottom = new(RadiusBottom, new Vector3(0, -Height / 2, 0) + OffsetBottom, ShearBottom);
        End top = new(RadiusTop, new Vector3(0, Height / 2, 0) + OffsetTop, ShearTop);
        SurfaceBuilder surface = new();
        Side(surface, theta, bottom, top);
        if (!OpenEnded)
        {
            for (int i = 0; i < theta.Steps; ++i)
            {
                surface.Polygon(top.Middle(up: true), top.Rim(theta, i, up: true),
                    top.Rim(theta, i + 1, up: true));
                surface.Polygon(
                    bottom.Middle(up: false), bottom.Rim(theta, i + 1, up: false),
                    bottom.Rim(theta, i, up: false));
            }
        }
        if (GenerateFanCylinder && !theta.Closed)
        {
            Slice(surface, bottom, top, theta, 0, -theta.Along(0));
            Slice(surface, bottom, top, theta, theta.Steps, theta.Along(theta.Steps));
        }
        return surface.ToMesh(Name);
    }

    private void Side(SurfaceBuilder surface, AngleRange theta, End bottom, End top)
    {
        surface.Grid(theta.Steps, HeightSegments, (i, j) =>
        {
            double share = (double)j / HeightSegments;
            Vector3 low = bottom.Point(theta.Outward(i));
            Vector3 high = top.Point(theta.Outward(i));
            Vector3 along = bottom.Tangent(theta.Along(i)) * (1 - share)
                + top.Tangent(theta.Along(i)) * share;
            // At the tip of a cone the ring has no extent; the slope of its neighbourhood counts there.
            if (along.Length == 0)
                along = bottom.Tangent(theta.Along(i)) + top.Tangent(theta.Along(i));
            Vector3 normal = along.Cross(high - low).Normalize();
            return new SurfaceBuilder.Corner(
                Between(low, high, j), normal.Length == 0 ? theta.Outward(i) : normal,
                new Vector2((double)i / theta.Steps, share));
        });
    }

    private void Slice(SurfaceBuilder surface, End bottom, End top, AngleRange theta, int step,
        Vector3 normal)
    {
        Vector3 outward = theta.Outward(step);
        bool begins = step == 0;
        surface.Grid(1, HeightSegments, (i, j) =>
        {
            bool onAxis = i == 0 == begins;
            Vector3 low = onAxis ? bottom.Centre : bottom.Point(outward);
            Vector3 high = onAxis ? top.Centre : top.Point(outward);
            return new SurfaceBuilder.Corner(
                Between(low, high, j), normal, new Vector2(i, (double)j / HeightSegments));
        });
    }

    // The ends are exact, so that side and caps meet.
    private Vector3 Between(Vector3 low, Vector3 high, int step)
    {
        if (step == 0)
            return low;
        return step == HeightSegments ? high : low + (high - low) * ((double)step / HeightSegments);
    }

    private readonly struct End(double radius, Vector3 centre, Vector2 shear)
    {
        private readonly double _slopeX = Math.Tan(shear.x);
        private readonly double _slopeZ = Math.Tan(shear.y);

        public Vector3 Centre => centre;

        public Vector3 Point(Vector3 outward) => centre + Tangent(outward);

        public Vector3 Tangent(Vector3 direction) =>
            new Vector3(direction.x, direction.x * _slopeX + direction.z * _slopeZ, direction.z) * radius;

        public SurfaceBuilder.Corner Middle(bool up) => new(centre, Normal(up), new Vector2(0.5, 0.5));

        public SurfaceBuilder.Corner Rim(AngleRange theta, int step, bool up)
        {
            Vector3 outward = theta.Outward(step);
            return new(Point(outward), Normal(up),
                new Vector2(0.5 + outward.x / 2, 0.5 + (up ? -outward.z : outward.z) / 2));
        }

        private Vector3 Normal(bool up) => new Vector3(-_slopeX, 1, -_slopeZ).Normalize() * (up ? 1 : -1);
    }
}
