namespace Velbor.Voxlar.Formats;

/// <summary>How RVM is read.</summary>
public class RvmLoadOptions : LoadOptions
{
    /// <summary>Makes options with their defaults. Names text or binary.</summary>
    public RvmLoadOptions(FileContentType contentType)
        : base(contentType == FileContentType.ASCII ? FileFormat.RvmText : FileFormat.RvmBinary)
    {
    }

    /// <summary>Makes options with their defaults.</summary>
    public RvmLoadOptions()
        : base(null)
    {
    }

    /// <summary>Whether colours become materials.</summary>
    public bool GenerateMaterials { get; set; } = true;

    /// <summary>Segments around a cylinder.</summary>
    public int CylinderRadialSegments { get; set; } = 20;

    /// <summary>Segments around a dish.</summary>
    public int DishLongitudeSegments { get; set; } = 12;

    /// <summary>Segments from the rim of a dish to its top.</summary>
    public int DishLatitudeSegments { get; set; } = 8;

    /// <summary>Segments along a torus.</summary>
    public int TorusTubularSegments { get; set; } = 20;

    /// <summary>Segments along a rectangular torus.</summary>
    public int RectangularTorusSegments { get; set; } = 20;

    /// <summary>Whether the scene is moved to the origin.</summary>
    public bool CenterScene { get; set; }

    /// <summary>Stands before the names of attributes.</summary>
    public string AttributePrefix { get; set; } = "rvm:";

    /// <summary>Whether the attribute file beside the file is read.</summary>
    public bool LookupAttributes { get; set; } = true;
}
