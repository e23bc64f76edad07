using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats;

/// <summary>How PDF is written.</summary>
public class PdfSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public PdfSaveOptions()
        : base(FileFormat.PDF)
    {
    }

    /// <summary>How a viewer draws the scene.</summary>
    public PdfRenderMode RenderMode { get; set; }

    /// <summary>The lights in a viewer.</summary>
    public PdfLightingScheme LightingScheme { get; set; }

    /// <summary>The colour of the background, each part from 0 to 1.</summary>
    public Vector3 BackgroundColor { get; set; } = Vector3.UnitScale;

    /// <summary>The colour of faces in modes without materials.</summary>
    public Vector3 FaceColor { get; set; } = new(0.5);

    /// <summary>The colour of edges and outlines.</summary>
    public Vector3 AuxiliaryColor { get; set; }

    /// <summary>Whether the y and the z axis are exchanged.</summary>
    public bool FlipCoordinateSystem { get; set; }

    /// <summary>Whether textures are put into the file.</summary>
    public bool EmbedTextures { get; set; } = true;
}
