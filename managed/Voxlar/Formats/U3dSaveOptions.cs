namespace Velbor.Voxlar.Formats;

/// <summary>How U3D is written.</summary>
public class U3dSaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public U3dSaveOptions()
        : base(FileFormat.Universal3D)
    {
    }

    /// <summary>Whether the y and the z axis are exchanged.</summary>
    public bool FlipCoordinateSystem { get; set; }

    /// <summary>Whether meshes are compressed.</summary>
    public bool MeshCompression { get; set; } = true;

    /// <summary>Whether normals are written.</summary>
    public bool ExportNormals { get; set; } = true;

    /// <summary>Whether texture coordinates are written.</summary>
    public bool ExportTextureCoordinates { get; set; } = true;

    /// <summary>Whether diffuse vertex colours are written.</summary>
    public bool ExportVertexDiffuse { get; set; } = true;

    /// <summary>Whether specular vertex colours are written.</summary>
    public bool ExportVertexSpecular { get; set; } = true;

    /// <summary>Whether textures are put into the file.</summary>
    public bool EmbedTextures { get; set; } = true;
}
