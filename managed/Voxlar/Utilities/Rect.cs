using System;
using System.Globalization;

namespace Velbor.Voxlar.Utilities;

/// <summary>A rectangle of whole pixels.</summary>
public struct Rect : IEquatable<Rect>
{
    /// <summary>The left edge.</summary>
    public int x;

    /// <summary>The top edge.</summary>
    public int y;

    /// <summary>Makes a rectangle out of its corner and size.</summary>
    public Rect(int x, int y, int width, int height)
    {
        this.x = x;
        this.y = y;
        Width = width;
        Height = height;
    }

    /// <summary>The width in pixels.</summary>
    public int Width { get; set; }

    /// <summary>The height in pixels.</summary>
    public int Height { get; set; }

    /// <summary>The left edge.</summary>
    public readonly int Left => x;

    /// <summary>The right edge, which is outside.</summary>
    public readonly int Right => x + Width;

    /// <summary>The top edge.</summary>
    public readonly int Top => y;

    /// <summary>The bottom edge, which is outside.</summary>
    public readonly int Bottom => y + Height;

    /// <summary>Whether the pixel lies inside; the right and the bottom edge do not.</summary>
    public readonly bool Contains(int x, int y) => x >= Left && x < Right && y >= Top && y < Bottom;

    /// <summary>Whether corner and size are equal.</summary>
    public readonly bool Equals(Rect other) =>
        x == other.x && y == other.y && Width == other.Width && Height == other.Height;

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is Rect other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(x, y, Width, Height);

    /// <summary>The corner and the size.</summary>
    public override readonly string ToString() =>
        string.Create(CultureInfo.InvariantCulture, $"({x}, {y}, {Width}, {Height})");

    /// <summary>Whether corner and size are equal.</summary>
    public static bool operator ==(Rect a, Rect b) => a.Equals(b);

    /// <summary>Whether corner or size differ.</summary>
    public static bool operator !=(Rect a, Rect b) => !a.Equals(b);
}
