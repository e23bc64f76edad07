using System;

namespace Velbor.Voxlar.Profiles;

/// <summary>A disc with a round hole in the middle.</summary>
public class HollowCircleShape : CircleShape
{
    /// <summary>The thickness of the wall, less than the radius; 3 at first.</summary>
    public double WallThickness { get; set; } = 3;

    internal override ProfileOutline GetOutline()
    {
        double inner = Radius - WallThickness;
        if (!(inner > 0 && WallThickness > 0))
            throw new InvalidOperationException(
                "The wall of a hollow circle is thicker than 0 and thinner than its radius.");
        return new ProfileOutline(ProfileOutline.Ellipse(Radius, Radius),
            ProfileOutline.Ellipse(inner, inner));
    }
}
