namespace Velbor.Voxlar.Formats;

/// <summary>How 3DS is written.</summary>
public class Discreet3dsSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public Discreet3dsSaveOptions()
        : base(FileFormat.Discreet3DS)
    {
    }

    /// <summary>Whether lights are written.</summary>
    public bool ExportLight { get; set; } = true;

    /// <summary>Whether cameras are written.</summary>
    public bool ExportCamera { get; set; } = true;

    /// <summary>Stands between a doubled name and its counter.</summary>
    public string DuplicatedNameSeparator { get; set; } = "_";

    /// <summary>The counter of the first doubled name.</summary>
    public int DuplicatedNameCounterBase { get; set; } = 2;

    /// <summary>The number format of the counter; empty for the plain one.</summary>
    public string DuplicatedNameCounterFormat { get; set; } = "";

    /// <summary>The scale of the whole file.</summary>
    public double MasterScale { get; set; } = 1;

    /// <summary>Whether colours are gamma-corrected.</summary>
    public bool GammaCorrectedColor { get; set; }

    /// <summary>Whether the y and the z axis are exchanged.</summary>
    public bool FlipCoordinateSystem { get; set; }

    /// <summary>Whether colours are written as singles in place of bytes.</summary>
    public bool HighPreciseColor { get; set; }
}
