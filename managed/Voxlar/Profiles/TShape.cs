using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>A T: a flange along x at the top, and a web below it.</summary>
public class TShape : ParameterizedProfile
{
    /// <summary>The size in y; 10 at first.</summary>
    public double Depth { get; set; } = 10;

    /// <summary>The size of the flange in x; 6 at first.</summary>
    public double FlangeWidth { get; set; } = 6;

    /// <summary>The thickness of the web; 1 at first.</summary>
    public double WebThickness { get; set; } = 1;

    /// <summary>The thickness of the flange; 1 at first.</summary>
    public double FlangeThickness { get; set; } = 1;

    /// <summary>The radius between the web and the flange.</summary>
    public double FilletRadius { get; set; }

    /// <summary>The radius of the inner edges of the flange.</summary>
    public double FlangeEdgeRadius { get; set; }

    /// <summary>The radius of the edges at the foot of the web.</summary>
    public double WebEdgeRadius { get; set; }

    /// <inheritdoc/>
    public override Vector2 GetExtent() => new(FlangeWidth, Depth);

    internal override ProfileOutline GetOutline()
    {
        double x = FlangeWidth / 2;
        double web = WebThickness / 2;
        double y = Depth / 2;
        double low = y - FlangeThickness;
        return new ProfileOutline(ProfileOutline.Rounded(
            (-web, -y, WebEdgeRadius), (web, -y, WebEdgeRadius), (web, low, FilletRadius),
            (x, low, FlangeEdgeRadius),
            (x, y, 0), (-x, y, 0), (-x, low, FlangeEdgeRadius), (-web, low, FilletRadius)));
    }
}
