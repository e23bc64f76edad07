using System;
using System.Collections.Generic;
using System.Runtime.CompilerServices;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>A curve in space.</summary>
public abstract class Curve : Entity
{
    private static readonly EntityRendererKey RendererKey = new("Curve");

    private protected Curve(string name)
        : base(name)
    {
    }

    /// <summary>The colour it is drawn in, linear RGB from 0 to 1; black at first.</summary>
    public Vector3 Color { get; set; }

    /// <summary>The parameter at which the curve begins.</summary>
    internal abstract double Begin { get; }

    /// <summary>The parameter at which the curve ends.</summary>
    internal abstract double End { get; }

    /// <summary>
    /// How much the parameter grows in one round of a curve that goes on after its end; 0 for all others.
    /// </summary>
    internal virtual double Period => 0;

    /// <inheritdoc/>
    public override EntityRendererKey GetEntityRendererKey() => RendererKey;

    /// <summary>The box around the points that the curve is drawn with.</summary>
    public override BoundingBox GetBoundingBox()
    {
        BoundingBox box = BoundingBox.Null;
        foreach (Vector3 point in Tessellate())
            box = box.Merge(point);
        return box;
    }

    /// <summary>The point at a parameter.</summary>
    internal abstract Vector3 PointAt(double parameter);

    /// <summary>
    /// The parameters of a polyline that stands for a part of the curve: from the first to the last, both
    /// included, growing.
    /// </summary>
    internal abstract List<double> Parameters(double from, double to);

    /// <summary>
    /// The points of a polyline that stands for the curve; a closed curve ends with the point it begins with.
    /// </summary>
    internal virtual List<Vector3> Tessellate() => Parameters(Begin, End).ConvertAll(PointAt);

    /// <summary>The parameter of the point of the curve that is nearest to a point.</summary>
    internal double ParameterOf(Vector3 point)
    {
        List<double> parameters = Parameters(Begin, End);
        int best = 0;
        for (int i = 1; i < parameters.Count; ++i)
        {
            if (Distance(parameters[i]) < Distance(parameters[best]))
                best = i;
        }
        if (parameters.Count == 0)
            return Begin;
        double low = parameters[best == 0 ? 0 : best - 1];
        double high = parameters[best == parameters.Count - 1 ? best : best + 1];
        // The distance has one minimum between the neighbours of the nearest sample, so ternary search closes
        // in on it.
        for (int i = 0; i < 100; ++i)
        {
            double third = (high - low) / 3;
            if (Distance(low + third) <= Distance(high - third))
                high -= third;
            else
                low += third;
        }
        return (low + high) / 2;

        double Distance(double parameter) => (PointAt(parameter) - point).Length2;
    }

    /// <summary>Whether this curve is the other one or is made of it.</summary>
    internal virtual bool IsMadeOf(Curve other) => ReferenceEquals(this, other);

    /// <summary>Takes a curve that this one is to be made of.</summary>
    /// <exception cref="ArgumentException">It is made of this one.</exception>
    private protected Curve? Basing(Curve? basis)
    {
        RuntimeHelpers.EnsureSufficientExecutionStack();
        return basis is not null && basis.IsMadeOf(this)
            ? throw new ArgumentException("A curve cannot be a part of itself.", nameof(basis))
            : basis;
    }

    /// <summary>Gives a curve that this one is made of.</summary>
    /// <param name="part">The curve, or null.</param>
    /// <exception cref="InvalidOperationException">There is none.</exception>
    /// <exception cref="InsufficientExecutionStackException">A curve is a part of itself.</exception>
    internal static Curve Part(Curve? part)
    {
        RuntimeHelpers.EnsureSufficientExecutionStack();
        return part ?? throw new InvalidOperationException("A curve that another is made of is missing.");
    }

    /// <summary>Parameters at whole multiples of a step, with the two ends.</summary>
    private protected static List<double> Even(double from, double to, int steps)
    {
        List<double> result = new(steps + 1);
        for (int i = 0; i < steps; ++i)
            result.Add(from + (to - from) * i / steps);
        result.Add(to);
        return result;
    }
}
