using System;
using System.Globalization;

namespace Velbor.Voxlar.Utilities;

/// <summary>Three coordinates of double precision: a point, a direction, a colour or angles.</summary>
public struct Vector3 : IEquatable<Vector3>, IComparable<Vector3>
{
    /// <summary>The point (0, 0, 0).</summary>
    public static readonly Vector3 Origin = new(0, 0, 0);

    /// <summary>The scale that changes nothing, (1, 1, 1).</summary>
    public static readonly Vector3 UnitScale = new(1, 1, 1);

    /// <summary>The direction (1, 0, 0).</summary>
    public static readonly Vector3 XAxis = new(1, 0, 0);

    /// <summary>The direction (0, 1, 0).</summary>
    public static readonly Vector3 YAxis = new(0, 1, 0);

    /// <summary>The direction (0, 0, 1).</summary>
    public static readonly Vector3 ZAxis = new(0, 0, 1);

    /// <summary>The first coordinate.</summary>
    public double x;

    /// <summary>The second coordinate.</summary>
    public double y;

    /// <summary>The third coordinate.</summary>
    public double z;

    /// <summary>Makes a vector out of its coordinates.</summary>
    public Vector3(double x, double y, double z)
    {
        this.x = x;
        this.y = y;
        this.z = z;
    }

    /// <summary>Makes a vector out of one of single precision.</summary>
    public Vector3(FVector3 vec)
    {
        x = vec.x;
        y = vec.y;
        z = vec.z;
    }

    /// <summary>Makes a vector with all coordinates set to <paramref name="v"/>.</summary>
    public Vector3(double v)
    {
        x = v;
        y = v;
        z = v;
    }

    /// <summary>Takes x, y and z of a vector with four coordinates; w is left out, not divided by.</summary>
    public Vector3(Vector4 vec4)
    {
        x = vec4.x;
        y = vec4.y;
        z = vec4.z;
    }

    /// <summary>The square of the length.</summary>
    public readonly double Length2 => x * x + y * y + z * z;

    /// <summary>The length of the vector.</summary>
    public readonly double Length => Math.Sqrt(Length2);

    /// <summary>
    /// The signed angle from this direction to <paramref name="dir"/>, in radians from -pi to pi. It is
    /// positive when the turn is counter-clockwise as seen from the tip of <paramref name="up"/>.
    /// </summary>
    public readonly double AngleBetween(Vector3 dir, Vector3 up)
    {
        Vector3 normal = Cross(dir);
        double angle = Math.Atan2(normal.Length, Dot(dir));
        return normal.Dot(up) < 0 ? -angle : angle;
    }

    /// <summary>The angle between this direction and <paramref name="dir"/>, in radians from 0 to
    /// pi.</summary>
    public readonly double AngleBetween(Vector3 dir) => Math.Atan2(Cross(dir).Length, Dot(dir));

    /// <summary>The dot product with <paramref name="rhs"/>.</summary>
    public readonly double Dot(Vector3 rhs) => x * rhs.x + y * rhs.y + z * rhs.z;

    /// <summary>The vector of length 1 in the same direction; the zero vector gives itself.</summary>
    public readonly Vector3 Normalize()
    {
        double length = Length;
        return length == 0 ? this : new Vector3(x / length, y / length, z / length);
    }

    /// <summary>The sine of each coordinate, taken as radians.</summary>
    public readonly Vector3 Sin() => new(Math.Sin(x), Math.Sin(y), Math.Sin(z));

    /// <summary>The cosine of each coordinate, taken as radians.</summary>
    public readonly Vector3 Cos() => new(Math.Cos(x), Math.Cos(y), Math.Cos(z));

    /// <summary>The cross product, perpendicular to both vectors.</summary>
    public readonly Vector3 Cross(Vector3 rhs) =>
        new(y * rhs.z - z * rhs.y, z * rhs.x - x * rhs.z, x * rhs.y - y * rhs.x);

    /// <summary>Sets all coordinates.</summary>
    public void Set(double newX, double newY, double newZ)
    {
        x = newX;
        y = newY;
        z = newZ;
    }

    /// <summary>Compares by x, then y, then z.</summary>
    /// <returns>A negative number, zero or a positive number.</returns>
    public readonly int CompareTo(Vector3 other)
    {
        int result = x.CompareTo(other.x);
        if (result == 0)
            result = y.CompareTo(other.y);
        return result != 0 ? result : z.CompareTo(other.z);
    }

    /// <summary>Whether all coordinates are equal.</summary>
    public readonly bool Equals(Vector3 rhs) => x.Equals(rhs.x) && y.Equals(rhs.y) && z.Equals(rhs.z);

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is Vector3 other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(x, y, z);

    /// <summary>The coordinates in parentheses.</summary>
    public override readonly string ToString() => string.Create(CultureInfo.InvariantCulture, $"({x}, {y}, {z})");

    internal static Vector3 Min(Vector3 a, Vector3 b) =>
        new(Math.Min(a.x, b.x), Math.Min(a.y, b.y), Math.Min(a.z, b.z));

    internal static Vector3 Max(Vector3 a, Vector3 b) =>
        new(Math.Max(a.x, b.x), Math.Max(a.y, b.y), Math.Max(a.z, b.z));

    /// <summary>Whether both vectors have equal coordinates.</summary>
    public static bool operator ==(Vector3 a, Vector3 b) => a.x == b.x && a.y == b.y && a.z == b.z;

    /// <summary>Whether a coordinate differs.</summary>
    public static bool operator !=(Vector3 a, Vector3 b) => !(a == b);

    /// <summary>The sum.</summary>
    public static Vector3 operator +(Vector3 a, Vector3 b) => new(a.x + b.x, a.y + b.y, a.z + b.z);

    /// <summary>The difference.</summary>
    public static Vector3 operator -(Vector3 a, Vector3 b) => new(a.x - b.x, a.y - b.y, a.z - b.z);

    /// <summary>The opposite vector.</summary>
    public static Vector3 operator -(Vector3 v) => new(-v.x, -v.y, -v.z);

    /// <summary>The product by coordinate.</summary>
    public static Vector3 operator *(Vector3 a, Vector3 b) => new(a.x * b.x, a.y * b.y, a.z * b.z);

    /// <summary>The vector times a number.</summary>
    public static Vector3 operator *(Vector3 v, double s) => new(v.x * s, v.y * s, v.z * s);

    /// <summary>The vector times a number.</summary>
    public static Vector3 operator *(double s, Vector3 v) => v * s;

    /// <summary>The vector divided by a number.</summary>
    public static Vector3 operator /(Vector3 v, double s) => new(v.x / s, v.y / s, v.z / s);

    /// <summary>Widens to double precision.</summary>
    public static implicit operator Vector3(FVector3 v) => new(v);

    /// <summary>Leaves out w.</summary>
    public static explicit operator Vector3(Vector4 v) => new(v);

    /// <summary>Leaves out w and widens to double precision.</summary>
    public static explicit operator Vector3(FVector4 v) => new(v.x, v.y, v.z);
}
