using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>A rectangle, whose corners may be rounded.</summary>
public class RectangleShape : ParameterizedProfile
{
    /// <summary>The radius of the corners; 0 at first.</summary>
    public double RoundingRadius { get; set; }

    /// <summary>The size in x; 2 at first.</summary>
    public double XDim { get; set; } = 2;

    /// <summary>The size in y; 2 at first.</summary>
    public double YDim { get; set; } = 2;

    /// <inheritdoc/>
    public override Vector2 GetExtent() => new(XDim, YDim);

    internal override ProfileOutline GetOutline() => new(Box(XDim, YDim, RoundingRadius));

    private protected static List<Vector2> Box(double width, double depth, double radius)
    {
        double x = width / 2;
        double y = depth / 2;
        return ProfileOutline.Rounded((-x, -y, radius), (x, -y, radius), (x, y, radius), (-x, y, radius));
    }
}
