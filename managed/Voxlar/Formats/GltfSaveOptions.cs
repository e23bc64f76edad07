using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats;

/// <summary>How glTF is written.</summary>
public class GltfSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults. Takes glTF 2.0.</summary>
    public GltfSaveOptions(FileContentType contentType)
        : base(contentType == FileContentType.ASCII ? FileFormat.GLTF2 : FileFormat.GLTF2_Binary)
    {
    }

    /// <summary>Makes options with their defaults. Names version and content.</summary>
    /// <exception cref="System.ArgumentException">The format is of another family.</exception>
    public GltfSaveOptions(FileFormat format)
        : base(OptionTable.Checked(format, FileFormatType.GLTF))
    {
    }

    /// <summary>Whether the JSON is indented.</summary>
    public bool PrettyPrint { get; set; }

    /// <summary>The normal of vertices without one; null leaves normals out.</summary>
    public Vector3? FallbackNormal { get; set; }

    /// <summary>Whether buffers and images are put into the file.</summary>
    public bool EmbedAssets { get; set; }

    /// <summary>The format of embedded images.</summary>
    public GltfEmbeddedImageFormat ImageFormat { get; set; }

    /// <summary>Whether the common-materials extension is used.</summary>
    public bool UseCommonMaterials { get; set; }

    /// <summary>The program that compresses meshes; null for none.</summary>
    public string? ExternalDracoEncoder { get; set; }

    /// <summary>Whether v is flipped, so that it grows downwards in the file.</summary>
    public bool FlipTexCoordV { get; set; } = true;

    /// <summary>The name of the buffer file; null for the name of the scene file.</summary>
    public string? BufferFile { get; set; }

    /// <summary>Whether added properties are written as extras; true at first, so that none is
    /// lost.</summary>
    public bool SaveExtras { get; set; } = true;

    /// <summary>Whether the unit of the asset is applied to the scene.</summary>
    public bool ApplyUnitScale { get; set; }

    /// <summary>Whether meshes are compressed with Draco.</summary>
    public bool DracoCompression { get; set; }
}
