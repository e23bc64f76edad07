using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A target shape of a morph: control points, and the index of the control point of the geometry that each of
/// them is for. Without indices the points are for the control points of the geometry in order.
/// </summary>
public class Shape : Geometry
{
    /// <summary>Makes a shape without a name.</summary>
    public Shape()
        : this("")
    {
    }

    /// <summary>Makes a shape.</summary>
    /// <param name="name">Its name.</param>
    public Shape(string name)
        : base(name)
    {
    }

    /// <summary>The control points of the geometry that the points of the shape are for.</summary>
    public IList<int> Indices { get; } = new List<int>();

    /// <summary>Makes a shape of points.</summary>
    /// <param name="controlPoints">The points.</param>
    public static Shape FromControlPoints(Vector3[] controlPoints)
    {
        ArgumentNullException.ThrowIfNull(controlPoints);
        Shape shape = new();
        foreach (Vector3 point in controlPoints)
            shape.ControlPointList.Add(new Vector4(point, 1));
        return shape;
    }
}
