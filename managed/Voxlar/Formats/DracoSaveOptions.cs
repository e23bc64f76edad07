namespace Velbor.Voxlar.Formats;

/// <summary>How Draco is written.</summary>
public class DracoSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public DracoSaveOptions()
        : base(FileFormat.Draco)
    {
    }

    /// <summary>Bits of a coordinate.</summary>
    public int PositionBits { get; set; } = 14;

    /// <summary>Bits of a texture coordinate.</summary>
    public int TextureCoordinateBits { get; set; } = 12;

    /// <summary>Bits of a colour channel.</summary>
    public int ColorBits { get; set; } = 10;

    /// <summary>Bits of a normal.</summary>
    public int NormalBits { get; set; } = 10;

    /// <summary>How hard it compresses.</summary>
    public DracoCompressionLevel CompressionLevel { get; set; } = DracoCompressionLevel.Standard;

    /// <summary>Whether the unit of the asset is applied to the positions.</summary>
    public bool ApplyUnitScale { get; set; }

    /// <summary>Whether only the points are written.</summary>
    public bool PointCloud { get; set; }
}
