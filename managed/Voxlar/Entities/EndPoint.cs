using System;
using System.Globalization;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>An end of a part of a curve: a point near the curve, or a parameter of the curve.</summary>
public readonly struct EndPoint : IEquatable<EndPoint>
{
    private readonly Vector3 _point;
    private readonly double _value;

    /// <summary>Makes an end at the place of the curve that is nearest to a point.</summary>
    /// <param name="point">The point.</param>
    public EndPoint(Vector3 point)
    {
        _point = point;
        IsCartesianPoint = true;
    }

    /// <summary>Makes an end at a parameter.</summary>
    /// <param name="v">The parameter; on circles and ellipses an angle in radians.</param>
    public EndPoint(double v)
    {
        _value = v;
    }

    /// <summary>Whether the end is given by a point.</summary>
    public bool IsCartesianPoint { get; }

    /// <summary>The point.</summary>
    /// <exception cref="InvalidOperationException">The end is given by a parameter.</exception>
    public Vector3 AsPoint => IsCartesianPoint
        ? _point
        : throw new InvalidOperationException("The end point is given by a parameter, not by a point.");

    /// <summary>The parameter.</summary>
    /// <exception cref="InvalidOperationException">The end is given by a point.</exception>
    public double AsValue => !IsCartesianPoint
        ? _value
        : throw new InvalidOperationException("The end point is given by a point, not by a parameter.");

    /// <summary>Makes an end at an angle.</summary>
    /// <param name="degree">The angle in degrees.</param>
    public static EndPoint FromDegree(double degree) => new(degree * Math.PI / 180);

    /// <summary>Makes an end at an angle.</summary>
    /// <param name="degree">The angle, in radians in spite of the name of the parameter.</param>
    public static EndPoint FromRadian(double degree) => new(degree);

    /// <summary>Whether both ends are equal.</summary>
    public static bool operator ==(EndPoint a, EndPoint b) => a.Equals(b);

    /// <summary>Whether the ends differ.</summary>
    public static bool operator !=(EndPoint a, EndPoint b) => !a.Equals(b);

    /// <inheritdoc/>
    public bool Equals(EndPoint other) =>
        IsCartesianPoint == other.IsCartesianPoint && _point.Equals(other._point)
            && _value.Equals(other._value);

    /// <inheritdoc/>
    public override bool Equals(object? obj) => obj is EndPoint other && Equals(other);

    /// <inheritdoc/>
    public override int GetHashCode() => HashCode.Combine(IsCartesianPoint, _point, _value);

    /// <summary>The point or the parameter.</summary>
    public override string ToString() =>
        IsCartesianPoint ? _point.ToString() : _value.ToString(CultureInfo.InvariantCulture);

    /// <summary>The parameter of this end on a curve.</summary>
    internal double On(Curve curve) => IsCartesianPoint ? curve.ParameterOf(_point) : _value;
}
