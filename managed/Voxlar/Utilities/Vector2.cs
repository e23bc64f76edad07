using System;
using System.Globalization;

namespace Velbor.Voxlar.Utilities;

/// <summary>Two coordinates of double precision.</summary>
public struct Vector2 : IEquatable<Vector2>, IComparable<Vector2>
{
    /// <summary>The first coordinate.</summary>
    public double x;

    /// <summary>The second coordinate.</summary>
    public double y;

    /// <summary>Makes a vector with both coordinates set to <paramref name="s"/>.</summary>
    public Vector2(double s)
    {
        x = s;
        y = s;
    }

    /// <summary>Makes a vector out of one of single precision.</summary>
    public Vector2(FVector2 vec)
    {
        x = vec.x;
        y = vec.y;
    }

    /// <summary>Makes a vector out of its coordinates.</summary>
    public Vector2(double x, double y)
    {
        this.x = x;
        this.y = y;
    }

    /// <summary>The first coordinate under its name as texture coordinate.</summary>
    public double U
    {
        readonly get => x;
        set => x = value;
    }

    /// <summary>The second coordinate under its name as texture coordinate.</summary>
    public double V
    {
        readonly get => y;
        set => y = value;
    }

    /// <summary>The length of the vector.</summary>
    public readonly double Length => Math.Sqrt(x * x + y * y);

    /// <summary>The dot product with <paramref name="rhs"/>.</summary>
    public readonly double Dot(Vector2 rhs) => x * rhs.x + y * rhs.y;

    /// <summary>The z coordinate of the cross product of both vectors in the plane z = 0.</summary>
    public readonly double Cross(Vector2 v) => x * v.y - y * v.x;

    /// <summary>The vector of length 1 in the same direction; the zero vector gives itself.</summary>
    public readonly Vector2 Normalize()
    {
        double length = Length;
        return length == 0 ? this : new Vector2(x / length, y / length);
    }

    /// <summary>Whether both coordinates are equal.</summary>
    public readonly bool Equals(Vector2 rhs) => x.Equals(rhs.x) && y.Equals(rhs.y);

    /// <summary>Compares by x, then by y.</summary>
    /// <returns>A negative number, zero or a positive number.</returns>
    public readonly int CompareTo(Vector2 other)
    {
        int result = x.CompareTo(other.x);
        return result != 0 ? result : y.CompareTo(other.y);
    }

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is Vector2 other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(x, y);

    /// <summary>The coordinates in parentheses.</summary>
    public override readonly string ToString() => string.Create(CultureInfo.InvariantCulture, $"({x}, {y})");

    /// <summary>Whether both vectors have equal coordinates.</summary>
    public static bool operator ==(Vector2 a, Vector2 b) => a.x == b.x && a.y == b.y;

    /// <summary>Whether a coordinate differs.</summary>
    public static bool operator !=(Vector2 a, Vector2 b) => !(a == b);

    /// <summary>The sum.</summary>
    public static Vector2 operator +(Vector2 a, Vector2 b) => new(a.x + b.x, a.y + b.y);

    /// <summary>The difference.</summary>
    public static Vector2 operator -(Vector2 a, Vector2 b) => new(a.x - b.x, a.y - b.y);

    /// <summary>The opposite vector.</summary>
    public static Vector2 operator -(Vector2 v) => new(-v.x, -v.y);

    /// <summary>The product by coordinate.</summary>
    public static Vector2 operator *(Vector2 a, Vector2 b) => new(a.x * b.x, a.y * b.y);

    /// <summary>The vector times a number.</summary>
    public static Vector2 operator *(Vector2 v, double s) => new(v.x * s, v.y * s);

    /// <summary>The vector times a number.</summary>
    public static Vector2 operator *(double s, Vector2 v) => v * s;

    /// <summary>The vector divided by a number.</summary>
    public static Vector2 operator /(Vector2 v, double s) => new(v.x / s, v.y / s);

    /// <summary>Widens to double precision.</summary>
    public static implicit operator Vector2(FVector2 v) => new(v);
}
