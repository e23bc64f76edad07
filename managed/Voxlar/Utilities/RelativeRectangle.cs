using System;
using System.Globalization;

namespace Velbor.Voxlar.Utilities;

/// <summary>
/// A rectangle relative to another one: each of its values is a share of the other's size plus an offset in
/// pixels.
/// </summary>
public struct RelativeRectangle : IEquatable<RelativeRectangle>
{
    /// <summary>Makes a rectangle of pixels that does not depend on the other one's size.</summary>
    public RelativeRectangle(int left, int top, int width, int height)
    {
        OffsetX = left;
        OffsetY = top;
        OffsetWidth = width;
        OffsetHeight = height;
    }

    /// <summary>The share of the width at which the left edge stands.</summary>
    public float ScaleX { get; set; }

    /// <summary>The share of the height at which the top edge stands.</summary>
    public float ScaleY { get; set; }

    /// <summary>The share of the width that is taken.</summary>
    public float ScaleWidth { get; set; }

    /// <summary>The share of the height that is taken.</summary>
    public float ScaleHeight { get; set; }

    /// <summary>Pixels added to the left edge.</summary>
    public int OffsetX { get; set; }

    /// <summary>Pixels added to the top edge.</summary>
    public int OffsetY { get; set; }

    /// <summary>Pixels added to the width.</summary>
    public int OffsetWidth { get; set; }

    /// <summary>Pixels added to the height.</summary>
    public int OffsetHeight { get; set; }

    /// <summary>The pixels that the rectangle covers inside the given one; fractions are cut off.</summary>
    public readonly Rect ToAbsolute(int left, int top, int width, int height) => new(
        left + (int)(ScaleX * width) + OffsetX,
        top + (int)(ScaleY * height) + OffsetY,
        (int)(ScaleWidth * width) + OffsetWidth,
        (int)(ScaleHeight * height) + OffsetHeight);

    /// <summary>Makes a rectangle out of shares of the other one's size, without an offset.</summary>
    public static RelativeRectangle FromScale(float scaleX, float scaleY, float scaleWidth, float scaleHeight) =>
        new() { ScaleX = scaleX, ScaleY = scaleY, ScaleWidth = scaleWidth, ScaleHeight = scaleHeight };

    /// <summary>Whether all values are equal.</summary>
    public readonly bool Equals(RelativeRectangle other) =>
        ScaleX.Equals(other.ScaleX) && ScaleY.Equals(other.ScaleY) && ScaleWidth.Equals(other.ScaleWidth)
        && ScaleHeight.Equals(other.ScaleHeight) && OffsetX == other.OffsetX && OffsetY == other.OffsetY
        && OffsetWidth == other.OffsetWidth && OffsetHeight == other.OffsetHeight;

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is RelativeRectangle other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() =>
        HashCode.Combine(ScaleX, ScaleY, ScaleWidth, ScaleHeight, OffsetX, OffsetY, OffsetWidth, OffsetHeight);

    /// <summary>Each share with its offset.</summary>
    public override readonly string ToString() => string.Create(
        CultureInfo.InvariantCulture,
        $"({ScaleX}+{OffsetX}, {ScaleY}+{OffsetY}, {ScaleWidth}+{OffsetWidth}, {ScaleHeight}+{OffsetHeight})");

    /// <summary>Whether all values are equal.</summary>
    public static bool operator ==(RelativeRectangle a, RelativeRectangle b) => a.Equals(b);

    /// <summary>Whether a value differs.</summary>
    public static bool operator !=(RelativeRectangle a, RelativeRectangle b) => !a.Equals(b);
}
