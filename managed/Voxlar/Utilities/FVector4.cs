using System;
using System.Globalization;

namespace Velbor.Voxlar.Utilities;

/// <summary>Four coordinates of single precision.</summary>
/// <remarks>Where w is not given it is 1, so that the vector is a point.</remarks>
public struct FVector4 : IEquatable<FVector4>
{
    /// <summary>The first coordinate.</summary>
    public float x;

    /// <summary>The second coordinate.</summary>
    public float y;

    /// <summary>The third coordinate.</summary>
    public float z;

    /// <summary>The fourth coordinate: 1 for a point, 0 for a direction.</summary>
    public float w;

    /// <summary>Makes a vector out of its coordinates.</summary>
    public FVector4(float x, float y, float z, float w)
    {
        this.x = x;
        this.y = y;
        this.z = z;
        this.w = w;
    }

    /// <summary>Makes a point, with w set to 1.</summary>
    public FVector4(float x, float y, float z)
        : this(x, y, z, 1)
    {
    }

    /// <summary>Rounds a vector of double precision.</summary>
    public FVector4(Vector4 vec)
        : this((float)vec.x, (float)vec.y, (float)vec.z, (float)vec.w)
    {
    }

    /// <summary>Makes a point, with w set to 1, rounded to single precision.</summary>
    public FVector4(Vector3 vec)
        : this(vec, 1)
    {
    }

    /// <summary>Makes a vector out of three coordinates, rounded to single precision, and w.</summary>
    public FVector4(Vector3 vec, float w)
        : this((float)vec.x, (float)vec.y, (float)vec.z, w)
    {
    }

    /// <summary>Whether all coordinates are equal.</summary>
    public readonly bool Equals(FVector4 rhs) =>
        x.Equals(rhs.x) && y.Equals(rhs.y) && z.Equals(rhs.z) && w.Equals(rhs.w);

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is FVector4 other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(x, y, z, w);

    /// <summary>The coordinates in parentheses.</summary>
    public override readonly string ToString() =>
        string.Create(CultureInfo.InvariantCulture, $"({x}, {y}, {z}, {w})");

    /// <summary>Whether both vectors have equal coordinates.</summary>
    public static bool operator ==(FVector4 a, FVector4 b) =>
        a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;

    /// <summary>Whether a coordinate differs.</summary>
    public static bool operator !=(FVector4 a, FVector4 b) => !(a == b);

    /// <summary>The sum.</summary>
    public static FVector4 operator +(FVector4 a, FVector4 b) => new(a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w);

    /// <summary>The difference.</summary>
    public static FVector4 operator -(FVector4 a, FVector4 b) => new(a.x - b.x, a.y - b.y, a.z - b.z, a.w - b.w);

    /// <summary>The vector times a number.</summary>
    public static FVector4 operator *(FVector4 v, float s) => new(v.x * s, v.y * s, v.z * s, v.w * s);

    /// <summary>Rounds to single precision.</summary>
    public static explicit operator FVector4(Vector4 v) => new(v);

    /// <summary>Makes a point, with w set to 1, rounded to single precision.</summary>
    public static explicit operator FVector4(Vector3 v) => new(v);

    /// <summary>Makes a point, with w set to 1.</summary>
    public static explicit operator FVector4(FVector3 v) => new(v.x, v.y, v.z);
}
