namespace Velbor.Voxlar.Formats;

/// <summary>How FBX is written.</summary>
public class FbxSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults. Names the version.</summary>
    /// <exception cref="System.ArgumentException">The format is of another family.</exception>
    public FbxSaveOptions(FileFormat format)
        : base(OptionTable.Checked(format, FileFormatType.FBX))
    {
    }

    /// <summary>Makes options with their defaults. Takes version 7.5.</summary>
    public FbxSaveOptions(FileContentType contentType)
        : base(contentType == FileContentType.ASCII ? FileFormat.FBX7500ASCII : FileFormat.FBX7500Binary)
    {
    }

    /// <summary>Whether equal primitives share one mesh.</summary>
    public bool ReusePrimitiveMesh { get; set; }

    /// <summary>Whether large arrays are compressed.</summary>
    public bool EnableCompression { get; set; } = true;

    /// <summary>Whether repeated curve data is written once.</summary>
    public bool FoldRepeatedCurveData { get; set; } = true;

    /// <summary>Whether material properties of old readers are written too.</summary>
    public bool ExportLegacyMaterialProperties { get; set; } = true;

    /// <summary>Whether a video object is written for each texture.</summary>
    public bool VideoForTexture { get; set; }

    /// <summary>Whether textures are put into the file.</summary>
    public bool EmbedTextures { get; set; }

    /// <summary>Whether every mesh gets a material element.</summary>
    public bool GenerateVertexElementMaterial { get; set; }
}
