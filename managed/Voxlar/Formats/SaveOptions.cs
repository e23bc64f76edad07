namespace Velbor.Voxlar.Formats;

/// <summary>How a file is written.</summary>
public class SaveOptions : IOConfig
{
    internal SaveOptions(FileFormat? fileFormat)
        : base(fileFormat)
    {
    }

    /// <summary>Whether the textures are written beside the file; false at first.</summary>
    public bool ExportTextures { get; set; }
}
