namespace Velbor.Voxlar.Formats;

/// <summary>How FBX is read.</summary>
public class FbxLoadOptions : LoadOptions
{
    /// <summary>Makes options with their defaults. Names the version that is expected.</summary>
    /// <exception cref="System.ArgumentException">The format is of another family.</exception>
    public FbxLoadOptions(FileFormat format)
        : base(OptionTable.Checked(format, FileFormatType.FBX))
    {
    }

    /// <summary>Makes options with their defaults.</summary>
    public FbxLoadOptions()
        : base(null)
    {
    }

    /// <summary>Whether the global settings are kept as properties of the scene.</summary>
    public bool KeepBuiltinGlobalSettings { get; set; }
}
