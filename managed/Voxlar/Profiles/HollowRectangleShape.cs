using System;

namespace Velbor.Voxlar.Profiles;

/// <summary>A rectangle with a rectangular hole in the middle.</summary>
public class HollowRectangleShape : RectangleShape
{
    /// <summary>The thickness of the wall, less than half the smaller side; 0.2 at first.</summary>
    public double WallThickness { get; set; } = 0.2;

    /// <summary>The radius of the corners of the hole; 0 at first.</summary>
    public double InnerFilletRadius { get; set; }

    internal override ProfileOutline GetOutline()
    {
        double width = XDim - 2 * WallThickness;
        double depth = YDim - 2 * WallThickness;
        if (!(width > 0 && depth > 0 && WallThickness > 0))
        {
            throw new InvalidOperationException(
                "The wall of a hollow rectangle is thicker than 0 and thinner than half its smaller side.");
        }
        return new ProfileOutline(Box(XDim, YDim, RoundingRadius), Box(width, depth, InnerFilletRadius));
    }
}
