using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>An L with its corner at negative x and y.</summary>
public class LShape : ParameterizedProfile
{
    /// <summary>The size in y; 10 at first.</summary>
    public double Depth { get; set; } = 10;

    /// <summary>The size in x; 6 at first.</summary>
    public double Width { get; set; } = 6;

    /// <summary>The thickness of both legs; 1 at first.</summary>
    public double Thickness { get; set; } = 1;

    /// <summary>The radius of the inner corner between the legs.</summary>
    public double FilletRadius { get; set; }

    /// <summary>The radius of the inner edges at the ends of the legs.</summary>
    public double EdgeRadius { get; set; }

    /// <inheritdoc/>
    public override Vector2 GetExtent() => new(Width, Depth);

    internal override ProfileOutline GetOutline()
    {
        double x = Width / 2;
        double y = Depth / 2;
        double t = Thickness;
        return new ProfileOutline(ProfileOutline.Rounded(
            (-x, -y, 0), (x, -y, 0), (x, -y + t, EdgeRadius), (-x + t, -y + t, FilletRadius),
            (-x + t, y, EdgeRadius), (-x, y, 0)));
    }
}
