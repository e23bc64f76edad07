using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// Half an ellipsoid of revolution on a flat round base. The base lies about the origin, the top at y = <see
/// cref="Height"/>; with a height equal to the radius it is half a sphere.
/// </summary>
public class Dish : Primitive
{
    private int _widthSegments;
    private int _heightSegments;

    /// <summary>Makes a dish of radius 1 and height 1.</summary>
    public Dish()
        : this(1, 1)
    {
    }

    /// <summary>Makes a dish of 32 x 8 segments.</summary>
    /// <param name="radius">The radius of the base.</param>
    /// <param name="height">The height above the base.</param>
    public Dish(double radius, double height)
        : this("", radius, height, 32, 8)
    {
    }

    /// <summary>Makes a dish.</summary>
    /// <param name="name">Its name.</param>
    /// <param name="radius">The radius of the base.</param>
    /// <param name="height">The height above the base.</param>
    /// <param name="widthSegments">The number of segments round the axis; a mesh has at least 3.</param>
    /// <param name="heightSegments">The number of segments from base to top, at least 1.</param>
    public Dish(string name, double radius, double height, int widthSegments, int heightSegments)
        : base(name)
    {
        Radius = radius;
        Height = height;
        WidthSegments = widthSegments;
        HeightSegments = heightSegments;
    }

    /// <summary>The height above the base.</summary>
    public double Height { get; set; }

    /// <summary>The radius of the base.</summary>
    public double Radius { get; set; }

    /// <summary>The number of segments round the axis, at least 1; a mesh has at least 3.</summary>
    public int WidthSegments
    {
        get => _widthSegments;
        set => _widthSegments = Segments.Checked(value);
    }

    /// <summary>The number of segments from base to top, at least 1.</summary>
    public int HeightSegments
    {
        get => _heightSegments;
        set => _heightSegments = Segments.Checked(value);
    }

    /// <summary>Makes a mesh: quads, with triangles at the top and round the middle of the base.</summary>
    public override Mesh ToMesh()
    {
        AngleRange ring = new(0, 2 * System.Math.PI, WidthSegments);
        SurfaceBuilder surface = new();
        surface.Grid(ring.Steps, HeightSegments, (i, j) =>
        {
            Vector3 sphere = OnUnitDome(ring.Outward(i), j);
            Vector3 position = new(sphere.x * Radius, sphere.y * Height, sphere.z * Radius);
            Vector3 normal = new Vector3(sphere.x * Height, sphere.y * Radius, sphere.z * Height).Normalize();
            return new SurfaceBuilder.Corner(
                position, normal, new Vector2((double)i / ring.Steps, (double)j / HeightSegments));
        });
        for (int i = 0; i < ring.Steps; ++i)
            surface.Polygon(BaseCorner(Vector3.Origin), BaseCorner(ring.Outward(i + 1)),
                BaseCorner(ring.Outward(i)));
        return surface.ToMesh(Name);
    }

    private Vector3 OnUnitDome(Vector3 outward, int step)
    {
        if (step == 0)
            return outward;
        if (step == HeightSegments)
            return Vector3.YAxis;
        (double sin, double cos) = System.Math.SinCos(System.Math.PI / 2 * step / HeightSegments);
        return outward * cos + Vector3.YAxis * sin;
    }

    private SurfaceBuilder.Corner BaseCorner(Vector3 outward) =>
        new(outward * Radius, -Vector3.YAxis, new Vector2(0.5 + outward.x / 2, 0.5 + outward.z / 2));
}
