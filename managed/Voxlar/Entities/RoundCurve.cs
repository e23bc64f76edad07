using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>What circles and ellipses share.</summary>
internal static class RoundCurve
{
    /// <summary>The number of edges that stand for a full turn.</summary>
    public const int SegmentsPerTurn = 32;

    public static Vector3 PointAt(double angle, double semiAxis1, double semiAxis2)
    {
        // A whole turn gives exactly the first point again, so that closed curves close.
        (double sin, double cos) = angle == 2 * Math.PI ? (0, 1) : Math.SinCos(angle);
        return new Vector3(semiAxis1 * cos, semiAxis2 * sin, 0);
    }

    public static int Steps(double from, double to) =>
        Math.Max((int)Math.Ceiling(Math.Abs(to - from) / (2 * Math.PI) * SegmentsPerTurn - 1e-9), 1);
}
