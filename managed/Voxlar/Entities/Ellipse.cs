using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// An ellipse about the origin in the plane of x and y. Its parameter is an angle in radians from x to y.
/// </summary>
public class Ellipse : Curve
{
    /// <summary>Makes an ellipse with semi-axes of 5 and 3.</summary>
    public Ellipse()
        : this(5, 3)
    {
    }

    /// <summary>Makes an ellipse.</summary>
    /// <param name="semiAxis1">Half its size in x.</param>
    /// <param name="semiAxis2">Half its size in y.</param>
    public Ellipse(double semiAxis1, double semiAxis2)
        : base("")
    {
        SemiAxis1 = semiAxis1;
        SemiAxis2 = semiAxis2;
    }

    /// <summary>Half the size in x.</summary>
    public double SemiAxis1 { get; set; }

    /// <summary>Half the size in y.</summary>
    public double SemiAxis2 { get; set; }

    internal override double Begin => 0;

    internal override double End => 2 * Math.PI;

    internal override double Period => 2 * Math.PI;

    internal override Vector3 PointAt(double parameter) =>
        RoundCurve.PointAt(parameter, SemiAxis1, SemiAxis2);

    internal override List<double> Parameters(double from, double to) =>
        Even(from, to, RoundCurve.Steps(from, to));
}
