using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>A box: its length is along x, its height along y and its width along z.</summary>
public class Box : Primitive
{
    private int _lengthSegments;
    private int _widthSegments;
    private int _heightSegments;

    /// <summary>Makes a cube with edges of length 2.</summary>
    public Box()
        : this(2, 2, 2)
    {
    }

    /// <summary>Makes a box.</summary>
    /// <param name="length">The size in x.</param>
    /// <param name="width">The size in z.</param>
    /// <param name="height">The size in y.</param>
    public Box(double length, double width, double height)
        : this("", length, width, height, 1, 1, 1)
    {
    }

    /// <summary>Makes a box.</summary>
    /// <param name="name">Its name.</param>
    /// <param name="length">The size in x.</param>
    /// <param name="width">The size in z.</param>
    /// <param name="height">The size in y.</param>
    /// <param name="lengthSegments">The number of quads along x, at least 1.</param>
    /// <param name="widthSegments">The number of quads along z, at least 1.</param>
    /// <param name="heightSegments">The number of quads along y, at least 1.</param>
    public Box(
        string name, double length, double width, double height, int lengthSegments, int widthSegments,
        int heightSegments)
        : base(name)
    {
        Length = length;
        Width = width;
        Height = height;
        LengthSegments = lengthSegments;
        WidthSegments = widthSegments;
        HeightSegments = heightSegments;
    }

    /// <summary>The number of quads along x, at least 1.</summary>
    public int LengthSegments
    {
        get => _lengthSegments;
        set => _lengthSegments = Segments.Checked(value);
    }

    /// <summary>The number of quads along z, at least 1.</summary>
    public int WidthSegments
    {
        get => _widthSegments;
        set => _widthSegments = Segments.Checked(value);
    }

    /// <summary>The number of quads along y, at least 1.</summary>
    public int HeightSegments
    {
        get => _heightSegments;
        set => _heightSegments = Segments.Checked(value);
    }

    /// <summary>The size in x.</summary>
    public double Length { get; set; }

    /// <summary>The size in z.</summary>
    public double Width { get; set; }

    /// <summary>The size in y.</summary>
    public double Height { get; set; }

    /// <summary>Makes a mesh of quads.</summary>
    public override Mesh ToMesh()
    {
        SurfaceBuilder surface = new();
        Face(surface, new(0, 0, -1), new(0, 1, 0), new(1, 0, 0), WidthSegments, HeightSegments);
        Face(surface, new(0, 0, 1), new(0, 1, 0), new(-1, 0, 0), WidthSegments, HeightSegments);
        Face(surface, new(1, 0, 0), new(0, 0, -1), new(0, 1, 0), LengthSegments, WidthSegments);
        Face(surface, new(1, 0, 0), new(0, 0, 1), new(0, -1, 0), LengthSegments, WidthSegments);
        Face(surface, new(1, 0, 0), new(0, 1, 0), new(0, 0, 1), LengthSegments, HeightSegments);
        Face(surface, new(-1, 0, 0), new(0, 1, 0), new(0, 0, -1), LengthSegments, HeightSegments);
        return surface.ToMesh(Name);
    }

    // The steps run symmetrically about 0, so that two faces find the same points on their common edge.
    private void Face(SurfaceBuilder surface, Vector3 u, Vector3 v, Vector3 normal, int columns, int rows)
    {
        Vector3 half = new(Length / 2, Height / 2, Width / 2);
        surface.Grid(columns, rows, (i, j) => new SurfaceBuilder.Corner(
            (u * ((2.0 * i - columns) / columns) + v * ((2.0 * j - rows) / rows) + normal) * half,
            normal,
            new Vector2((double)i / columns, (double)j / rows)));
    }
}
