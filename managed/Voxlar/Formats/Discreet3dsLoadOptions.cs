namespace Velbor.Voxlar.Formats;

/// <summary>How 3DS is read.</summary>
public class Discreet3dsLoadOptions : LoadOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public Discreet3dsLoadOptions()
        : base(FileFormat.Discreet3DS)
    {
    }

    /// <summary>Whether gamma-corrected colours are taken in place of linear ones.</summary>
    public bool GammaCorrectedColor { get; set; }

    /// <summary>Whether the y and the z axis are exchanged.</summary>
    public bool FlipCoordinateSystem { get; set; }

    /// <summary>Whether the transforms of the first frame are applied.</summary>
    public bool ApplyAnimationTransform { get; set; } = true;
}
