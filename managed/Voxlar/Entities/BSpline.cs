using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Rational B-splines: knots and the evaluation of points.</summary>
internal static class BSpline
{
    /// <summary>
    /// Gives the knots to use: the given ones if their number fits, or evenly spaced ones. An open spline
    /// begins and ends at its first and last control point; a closed or periodic one uses its first control
    /// points again at its end.
    /// </summary>
    /// <param name="given">The knots given, possibly none.</param>
    /// <param name="count">The number of control points, wrapped ones included.</param>
    /// <param name="order">The degree and one.</param>
    /// <param name="clamped">Whether the spline begins and ends at control points.</param>
    /// <exception cref="InvalidOperationException">
    /// There are knots, but of another number or out of order.
    /// </exception>
    public static double[] Knots(IReadOnlyList<double> given, int count, int order, bool clamped)
    {
        if (order < 2 || count < order)
        {
            throw new InvalidOperationException(
                $"A spline has an order of at least 2 and as many control points, not {order} and {count}.");
        }
        double[] knots = new double[count + order];
        if (given.Count > 0)
        {
            if (given.Count != knots.Length)
            {
                throw new InvalidOperationException(
                    $"A spline of order {order} over {count} points has {knots.Length} knots, "
                    + $"not {given.Count}.");
            }
            for (int i = 0; i < knots.Length; ++i)
            {
                knots[i] = given[i];
                if (i > 0 && !(knots[i] >= knots[i - 1]))
                    throw new InvalidOperationException("The knots of a spline do not fall.");
            }
            return knots;
        }
        for (int i = 0; i < knots.Length; ++i)
            knots[i] = clamped ? Math.Clamp(i - order + 1, 0, count - order + 1) : i - order + 1;
        return knots;
    }

    /// <summary>Finds the last knot span that a parameter lies in.</summary>
    public static int Span(double[] knots, int count, int order, double u)
    {
        int low = order - 1;
        int high = count - 1;
        while (low < high)
        {
            int middle = (low + high + 1) / 2;
            if (knots[middle] <= u)
                low = middle;
            else
                high = middle - 1;
        }
        while (low > order - 1 && knots[low] == knots[low + 1])
            --low;
        return low;
    }

    /// <summary>
    /// The basis functions that are not zero in a span, for the control points from span - order + 1 on.
    /// </summary>
    public static double[] Basis(double[] knots, int order, int span, double u)
    {
        double[] values = new double[order];
        double[] left = new double[order];
        double[] right = new double[order];
        values[0] = 1;
        for (int j = 1; j < order; ++j)
        {
            left[j] = u - knots[span + 1 - j];
            right[j] = knots[span + j] - u;
            double saved = 0;
            for (int r = 0; r < j; ++r)
            {
                double sum = right[r + 1] + left[j - r];
                double share = sum == 0 ? 0 : values[r] / sum;
                values[r] = saved + right[r + 1] * share;
                saved = left[j - r] * share;
            }
            values[j] = saved;
        }
        return values;
    }

    /// <summary>The different parameters at which spans begin, and the end.</summary>
    public static List<double> Breaks(double[] knots, int count, int order)
    {
        List<double> breaks = new();
        for (int i = order - 1; i <= count; ++i)
        {
            if (breaks.Count == 0 || knots[i] > breaks[^1])
                breaks.Add(knots[i]);
        }
        return breaks;
    }

    /// <summary>
    /// Multiplies x, y and z by the weight, which makes a rational spline an ordinary one in four dimensions.
    /// </summary>
    public static Vector4 Weighted(Vector4 point, bool rational) =>
        rational ? new Vector4(point.x * point.w, point.y * point.w, point.z * point.w, point.w)
                 : new Vector4(point.x, point.y, point.z, 1);
}
