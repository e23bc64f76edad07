using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// The part of a curve between two ends. It has the parameters from 0 at the first end to 1 at the second. On
/// a circle or ellipse the part runs on beyond the basis curve's begin where the second end comes before the
/// first.
/// </summary>
public class TrimmedCurve : Curve
{
    /// <summary>Makes a trimmed curve without a basis.</summary>
    public TrimmedCurve()
        : base("")
    {
    }

    /// <summary>The curve it is a part of.</summary>
    /// <exception cref="System.ArgumentException">The curve is made of this one.</exception>
    public Curve? BasisCurve
    {
        get;
        set => field = Basing(value);
    }

    /// <summary>Where the part begins.</summary>
    public EndPoint First { get; set; }

    /// <summary>Where the part ends.</summary>
    public EndPoint Second { get; set; }

    /// <summary>
    /// Whether the part runs the way of the basis curve from the first end to the second; true at first.
    /// </summary>
    public bool SameDirection { get; set; } = true;

    internal override double Begin => 0;

    internal override double End => 1;

    internal override bool IsMadeOf(Curve other) =>
        base.IsMadeOf(other) || (BasisCurve is not null && Basis.IsMadeOf(other));

    private Curve Basis => Part(BasisCurve);

    internal override Vector3 PointAt(double parameter)
    {
        (double first, double second) = Ends();
        return Basis.PointAt(first + (second - first) * parameter);
    }

    internal override List<double> Parameters(double from, double to)
    {
        (double first, double second) = Ends();
        double length = second - first;
        if (length == 0)
            return [from, to];
        double low = first + length * from;
        double high = first + length * to;
        List<double> result = Basis.Parameters(Math.Min(low, high), Math.Max(low, high));
        if (low > high)
            result.Reverse();
        return result.ConvertAll(parameter => (parameter - first) / length);
    }

    private (double First, double Second) Ends()
    {
        double first = First.On(Basis);
        double second = Second.On(Basis);
        double period = Basis.Period;
        if (period > 0)
        {
            if (SameDirection && second <= first)
                second += period * Math.Ceiling((first - second) / period + 1e-12);
            if (!SameDirection && second >= first)
                second -= period * Math.Ceiling((second - first) / period + 1e-12);
        }
        return (first, second);
    }
}
