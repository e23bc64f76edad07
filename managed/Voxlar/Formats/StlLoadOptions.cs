namespace Velbor.Voxlar.Formats;

/// <summary>How STL is read.</summary>
public class StlLoadOptions : LoadOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public StlLoadOptions()
        : base(null)
    {
    }

    /// <summary>Makes options with their defaults. Names text or binary.</summary>
    public StlLoadOptions(FileContentType contentType)
        : base(contentType == FileContentType.ASCII ? FileFormat.STLASCII : FileFormat.STLBinary)
    {
    }

    /// <summary>Whether the y and the z axis are exchanged.</summary>
    public bool FlipCoordinateSystem { get; set; }

    /// <summary>Whether normals are computed from the triangles.</summary>
    public bool RecalculateNormal { get; set; }
}
