namespace Velbor.Voxlar.Formats;

/// <summary>How PLY is written.</summary>
public class PlySaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public PlySaveOptions()
        : base(FileFormat.PLY)
    {
    }

    /// <summary>Makes options with their defaults. Names text or binary.</summary>
    public PlySaveOptions(FileContentType contentType)
        : base(FileFormat.PLY) => ContentType = contentType;

    /// <summary>Whether only the points are written.</summary>
    public bool PointCloud { get; set; }

    /// <summary>Whether the y and the z axis are exchanged.</summary>
    public bool FlipCoordinate { get; set; }

    /// <summary>The name of the element of the vertices.</summary>
    public string VertexElement { get; set; } = "vertex";

    /// <summary>The name of the element of the faces.</summary>
    public string FaceElement { get; set; } = "face";

    /// <summary>The name of the index list of a face.</summary>
    public string FaceProperty { get; set; } = "vertex_indices";

    /// <summary>Whether the file is text or binary; binary where the constructor was not told.</summary>
    internal FileContentType ContentType { get; }
}
