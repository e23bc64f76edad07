namespace Velbor.Voxlar.Formats;

/// <summary>How OBJ is read.</summary>
public class ObjLoadOptions : LoadOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public ObjLoadOptions()
        : base(FileFormat.WavefrontOBJ)
    {
    }

    /// <summary>Whether the y and the z axis are exchanged.</summary>
    public bool FlipCoordinateSystem { get; set; }

    /// <summary>Whether the material file is read.</summary>
    public bool EnableMaterials { get; set; } = true;

    /// <summary>The factor for all positions.</summary>
    public double Scale { get; set; } = 1;

    /// <summary>Whether normals get the length 1.</summary>
    public bool NormalizeNormal { get; set; } = true;
}
