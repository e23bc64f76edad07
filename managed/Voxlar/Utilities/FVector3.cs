using System;
using System.Globalization;

namespace Velbor.Voxlar.Utilities;

/// <summary>Three coordinates of single precision.</summary>
public struct FVector3 : IEquatable<FVector3>
{
    /// <summary>The vector (0, 0, 0).</summary>
    public static readonly FVector3 Zero = new(0, 0, 0);

    /// <summary>The scale that changes nothing, (1, 1, 1).</summary>
    public static readonly FVector3 UnitScale = new(1, 1, 1);

    /// <summary>The first coordinate.</summary>
    public float x;

    /// <summary>The second coordinate.</summary>
    public float y;

    /// <summary>The third coordinate.</summary>
    public float z;

    /// <summary>Makes a vector out of its coordinates.</summary>
    public FVector3(float x, float y, float z)
    {
        this.x = x;
        this.y = y;
        this.z = z;
    }

    /// <summary>Rounds a vector of double precision.</summary>
    public FVector3(Vector3 vec)
        : this((float)vec.x, (float)vec.y, (float)vec.z)
    {
    }

    /// <summary>Leaves out w and rounds to single precision.</summary>
    public FVector3(Vector4 vec)
        : this((float)vec.x, (float)vec.y, (float)vec.z)
    {
    }

    /// <summary>The vector of length 1 in the same direction; the zero vector gives itself.</summary>
    public readonly FVector3 Normalize()
    {
        double length = Math.Sqrt((double)x * x + (double)y * y + (double)z * z);
        return length == 0 ? this : new FVector3((float)(x / length), (float)(y / length), (float)(z / length));
    }

    /// <summary>The cross product, perpendicular to both vectors.</summary>
    public readonly FVector3 Cross(FVector3 rhs) =>
        new(y * rhs.z - z * rhs.y, z * rhs.x - x * rhs.z, x * rhs.y - y * rhs.x);

    /// <summary>Whether all coordinates are equal.</summary>
    public readonly bool Equals(FVector3 rhs) => x.Equals(rhs.x) && y.Equals(rhs.y) && z.Equals(rhs.z);

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is FVector3 other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(x, y, z);

    /// <summary>The coordinates in parentheses.</summary>
    public override readonly string ToString() => string.Create(CultureInfo.InvariantCulture, $"({x}, {y}, {z})");

    /// <summary>Whether both vectors have equal coordinates.</summary>
    public static bool operator ==(FVector3 a, FVector3 b) => a.x == b.x && a.y == b.y && a.z == b.z;

    /// <summary>Whether a coordinate differs.</summary>
    public static bool operator !=(FVector3 a, FVector3 b) => !(a == b);

    /// <summary>The sum.</summary>
    public static FVector3 operator +(FVector3 a, FVector3 b) => new(a.x + b.x, a.y + b.y, a.z + b.z);

    /// <summary>The difference.</summary>
    public static FVector3 operator -(FVector3 a, FVector3 b) => new(a.x - b.x, a.y - b.y, a.z - b.z);

    /// <summary>The opposite vector.</summary>
    public static FVector3 operator -(FVector3 v) => new(-v.x, -v.y, -v.z);

    /// <summary>The vector times a number.</summary>
    public static FVector3 operator *(FVector3 v, float s) => new(v.x * s, v.y * s, v.z * s);

    /// <summary>Rounds to single precision.</summary>
    public static explicit operator FVector3(Vector3 v) => new(v);

    /// <summary>Leaves out w and rounds to single precision.</summary>
    public static explicit operator FVector3(Vector4 v) => new(v);

    /// <summary>Leaves out w.</summary>
    public static explicit operator FVector3(FVector4 v) => new(v.x, v.y, v.z);
}
