namespace Velbor.Voxlar.Formats;

/// <summary>How USD is written.</summary>
public class UsdSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public UsdSaveOptions()
        : base(FileFormat.USD)
    {
    }

    /// <summary>Makes options with their defaults. Names the format.</summary>
    /// <exception cref="System.ArgumentException">The format is of another family.</exception>
    public UsdSaveOptions(FileFormat fileFormat)
        : base(OptionTable.Checked(fileFormat, FileFormatType.USD))
    {
    }

    /// <summary>Whether primitives become meshes.</summary>
    public bool PrimitiveToMesh { get; set; } = true;

    /// <summary>Whether meta data is written.</summary>
    public bool ExportMetaData { get; set; }
}
