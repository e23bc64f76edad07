namespace Velbor.Voxlar.Formats;

/// <summary>How OBJ is written.</summary>
public class ObjSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public ObjSaveOptions()
        : base(FileFormat.WavefrontOBJ)
    {
    }

    /// <summary>Whether the unit of the asset is applied to the positions.</summary>
    public bool ApplyUnitScale { get; set; }

    /// <summary>Whether only the points are written.</summary>
    public bool PointCloud { get; set; }

    /// <summary>Whether comments are written.</summary>
    public bool Verbose { get; set; }

    /// <summary>Whether w is written for positions.</summary>
    public bool SerializeW { get; set; }

    /// <summary>Whether a material file is written.</summary>
    public bool EnableMaterials { get; set; } = true;

    /// <summary>Whether the y and the z axis are exchanged.</summary>
    public bool FlipCoordinateSystem { get; set; }
}
