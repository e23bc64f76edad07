using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A curve with a transform applied to its points. It has the parameters of the curve it is made of.
/// </summary>
public class TransformedCurve : Curve
{
    /// <summary>Makes a transformed curve without a basis.</summary>
    public TransformedCurve()
        : base("")
    {
    }

    /// <summary>Makes a transformed curve.</summary>
    /// <param name="basisCurve">The curve it is made of.</param>
    /// <param name="transformation">The transform.</param>
    public TransformedCurve(Curve basisCurve, Matrix4 transformation)
        : base("")
    {
        BasisCurve = basisCurve;
        TransformMatrix = transformation;
    }

    /// <summary>The transform; the identity at first.</summary>
    public Matrix4 TransformMatrix { get; set; } = Matrix4.Identity;

    /// <summary>The curve it is made of.</summary>
    /// <exception cref="System.ArgumentException">The curve is made of this one.</exception>
    public Curve? BasisCurve
    {
        get;
        set => field = Basing(value);
    }

    internal override double Begin => Basis.Begin;

    internal override double End => Basis.End;

    internal override double Period => Basis.Period;

    internal override bool IsMadeOf(Curve other) =>
        base.IsMadeOf(other) || (BasisCurve is not null && Basis.IsMadeOf(other));

    private Curve Basis => Part(BasisCurve);

    internal override Vector3 PointAt(double parameter) => Basis.PointAt(parameter) * TransformMatrix;

    internal override List<double> Parameters(double from, double to) => Basis.Parameters(from, to);

    internal override List<Vector3> Tessellate() =>
        Basis.Tessellate().ConvertAll(point => point * TransformMatrix);
}
