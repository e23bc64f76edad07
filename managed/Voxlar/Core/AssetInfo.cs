using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>What is known about an asset: who made it, when, and in which units and axes.</summary>
public class AssetInfo : VbrObject
{
    /// <summary>Makes a record with an empty name.</summary>
    public AssetInfo()
        : this("")
    {
    }

    /// <summary>Makes a record with a name.</summary>
    public AssetInfo(string name)
        : base(name)
    {
    }

    /// <summary>When the asset was made, or null.</summary>
    public DateTime? CreationTime { get; set; }

    /// <summary>When the asset was last changed, or null.</summary>
    public DateTime? ModificationTime { get; set; }

    /// <summary>The ambient colour with alpha, each from 0 to 1, or null.</summary>
    public Vector4? Ambient { get; set; }

    /// <summary>Where the asset comes from.</summary>
    public string? Url { get; set; }

    /// <summary>Who makes the application that wrote the asset.</summary>
    public string? ApplicationVendor { get; set; }

    /// <summary>The copyright.</summary>
    public string? Copyright { get; set; }

    /// <summary>The application that wrote the asset.</summary>
    public string? ApplicationName { get; set; }

    /// <summary>The version of the application that wrote the asset.</summary>
    public string? ApplicationVersion { get; set; }

    /// <summary>The title.</summary>
    public string? Title { get; set; }

    /// <summary>The subject.</summary>
    public string? Subject { get; set; }

    /// <summary>The author.</summary>
    public string? Author { get; set; }

    /// <summary>Keywords.</summary>
    public string? Keywords { get; set; }

    /// <summary>The revision.</summary>
    public string? Revision { get; set; }

    /// <summary>A comment.</summary>
    public string? Comment { get; set; }

    /// <summary>The name of the unit of length, such as "cm".</summary>
    public string? UnitName { get; set; }

    /// <summary>The unit of length in centimetres; 1 when nothing else is known.</summary>
    public double UnitScaleFactor { get; set; } = 1;

    /// <summary>The handedness, or null when it is not known.</summary>
    public CoordinatedSystem? CoordinatedSystem { get; set; }

    /// <summary>The axis that points up, or null when it is not known.</summary>
    public Axis? UpVector { get; set; }
}
