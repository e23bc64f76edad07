using System;
using System.Globalization;

namespace Velbor.Voxlar.Utilities;

/// <summary>An axis-aligned rectangle that is empty, finite or infinite. One made without arguments is
/// empty.</summary>
public struct BoundingBox2D : IEquatable<BoundingBox2D>
{
    /// <summary>The box that holds nothing.</summary>
    public static readonly BoundingBox2D Null;

    /// <summary>The box that holds every point.</summary>
    public static readonly BoundingBox2D Infinite = new()
    {
        Extent = BoundingBoxExtent.Infinite,
        Minimum = new Vector2(double.NegativeInfinity),
        Maximum = new Vector2(double.PositiveInfinity),
    };

    /// <summary>Makes a finite box out of two opposite corners, in any order.</summary>
    public BoundingBox2D(Vector2 minimum, Vector2 maximum)
    {
        Extent = BoundingBoxExtent.Finite;
        Minimum = new Vector2(Math.Min(minimum.x, maximum.x), Math.Min(minimum.y, maximum.y));
        Maximum = new Vector2(Math.Max(minimum.x, maximum.x), Math.Max(minimum.y, maximum.y));
    }

    /// <summary>Whether the box is empty, finite or infinite.</summary>
    public BoundingBoxExtent Extent { get; private set; }

    /// <summary>The corner with the least coordinates; zero for an empty box.</summary>
    public Vector2 Minimum { get; private set; }

    /// <summary>The corner with the greatest coordinates; zero for an empty box.</summary>
    public Vector2 Maximum { get; private set; }

    /// <summary>Grows this box so that it holds the point.</summary>
    public void Merge(Vector2 pt) => Merge(new BoundingBox2D(pt, pt));

    /// <summary>Grows this box so that it holds the other one.</summary>
    public void Merge(BoundingBox2D bb)
    {
        if (Extent == BoundingBoxExtent.Infinite || bb.Extent == BoundingBoxExtent.Null)
            return;
        if (Extent == BoundingBoxExtent.Null || bb.Extent == BoundingBoxExtent.Infinite)
        {
            this = bb;
            return;
        }
        Minimum = new Vector2(Math.Min(Minimum.x, bb.Minimum.x), Math.Min(Minimum.y, bb.Minimum.y));
        Maximum = new Vector2(Math.Max(Maximum.x, bb.Maximum.x), Math.Max(Maximum.y, bb.Maximum.y));
    }

    /// <summary>Whether extent and corners are equal.</summary>
    public readonly bool Equals(BoundingBox2D other) =>
        Extent == other.Extent && Minimum.Equals(other.Minimum) && Maximum.Equals(other.Maximum);

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is BoundingBox2D other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(Extent, Minimum, Maximum);

    /// <summary>The extent, or both corners of a finite box.</summary>
    public override readonly string ToString() => Extent == BoundingBoxExtent.Finite
        ? string.Create(CultureInfo.InvariantCulture, $"[{Minimum} - {Maximum}]")
        : $"[{Extent}]";

    /// <summary>Whether both boxes are equal.</summary>
    public static bool operator ==(BoundingBox2D a, BoundingBox2D b) => a.Equals(b);

    /// <summary>Whether the boxes differ.</summary>
    public static bool operator !=(BoundingBox2D a, BoundingBox2D b) => !a.Equals(b);
}
