using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A pyramid, or the frustum of one, with rectangles as bottom and top. Both are centred over the y axis at
/// half the height below and above the origin; the x of an area is its size in x, the y its size in z.
/// </summary>
public class Pyramid : Primitive
{
    /// <summary>Makes a pyramid with a base of 2 x 2 and a height of 2.</summary>
    public Pyramid()
        : this(2, 2, 2)
    {
    }

    /// <summary>Makes a pyramid with a tip.</summary>
    /// <param name="xbottom">The size of the bottom in x.</param>
    /// <param name="ybottom">The size of the bottom in z.</param>
    /// <param name="height">The height.</param>
    public Pyramid(double xbottom, double ybottom, double height)
        : this(xbottom, ybottom, 0, 0, height)
    {
    }

    /// <summary>Makes a frustum of a pyramid.</summary>
    /// <param name="xbottom">The size of the bottom in x.</param>
    /// <param name="ybottom">The size of the bottom in z.</param>
    /// <param name="xtop">The size of the top in x.</param>
    /// <param name="ytop">The size of the top in z.</param>
    /// <param name="height">The height.</param>
    public Pyramid(double xbottom, double ybottom, double xtop, double ytop, double height)
        : this("", xbottom, ybottom, xtop, ytop, height)
    {
    }

    /// <summary>Makes a frustum of a pyramid.</summary>
    /// <param name="name">Its name.</param>
    /// <param name="xbottom">The size of the bottom in x.</param>
    /// <param name="ybottom">The size of the bottom in z.</param>
    /// <param name="xtop">The size of the top in x.</param>
    /// <param name="ytop">The size of the top in z.</param>
    /// <param name="height">The height.</param>
    public Pyramid(string name, double xbottom, double ybottom, double xtop, double ytop, double height)
        : base(name)
    {
        BottomArea = new Vector2(xbottom, ybottom);
        TopArea = new Vector2(xtop, ytop);
        Height = height;
    }

    /// <summary>The size of the bottom in x and z.</summary>
    public Vector2 BottomArea { get; set; }

    /// <summary>The size of the top in x and z; 0 and 0 for a tip.</summary>
    public Vector2 TopArea { get; set; }

    /// <summary>How far the bottom is moved from its place.</summary>
    public Vector3 BottomOffset { get; set; }

    /// <summary>The height.</summary>
    public double Height { get; set; }

    /// <summary>Makes a mesh of quads, with triangles where the top is a point or a line.</summary>
    public override Mesh ToMesh()
    {
        Vector3[] bottom = Rectangle(BottomArea, new Vector3(0, -Height / 2, 0) + BottomOffset);
        Vector3[] top = Rectangle(TopArea, new Vector3(0, Height / 2, 0));
        SurfaceBuilder surface = new();
        Face(surface, top[0], top[1], top[2], top[3]);
        Face(surface, bottom[3], bottom[2], bottom[1], bottom[0]);
        for (int i = 0; i < 4; ++i)
        {
            int next = (i + 1) % 4;
            Face(surface, bottom[i], bottom[next], top[next], top[i]);
        }
        return surface.ToMesh(Name);
    }

    // Counter-clockwise as seen from above, beginning at negative x and positive z.
    private static Vector3[] Rectangle(Vector2 area, Vector3 centre)
    {
        double x = area.x / 2;
        double z = area.y / 2;
        return
        [
            centre + new Vector3(-x, 0, z), centre + new Vector3(x, 0, z), centre + new Vector3(x, 0, -z),
            centre + new Vector3(-x, 0, -z),
        ];
    }

    private static void Face(SurfaceBuilder surface, Vector3 a, Vector3 b, Vector3 c, Vector3 d)
    {
        // The cross product of the diagonals is the normal of a flat quad, and of a triangle with a doubled
        // corner.
        Vector3 normal = (c - a).Cross(d - b).Normalize();
        surface.Polygon(
            new(a, normal, new Vector2(0, 0)), new(b, normal, new Vector2(1, 0)),
            new(c, normal, new Vector2(1, 1)),
            new(d, normal, new Vector2(0, 1)));
    }
}
