namespace Velbor.Voxlar.Formats;

/// <summary>How X files are read.</summary>
public class XLoadOptions : LoadOptions
{
    /// <summary>Makes options with their defaults. Names text or binary.</summary>
    public XLoadOptions(FileContentType contentType)
        : base(contentType == FileContentType.ASCII ? FileFormat.XText : FileFormat.XBinary)
    {
    }

    /// <summary>Whether the y and the z axis are exchanged.</summary>
    public bool FlipCoordinateSystem { get; set; }
}
