using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>A trapezium with its parallel sides along x. It is centred about the origin as a whole.</summary>
public class TrapeziumShape : ParameterizedProfile
{
    /// <summary>The length of the bottom side; 2 at first.</summary>
    public double BottomXDim { get; set; } = 2;

    /// <summary>The length of the top side; 1 at first.</summary>
    public double TopXDim { get; set; } = 1;

    /// <summary>The size in y; 1 at first.</summary>
    public double YDim { get; set; } = 1;

    /// <summary>
    /// How far the left end of the top side lies to the right of that of the bottom side; 0 at first.
    /// </summary>
    public double TopXOffset { get; set; }

    /// <inheritdoc/>
    public override Vector2 GetExtent() => new(Right - Left, YDim);

    private double Left => Math.Min(0, TopXOffset);

    private double Right => Math.Max(BottomXDim, TopXOffset + TopXDim);

    internal override ProfileOutline GetOutline()
    {
        double centre = (Left + Right) / 2;
        double y = YDim / 2;
        double top = TopXOffset - centre;
        return new ProfileOutline(
            [new(-centre, -y), new(BottomXDim - centre, -y), new(top + TopXDim, y), new(top, y)]);
    }
}
