namespace Velbor.Voxlar.Formats;

/// <summary>How U3D is read.</summary>
public class U3dLoadOptions : LoadOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public U3dLoadOptions()
        : base(FileFormat.Universal3D)
    {
    }

    /// <summary>Whether the y and the z axis are exchanged.</summary>
    public bool FlipCoordinateSystem { get; set; }
}
