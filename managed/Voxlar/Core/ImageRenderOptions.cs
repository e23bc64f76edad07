using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>How a scene is drawn into an image.</summary>
public class ImageRenderOptions : VbrObject
{
    /// <summary>Makes options with their defaults.</summary>
    public ImageRenderOptions()
    {
    }

    /// <summary>The colour of the background, each part from 0 to 1; black at first.</summary>
    public Vector3 BackgroundColor { get; set; }

    /// <summary>Folders in which textures are looked for.</summary>
    public List<string> AssetDirectories { get; set; } = [];

    /// <summary>Whether lights cast shadows.</summary>
    public bool EnableShadows { get; set; }
}
