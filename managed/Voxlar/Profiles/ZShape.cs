using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>
/// A Z: a web along y, a bottom flange towards positive x and a top flange towards negative x.
/// </summary>
public class ZShape : ParameterizedProfile
{
    /// <summary>The size in y; 10 at first.</summary>
    public double Depth { get; set; } = 10;

    /// <summary>The size of each flange in x, the web included; 6 at first.</summary>
    public double FlangeWidth { get; set; } = 6;

    /// <summary>The thickness of the web; 1 at first.</summary>
    public double WebThickness { get; set; } = 1;

    /// <summary>The thickness of the flanges; 1 at first.</summary>
    public double FlangeThickness { get; set; } = 1;

    /// <summary>The radius between the web and the flanges.</summary>
    public double FilletRadius { get; set; }

    /// <summary>The radius of the inner edges of the flanges.</summary>
    public double EdgeRadius { get; set; }

    /// <inheritdoc/>
    public override Vector2 GetExtent() => new(2 * FlangeWidth - WebThickness, Depth);

    internal override ProfileOutline GetOutline()
    {
        double web = WebThickness / 2;
        double x = FlangeWidth - web;
        double y = Depth / 2;
        double inner = y - FlangeThickness;
        return new ProfileOutline(ProfileOutline.Rounded(
            (-web, -y, 0), (x, -y, 0), (x, -inner, EdgeRadius), (web, -inner, FilletRadius),
            (web, y, 0), (-x, y, 0), (-x, inner, EdgeRadius), (-web, inner, FilletRadius)));
    }
}
