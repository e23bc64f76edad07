using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// Equal steps round the y axis. Angle 0 lies on the x axis, and they grow counter-clockwise as seen from
/// positive y. A range of a full turn or more is a closed ring, whose last step gives exactly the place of
/// the first.
/// </summary>
internal readonly struct AngleRange
{
    private readonly double _start;
    private readonly double _length;

    public AngleRange(double start, double length, int steps)
    {
        // A range that runs backwards covers the same places as one that runs forwards from its end.
        _start = Math.Min(start, start + length);
        Closed = Math.Abs(length) >= 2 * Math.PI - 1e-9;
        _length = Closed ? 2 * Math.PI : Math.Abs(length);
        Steps = Math.Max(steps, Closed ? 3 : 1);
    }

    /// <summary>Whether the range is a full turn.</summary>
    public bool Closed { get; }

    /// <summary>The number of steps; at least 3 for a full turn.</summary>
    public int Steps { get; }

    /// <summary>The angle of a step, in radians.</summary>
    public double Angle(int step) => _start + _length * (Closed ? step % Steps : step) / Steps;

    /// <summary>The direction away from the axis at a step.</summary>
    public Vector3 Outward(int step)
    {
        (double sin, double cos) = Math.SinCos(Angle(step));
        return new Vector3(cos, 0, -sin);
    }

    /// <summary>The direction of growing angles at a step.</summary>
    public Vector3 Along(int step)
    {
        (double sin, double cos) = Math.SinCos(Angle(step));
        return new Vector3(-sin, 0, -cos);
    }
}
