using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>A C with lips, bent from sheet of one thickness and open to the side of positive x.</summary>
public class CShape : ParameterizedProfile
{
    /// <summary>The size in y; 10 at first.</summary>
    public double Depth { get; set; } = 10;

    /// <summary>The size in x; 5 at first.</summary>
    public double Width { get; set; } = 5;

    /// <summary>The length of the lips, from the outside; 2 at first.</summary>
    public double Girth { get; set; } = 2;

    /// <summary>The thickness of the sheet; 0.5 at first.</summary>
    public double WallThickness { get; set; } = 0.5;

    /// <summary>
    /// The radius inside the bends; outside it is greater by the thickness. 0 leaves the bends sharp.
    /// </summary>
    public double InternalFilletRadius { get; set; }

    /// <inheritdoc/>
    public override Vector2 GetExtent() => new(Width, Depth);

    internal override ProfileOutline GetOutline()
    {
        double x = Width / 2;
        double y = Depth / 2;
        double t = WallThickness;
        double inner = InternalFilletRadius;
        double outer = inner > 0 ? inner + t : 0;
        return new ProfileOutline(ProfileOutline.Rounded(
            (-x, -y, outer), (x, -y, outer), (x, -y + Girth, 0), (x - t, -y + Girth, 0),
            (x - t, -y + t, inner), (-x + t, -y + t, inner), (-x + t, y - t, inner), (x - t, y - t, inner),
            (x - t, y - Girth, 0), (x, y - Girth, 0), (x, y, outer), (-x, y, outer)));
    }
}
