namespace Velbor.Voxlar.Formats;

/// <summary>How STL is written.</summary>
public class StlSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public StlSaveOptions()
        : base(FileFormat.STLBinary)
    {
    }

    /// <summary>Makes options with their defaults. Names text or binary.</summary>
    public StlSaveOptions(FileContentType contentType)
        : base(contentType == FileContentType.ASCII ? FileFormat.STLASCII : FileFormat.STLBinary)
    {
    }

    /// <summary>Whether the y and the z axis are exchanged.</summary>
    public bool FlipCoordinateSystem { get; set; }
}
