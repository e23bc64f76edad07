using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A circle about the origin in the plane of x and y. Its parameter is an angle in radians from x to y.
/// </summary>
public class Circle : Curve
{
    /// <summary>Makes a circle of radius 5.</summary>
    public Circle()
        : this(5)
    {
    }

    /// <summary>Makes a circle.</summary>
    /// <param name="radius">Its radius.</param>
    public Circle(double radius)
        : base("")
    {
        Radius = radius;
    }

    /// <summary>The radius.</summary>
    public double Radius { get; set; }

    internal override double Begin => 0;

    internal override double End => 2 * Math.PI;

    internal override double Period => 2 * Math.PI;

    internal override Vector3 PointAt(double parameter) => RoundCurve.PointAt(parameter, Radius, Radius);

    internal override List<double> Parameters(double from, double to) =>
        Even(from, to, RoundCurve.Steps(from, to));
}
