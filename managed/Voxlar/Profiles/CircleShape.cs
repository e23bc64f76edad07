using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>A disc, bounded by 32 edges when it becomes a mesh.</summary>
public class CircleShape : ParameterizedProfile
{
    /// <summary>Makes a disc of radius 5.</summary>
    public CircleShape()
        : this(5)
    {
    }

    /// <summary>Makes a disc.</summary>
    /// <param name="radius">Its radius.</param>
    public CircleShape(double radius)
    {
        Radius = radius;
    }

    /// <summary>The radius.</summary>
    public double Radius { get; set; }

    /// <inheritdoc/>
    public override Vector2 GetExtent() => new(2 * Radius, 2 * Radius);

    internal override ProfileOutline GetOutline() => new(ProfileOutline.Ellipse(Radius, Radius));
}
