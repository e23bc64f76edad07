using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>A U lying on its side: a web along y at negative x, and two flanges towards positive x.</summary>
public class UShape : ParameterizedProfile
{
    /// <summary>The size in y; 10 at first.</summary>
    public double Depth { get; set; } = 10;

    /// <summary>The size in x; 6 at first.</summary>
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
    public override Vector2 GetExtent() => new(FlangeWidth, Depth);

    internal override ProfileOutline GetOutline()
    {
        double x = FlangeWidth / 2;
        double y = Depth / 2;
        double web = -x + WebThickness;
        double inner = y - FlangeThickness;
        return new ProfileOutline(ProfileOutline.Rounded(
            (-x, -y, 0), (x, -y, 0), (x, -inner, EdgeRadius), (web, -inner, FilletRadius),
            (web, inner, FilletRadius), (x, inner, EdgeRadius), (x, y, 0), (-x, y, 0)));
    }
}
