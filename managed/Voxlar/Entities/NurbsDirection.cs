using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>What a NURBS surface is in one direction.</summary>
public class NurbsDirection
{
    /// <summary>The order: the degree and one. 4, cubic, at first.</summary>
    public int Order { get; set; } = 4;

    /// <summary>The number of pieces that a span between two knots becomes in a mesh; 4 at first.</summary>
    public int Divisions { get; set; } = 4;

    /// <summary>How the ends meet.</summary>
    public NurbsType Type { get; set; }

    /// <summary>The number of control points.</summary>
    public int Count { get; set; }

    /// <summary>The knots; without any, evenly spaced ones that suit the type are taken.</summary>
    internal List<double> Knots { get; } = new();
}
