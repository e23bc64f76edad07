using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Animation;

/// <summary>
/// The values between two neighbouring keys, one formula for each <see cref="Interpolation"/>.
/// </summary>
internal static class KeyframeSegment
{
    private const double DefaultWeight = 1.0 / 3;

    /// <summary>Gives the value of the segment that starts at a key.</summary>
    /// <param name="keys">The keys in order of time.</param>
    /// <param name="index">The index of the left key; there is a right one.</param>
    /// <param name="time">A time within the segment, in seconds.</param>
    public static double Evaluate(IReadOnlyList<KeyFrame> keys, int index, double time)
    {
        KeyFrame left = keys[index];
        KeyFrame right = keys[index + 1];
        double length = right.Time - left.Time;
        if (time >= right.Time || length <= 0)
            return left.Interpolation == Interpolation.BSpline && length > 0
                ? Spline(keys, index, 1)
                : right.Value;
        double u = Math.Max((time - left.Time) / length, 0);
        switch (left.Interpolation)
        {
            case Interpolation.Constant:
                return left.StepMode == StepMode.NextValue && u > 0 ? right.Value : left.Value;
            case Interpolation.Bezier:
                return Bezier(left, right, length, u);
            case Interpolation.BSpline:
                return Spline(keys, index, u);
            case Interpolation.CardinalSpline:
                return Hermite(keys, index, u, continuity: false);
            case Interpolation.TcbSpline:
                return Hermite(keys, index, u, continuity: true);
            default:
                return left.Value + u * ((double)right.Value - left.Value);
        }
    }

    private static double Bezier(KeyFrame left, KeyFrame right, double length, double u)
    {
        bool outWeighted = left.TangentWeightMode is WeightedMode.OutWeight or WeightedMode.Both;
        bool inWeighted = left.TangentWeightMode is WeightedMode.NextInWeight or WeightedMode.Both;
        double outWeight = Math.Clamp(outWeighted ? left.OutWeight : DefaultWeight, 0, 1);
        double inWeight = Math.Clamp(inWeighted ? left.NextInWeight : DefaultWeight, 0, 1);
        double chord = ((double)right.Value - left.Value) / length;
        double outSlope = left.Flat ? 0 : Slope(left.OutTangent, chord);
        double inSlope = right.Flat ? 0 : Slope(left.NextInTangent, chord);
        double s = SolveParameter(outWeight, 1 - inWeight, u);
        double v1 = left.Value + outSlope * outWeight * length;
        double v2 = right.Value - inSlope * inWeight * length;
        return Cubic(left.Value, v1, v2, right.Value, s);
    }

    private static double Slope(Vector2 tangent, double chord) =>
        tangent.x == 0 ? chord : tangent.y / tangent.x;

    // Time runs monotonously from 0 to 1 along the segment as the handles stay within it, so bisection always
    // ends.
    private static double SolveParameter(double t1, double t2, double u)
    {
        double low = 0;
        double high = 1;
        for (int i = 0; i < 60; ++i)
        {
            double middle = (low + high) / 2;
            if (Cubic(0, t1, t2, 1, middle) < u)
                low = middle;
            else
                high = middle;
        }
        return (low + high) / 2;
    }

    private static double Cubic(double p0, double p1, double p2, double p3, double s)
    {
        double r = 1 - s;
        return r * r * r * p0 + 3 * r * r * s * p1 + 3 * r * s * s * p2 + s * s * s * p3;
    }

    private static double Spline(IReadOnlyList<KeyFrame> keys, int index, double u)
    {
        double p0 = keys[Math.Max(index - 1, 0)].Value;
        double p1 = keys[index].Value;
        double p2 = keys[index + 1].Value;
        double p3 = keys[Math.Min(index + 2, keys.Count - 1)].Value;
        double r = 1 - u;
        double b1 = 3 * u * u * u - 6 * u * u + 4;
        double b2 = -3 * u * u * u + 3 * u * u + 3 * u + 1;
        return (r * r * r * p0 + b1 * p1 + b2 * p2 + u * u * u * p3) / 6;
    }

    private static double Hermite(IReadOnlyList<KeyFrame> keys, int index, double u, bool continuity)
    {
        KeyFrame left = keys[index];
        KeyFrame right = keys[index + 1];
        double delta = (double)right.Value - left.Value;
        double length = right.Time - left.Time;
        KeyFrame? before = index > 0 ? keys[index - 1] : null;
        KeyFrame? after = index + 2 < keys.Count ? keys[index + 2] : null;
        double deltaBefore = before is null ? delta : (double)left.Value - before.Value;
        double deltaAfter = after is null ? delta : (double)after.Value - right.Value;

        double shaped = continuity ? 1 : 0;
        double leave = Tangent(left, deltaBefore, delta, shaped * left.Continuity, shaped * left.Bias);
        double arrive = Tangent(right, delta, deltaAfter, -shaped * right.Continuity, shaped * right.Bias);
        // Uneven spacing would make the speed jump at a key; scaling by the share of this segment keeps it
        // smooth.
        if (before is not null)
            leave *= 2 * length / (right.Time - before.Time);
        if (after is not null)
            arrive *= 2 * length / (after.Time - left.Time);

        double u2 = u * u;
        double u3 = u2 * u;
        return (2 * u3 - 3 * u2 + 1) * left.Value + (u3 - 2 * u2 + u) * leave
            + (3 * u2 - 2 * u3) * right.Value + (u3 - u2) * arrive;
    }

    // The tangent at a key between the change before it and the change after it; a leaving tangent takes the
    // continuity as it is, an arriving one takes it with the other sign.
    private static double Tangent(KeyFrame key, double before, double after, double continuity, double bias)
    {
        if (key.Flat)
            return 0;
        double t = 1 - key.Tension;
        return t * (1 + bias) * (1 + continuity) / 2 * before + t * (1 - bias) * (1 - continuity) / 2 * after;
    }
}
