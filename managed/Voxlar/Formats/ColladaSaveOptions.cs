namespace Velbor.Voxlar.Formats;

/// <summary>How COLLADA is written.</summary>
public class ColladaSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public ColladaSaveOptions()
        : base(FileFormat.Collada)
    {
    }

    /// <summary>Whether the XML is indented.</summary>
    public bool Indented { get; set; } = true;

    /// <summary>How transforms are written.</summary>
    public ColladaTransformStyle TransformStyle { get; set; }
}
