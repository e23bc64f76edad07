namespace Velbor.Voxlar.Formats;

/// <summary>How AMF is written.</summary>
public class AmfSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public AmfSaveOptions()
        : base(FileFormat.AMF)
    {
    }

    /// <summary>Whether the file is a ZIP archive.</summary>
    public bool EnableCompression { get; set; } = true;
}
