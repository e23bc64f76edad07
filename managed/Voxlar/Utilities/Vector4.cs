using System;
using System.Globalization;

namespace Velbor.Voxlar.Utilities;

/// <summary>Four coordinates of double precision: a homogeneous point or direction, or a colour with
/// alpha.</summary>
/// <remarks>Where w is not given it is 1, so that the vector is a point.</remarks>
public struct Vector4 : IEquatable<Vector4>, IComparable<Vector4>
{
    /// <summary>The first coordinate.</summary>
    public double x;

    /// <summary>The second coordinate.</summary>
    public double y;

    /// <summary>The third coordinate.</summary>
    public double z;

    /// <summary>The fourth coordinate: 1 for a point, 0 for a direction.</summary>
    public double w;

    /// <summary>Makes a vector out of three coordinates and w.</summary>
    public Vector4(Vector3 vec, double w)
    {
        x = vec.x;
        y = vec.y;
        z = vec.z;
        this.w = w;
    }

    /// <summary>Makes a point, with w set to 1.</summary>
    public Vector4(Vector3 vec)
        : this(vec, 1)
    {
    }

    /// <summary>Makes a vector out of one of single precision.</summary>
    public Vector4(FVector4 vec)
    {
        x = vec.x;
        y = vec.y;
        z = vec.z;
        w = vec.w;
    }

    /// <summary>Makes a point, with w set to 1.</summary>
    public Vector4(double x, double y, double z)
        : this(x, y, z, 1)
    {
    }

    /// <summary>Makes a vector out of its coordinates.</summary>
    public Vector4(double x, double y, double z, double w)
    {
        this.x = x;
        this.y = y;
        this.z = z;
        this.w = w;
    }

    /// <summary>Sets x, y and z, and w to 1.</summary>
    public void Set(double newX, double newY, double newZ) => Set(newX, newY, newZ, 1);

    /// <summary>Sets all coordinates.</summary>
    public void Set(double newX, double newY, double newZ, double newW)
    {
        x = newX;
        y = newY;
        z = newZ;
        w = newW;
    }

    /// <summary>Compares by x, then y, then z, then w.</summary>
    /// <returns>A negative number, zero or a positive number.</returns>
    public readonly int CompareTo(Vector4 other)
    {
        int result = x.CompareTo(other.x);
        if (result == 0)
            result = y.CompareTo(other.y);
        if (result == 0)
            result = z.CompareTo(other.z);
        return result != 0 ? result : w.CompareTo(other.w);
    }

    /// <summary>Whether all coordinates are equal.</summary>
    public readonly bool Equals(Vector4 rhs) =>
        x.Equals(rhs.x) && y.Equals(rhs.y) && z.Equals(rhs.z) && w.Equals(rhs.w);

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is Vector4 other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(x, y, z, w);

    /// <summary>The coordinates in parentheses.</summary>
    public override readonly string ToString() =>
        string.Create(CultureInfo.InvariantCulture, $"({x}, {y}, {z}, {w})");

    /// <summary>Whether both vectors have equal coordinates.</summary>
    public static bool operator ==(Vector4 a, Vector4 b) => a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;

    /// <summary>Whether a coordinate differs.</summary>
    public static bool operator !=(Vector4 a, Vector4 b) => !(a == b);

    /// <summary>The sum.</summary>
    public static Vector4 operator +(Vector4 a, Vector4 b) => new(a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w);

    /// <summary>The difference.</summary>
    public static Vector4 operator -(Vector4 a, Vector4 b) => new(a.x - b.x, a.y - b.y, a.z - b.z, a.w - b.w);

    /// <summary>The opposite vector.</summary>
    public static Vector4 operator -(Vector4 v) => new(-v.x, -v.y, -v.z, -v.w);

    /// <summary>The vector times a number.</summary>
    public static Vector4 operator *(Vector4 v, double s) => new(v.x * s, v.y * s, v.z * s, v.w * s);

    /// <summary>The vector times a number.</summary>
    public static Vector4 operator *(double s, Vector4 v) => v * s;

    /// <summary>The vector divided by a number.</summary>
    public static Vector4 operator /(Vector4 v, double s) => new(v.x / s, v.y / s, v.z / s, v.w / s);

    /// <summary>Widens to double precision.</summary>
    public static implicit operator Vector4(FVector4 v) => new(v);

    /// <summary>Makes a point, with w set to 1.</summary>
    public static explicit operator Vector4(Vector3 v) => new(v);

    /// <summary>Makes a point, with w set to 1, and widens to double precision.</summary>
    public static explicit operator Vector4(FVector3 v) => new(v.x, v.y, v.z);
}
