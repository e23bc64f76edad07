using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A flat rectangle seen from the side <see cref="Up"/> points to. While that is y, the length is along x and
/// the width along z.
/// </summary>
public class Plane : Primitive
{
    private int _lengthSegments;
    private int _widthSegments;

    /// <summary>Makes a square with sides of length 10.</summary>
    public Plane()
        : this(10, 10)
    {
    }

    /// <summary>Makes a rectangle.</summary>
    /// <param name="length">The size in x.</param>
    /// <param name="width">The size in z.</param>
    public Plane(double length, double width)
        : this("", length, width, 1, 1)
    {
    }

    /// <summary>Makes a rectangle.</summary>
    /// <param name="name">Its name.</param>
    /// <param name="length">The size in x.</param>
    /// <param name="width">The size in z.</param>
    /// <param name="lengthSegments">The number of quads along x, at least 1.</param>
    /// <param name="widthSegments">The number of quads along z, at least 1.</param>
    public Plane(string name, double length, double width, int lengthSegments, int widthSegments)
        : base(name)
    {
        Length = length;
        Width = width;
        LengthSegments = lengthSegments;
        WidthSegments = widthSegments;
    }

    /// <summary>The direction of the normal; y at first. Only its direction counts.</summary>
    public Vector3 Up { get; set; } = Vector3.YAxis;

    /// <summary>The size in x.</summary>
    public double Length { get; set; }

    /// <summary>The size in z.</summary>
    public double Width { get; set; }

    /// <summary>The number of quads along the length, at least 1.</summary>
    public int LengthSegments
    {
        get => _lengthSegments;
        set => _lengthSegments = Segments.Checked(value);
    }

    /// <summary>The number of quads along the width, at least 1.</summary>
    public int WidthSegments
    {
        get => _widthSegments;
        set => _widthSegments = Segments.Checked(value);
    }

    /// <summary>Makes a mesh of quads.</summary>
    /// <exception cref="InvalidOperationException"><see cref="Up"/> has no direction.</exception>
    public override Mesh ToMesh()
    {
        Vector3 normal = Up.Normalize();
        if (normal.Length == 0)
            throw new InvalidOperationException("The up vector of the plane has no direction.");
        Vector3 u = TurnedFromY(normal, Vector3.XAxis) * Length;
        Vector3 v = TurnedFromY(normal, -Vector3.ZAxis) * Width;
        SurfaceBuilder surface = new();
        surface.Grid(LengthSegments, WidthSegments, (i, j) =>
        {
            Vector2 uv = new((double)i / LengthSegments, (double)j / WidthSegments);
            return new SurfaceBuilder.Corner(u * (uv.x - 0.5) + v * (uv.y - 0.5), normal, uv);
        });
        return surface.ToMesh(Name);
    }

    // The shortest turn that takes y to the normal; for the opposite direction, half a turn about x.
    private static Vector3 TurnedFromY(Vector3 normal, Vector3 vector)
    {
        double cos = normal.y;
        if (cos < -1 + 1e-12)
            return new Vector3(vector.x, -vector.y, -vector.z);
        Vector3 axis = Vector3.YAxis.Cross(normal);
        return vector * cos + axis.Cross(vector) + axis * (axis.Dot(vector) / (1 + cos));
    }
}
