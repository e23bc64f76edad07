namespace Velbor.Voxlar.Formats;

/// <summary>How glTF is read.</summary>
public class GltfLoadOptions : LoadOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public GltfLoadOptions()
        : base(null)
    {
    }

    /// <summary>Whether v is flipped, so that it grows upwards.</summary>
    public bool FlipTexCoordV { get; set; } = true;
}
