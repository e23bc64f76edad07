using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>An ellipse, bounded by 32 edges when it becomes a mesh.</summary>
public class EllipseShape : ParameterizedProfile
{
    /// <summary>Half the size in x; 5 at first.</summary>
    public double SemiAxis1 { get; set; } = 5;

    /// <summary>Half the size in y; 3 at first.</summary>
    public double SemiAxis2 { get; set; } = 3;

    /// <inheritdoc/>
    public override Vector2 GetExtent() => new(2 * SemiAxis1, 2 * SemiAxis2);

    internal override ProfileOutline GetOutline() => new(ProfileOutline.Ellipse(SemiAxis1, SemiAxis2));
}
