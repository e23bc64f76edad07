using System;
using System.Collections.Generic;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>A profile bounded by a closed curve, of which x and y count.</summary>
public class ArbitraryProfile : Profile
{
    /// <summary>Makes a profile without a curve.</summary>
    public ArbitraryProfile()
    {
    }

    /// <summary>Makes a profile.</summary>
    /// <param name="curve">Its boundary.</param>
    public ArbitraryProfile(Curve curve)
    {
        Curve = curve;
    }

    /// <summary>
    /// The boundary; a curve that does not end where it begins is closed by a straight line.
    /// </summary>
    public Curve? Curve { get; set; }

    internal override ProfileOutline GetOutline()
    {
        if (Curve is null)
            throw new InvalidOperationException("The profile has no curve.");
        List<Vector2> points = new();
        foreach (Vector3 point in Curve.Tessellate())
            points.Add(new Vector2(point.x, point.y));
        return new ProfileOutline(points);
    }
}
