namespace Velbor.Voxlar.Formats;

/// <summary>How PLY is read.</summary>
public class PlyLoadOptions : LoadOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public PlyLoadOptions()
        : base(FileFormat.PLY)
    {
    }

    /// <summary>Whether the y and the z axis are exchanged.</summary>
    public bool FlipCoordinateSystem { get; set; }
}
