using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>An H lying on its side: two flanges along x with a web between them.</summary>
public class HShape : ParameterizedProfile
{
    /// <summary>The size in y; 10 at first.</summary>
    public double OverallDepth { get; set; } = 10;

    /// <summary>The size of the bottom flange in x; 6 at first.</summary>
    public double BottomFlangeWidth { get; set; } = 6;

    /// <summary>The size of the top flange in x; 6 at first.</summary>
    public double TopFlangeWidth { get; set; } = 6;

    /// <summary>The thickness of the top flange; 1 at first.</summary>
    public double TopFlangeThickness { get; set; } = 1;

    /// <summary>The radius of the inner edges of the top flange.</summary>
    public double TopFlangeEdgeRadius { get; set; }

    /// <summary>The radius between the web and the top flange.</summary>
    public double TopFlangeFilletRadius { get; set; }

    /// <summary>The thickness of the bottom flange; 1 at first.</summary>
    public double BottomFlangeThickness { get; set; } = 1;

    /// <summary>The thickness of the web; 1 at first.</summary>
    public double WebThickness { get; set; } = 1;

    /// <summary>The radius between the web and the bottom flange.</summary>
    public double BottomFlangeFilletRadius { get; set; }

    /// <summary>The radius of the inner edges of the bottom flange.</summary>
    public double BottomFlangeEdgeRadius { get; set; }

    /// <inheritdoc/>
    public override Vector2 GetExtent() => new(Math.Max(BottomFlangeWidth, TopFlangeWidth), OverallDepth);

    internal override ProfileOutline GetOutline()
    {
        double bottom = BottomFlangeWidth / 2;
        double top = TopFlangeWidth / 2;
        double web = WebThickness / 2;
        double y = OverallDepth / 2;
        double low = -y + BottomFlangeThickness;
        double high = y - TopFlangeThickness;
        return new ProfileOutline(ProfileOutline.Rounded(
            (-bottom, -y, 0), (bottom, -y, 0), (bottom, low, BottomFlangeEdgeRadius),
            (web, low, BottomFlangeFilletRadius), (web, high, TopFlangeFilletRadius),
            (top, high, TopFlangeEdgeRadius), (top, y, 0), (-top, y, 0), (-top, high, TopFlangeEdgeRadius),
            (-web, high, TopFlangeFilletRadius), (-web, low, BottomFlangeFilletRadius),
            (-bottom, low, BottomFlangeEdgeRadius)));
    }
}
