namespace Velbor.Voxlar.Formats;

/// <summary>How a scene is written in the web format of this library.</summary>
public class VbrwSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public VbrwSaveOptions()
        : base(FileFormat.Velbor3DWeb)
    {
    }

    /// <summary>Whether meta data is written.</summary>
    public bool ExportMetaData { get; set; } = true;

    /// <summary>Only meta data whose name starts so is written; null for all.</summary>
    public string? MetaDataPrefix { get; set; }
}
