using System;
using System.Globalization;
using Velbor.Voxlar.Entities;

namespace Velbor.Voxlar.Utilities;

/// <summary>An axis-aligned box that is empty, finite or infinite. A box made without arguments is
/// empty.</summary>
public struct BoundingBox : IEquatable<BoundingBox>
{
    /// <summary>The box that holds nothing.</summary>
    public static readonly BoundingBox Null;

    /// <summary>The box that holds every point.</summary>
    public static readonly BoundingBox Infinite = new()
    {
        Extent = BoundingBoxExtent.Infinite,
        Minimum = new Vector3(double.NegativeInfinity),
        Maximum = new Vector3(double.PositiveInfinity),
    };

    /// <summary>Makes a finite box out of two opposite corners, in any order.</summary>
    public BoundingBox(Vector3 minimum, Vector3 maximum)
    {
        Extent = BoundingBoxExtent.Finite;
        Minimum = Vector3.Min(minimum, maximum);
        Maximum = Vector3.Max(minimum, maximum);
    }

    /// <summary>Makes a finite box out of the coordinates of two opposite corners, in any order.</summary>
    public BoundingBox(double minX, double minY, double minZ, double maxX, double maxY, double maxZ)
        : this(new Vector3(minX, minY, minZ), new Vector3(maxX, maxY, maxZ))
    {
    }

    /// <summary>Whether the box is empty, finite or infinite.</summary>
    public BoundingBoxExtent Extent { get; private init; }

    /// <summary>The corner with the least coordinates; zero for an empty box.</summary>
    public Vector3 Minimum { get; private init; }

    /// <summary>The corner with the greatest coordinates; zero for an empty box.</summary>
    public Vector3 Maximum { get; private init; }

    /// <summary>The edge lengths; zero for an empty box, infinity for an infinite one.</summary>
    public readonly Vector3 Size => Maximum - Minimum;

    /// <summary>The centre; zero for an empty and for an infinite box.</summary>
    public readonly Vector3 Center =>
        Extent == BoundingBoxExtent.Finite ? Minimum + Size * 0.5 : Vector3.Origin;

    /// <summary>The box around the control points of a geometry; empty when it has none.</summary>
    /// <exception cref="ArgumentNullException"><paramref name="geometry"/> is null.</exception>
    public static BoundingBox FromGeometry(Geometry geometry)
    {
        ArgumentNullException.ThrowIfNull(geometry);
        BoundingBox result = Null;
        foreach (Vector4 point in geometry.ControlPoints)
            result = result.Merge(new Vector3(point));
        return result;
    }

    /// <summary>The smallest box that holds this one and the point.</summary>
    internal readonly BoundingBox Merge(Vector3 point) => Extent switch
    {
        BoundingBoxExtent.Null => new BoundingBox(point, point),
        BoundingBoxExtent.Infinite => this,
        _ => new BoundingBox(Vector3.Min(Minimum, point), Vector3.Max(Maximum, point)),
    };

    /// <summary>The smallest box that holds both.</summary>
    internal readonly BoundingBox Merge(BoundingBox box)
    {
        if (Extent == BoundingBoxExtent.Infinite || box.Extent == BoundingBoxExtent.Null)
            return this;
        if (Extent == BoundingBoxExtent.Null || box.Extent == BoundingBoxExtent.Infinite)
            return box;
        return new BoundingBox(Vector3.Min(Minimum, box.Minimum), Vector3.Max(Maximum, box.Maximum));
    }

    /// <summary>The box around the eight transformed corners.</summary>
    internal readonly BoundingBox Transform(Matrix4 matrix)
    {
        if (Extent != BoundingBoxExtent.Finite)
            return this;
        BoundingBox result = Null;
        for (int corner = 0; corner < 8; corner++)
        {
            Vector3 point = new(
                (corner & 1) == 0 ? Minimum.x : Maximum.x,
                (corner & 2) == 0 ? Minimum.y : Maximum.y,
                (corner & 4) == 0 ? Minimum.z : Maximum.z);
            result = result.Merge(point * matrix);
        }
        return result;
    }

    /// <summary>Whether extent and corners are equal.</summary>
    public readonly bool Equals(BoundingBox other) =>
        Extent == other.Extent && Minimum.Equals(other.Minimum) && Maximum.Equals(other.Maximum);

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is BoundingBox other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(Extent, Minimum, Maximum);

    /// <summary>The extent, or both corners of a finite box.</summary>
    public override readonly string ToString() => Extent == BoundingBoxExtent.Finite
        ? string.Create(CultureInfo.InvariantCulture, $"[{Minimum} - {Maximum}]")
        : $"[{Extent}]";

    /// <summary>Whether both boxes are equal.</summary>
    public static bool operator ==(BoundingBox a, BoundingBox b) => a.Equals(b);

    /// <summary>Whether the boxes differ.</summary>
    public static bool operator !=(BoundingBox a, BoundingBox b) => !a.Equals(b);
}
