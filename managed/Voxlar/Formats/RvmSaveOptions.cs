namespace Velbor.Voxlar.Formats;

/// <summary>How RVM is written.</summary>
public class RvmSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public RvmSaveOptions()
        : base(FileFormat.RvmBinary)
    {
    }

    /// <summary>Makes options with their defaults. Names text or binary.</summary>
    public RvmSaveOptions(FileContentType contentType)
        : base(contentType == FileContentType.ASCII ? FileFormat.RvmText : FileFormat.RvmBinary)
    {
    }

    /// <summary>The note in the header.</summary>
    public string? FileNote { get; set; }

    /// <summary>The author in the header; null for the asset's.</summary>
    public string? Author { get; set; }

    /// <summary>The time in the header; null for the present one.</summary>
    public string? CreationTime { get; set; }

    /// <summary>Properties whose name starts so are attributes.</summary>
    public string AttributePrefix { get; set; } = "rvm:";

    /// <summary>The name of the attribute file; null for the name of the file.</summary>
    public string? AttributeListFile { get; set; }

    /// <summary>Whether attributes are written.</summary>
    public bool ExportAttributes { get; set; } = true;
}
