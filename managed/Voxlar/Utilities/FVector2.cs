using System;
using System.Globalization;

namespace Velbor.Voxlar.Utilities;

/// <summary>Two coordinates of single precision.</summary>
public struct FVector2 : IEquatable<FVector2>
{
    /// <summary>The first coordinate.</summary>
    public float x;

    /// <summary>The second coordinate.</summary>
    public float y;

    /// <summary>Makes a vector out of its coordinates.</summary>
    public FVector2(float x, float y)
    {
        this.x = x;
        this.y = y;
    }

    /// <summary>Rounds a vector of double precision.</summary>
    public FVector2(Vector2 vec)
    {
        x = (float)vec.x;
        y = (float)vec.y;
    }

    /// <summary>Whether both coordinates are equal.</summary>
    public readonly bool Equals(FVector2 rhs) => x.Equals(rhs.x) && y.Equals(rhs.y);

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is FVector2 other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(x, y);

    /// <summary>The coordinates in parentheses.</summary>
    public override readonly string ToString() => string.Create(CultureInfo.InvariantCulture, $"({x}, {y})");

    /// <summary>Whether both vectors have equal coordinates.</summary>
    public static bool operator ==(FVector2 a, FVector2 b) => a.x == b.x && a.y == b.y;

    /// <summary>Whether a coordinate differs.</summary>
    public static bool operator !=(FVector2 a, FVector2 b) => !(a == b);

    /// <summary>The sum.</summary>
    public static FVector2 operator +(FVector2 a, FVector2 b) => new(a.x + b.x, a.y + b.y);

    /// <summary>The difference.</summary>
    public static FVector2 operator -(FVector2 a, FVector2 b) => new(a.x - b.x, a.y - b.y);

    /// <summary>The vector times a number.</summary>
    public static FVector2 operator *(FVector2 v, float s) => new(v.x * s, v.y * s);

    /// <summary>Rounds to single precision.</summary>
    public static explicit operator FVector2(Vector2 v) => new(v);
}
