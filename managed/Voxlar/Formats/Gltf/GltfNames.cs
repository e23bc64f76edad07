using System;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Names of extensions, and of the dynamic properties and texture slots that carry what the classes have no
/// member for.
/// </summary>
internal static class GltfNames
{
    internal const string LightsPunctual = "KHR_lights_punctual";
    internal const string TextureTransform = "KHR_texture_transform";
    internal const string MeshQuantization = "KHR_mesh_quantization";
    internal const string SpecularGlossiness = "KHR_materials_pbrSpecularGlossiness";
    internal const string MaterialsCommon = "KHR_materials_common";
    internal const string MaterialsSpecular = "KHR_materials_specular";
    internal const string NodeVisibility = "KHR_node_visibility";
    internal const string WebpImages = "EXT_texture_webp";
    internal const string BasisImages = "KHR_texture_basisu";
    internal const string MeshoptCompression = "EXT_meshopt_compression";
    internal const string Draco = "KHR_draco_mesh_compression";

    internal const string AlphaMode = "AlphaMode";
    internal const string AlphaCutoff = "AlphaCutoff";
    internal const string DoubleSided = "DoubleSided";
    internal const string NormalScale = "NormalScale";
    internal const string TexCoord = "TexCoord";
    internal const string ImageName = "ImageName";
    internal const string Range = "Range";
    internal const string SkeletonRoot = "SkeletonRoot";
    internal const string MaterialIndex = "MaterialIndex";
    internal const string EntityName = "entityName";
    internal const string EntityExtras = "entityExtras";
    internal const string PrimitiveExtras = "PrimitiveExtras";
    internal const string FreeAspectRatio = "FreeAspectRatio";

    /// <summary>
    /// Extras that are no JSON object stand under this name, since they have no names of their own.
    /// </summary>
    internal const string Extras = "extras";

    /// <summary>
    /// Extensions that a file may require: what they mean is understood, or their data is carried on as it
    /// is.
    /// </summary>
    internal static bool IsUnderstood(string extension) => extension is
        LightsPunctual or TextureTransform or MeshQuantization or SpecularGlossiness or MaterialsSpecular
        or NodeVisibility or WebpImages or BasisImages or MaterialsCommon or MeshoptCompression
        || IsCarriedMaterialExtension(extension);

    // Only their values and textures matter, and both survive as dynamic properties and texture slots.
    private static bool IsCarriedMaterialExtension(string extension) => extension is
        "KHR_materials_unlit" or "KHR_materials_clearcoat" or "KHR_materials_transmission"
        or "KHR_materials_volume" or "KHR_materials_ior" or "KHR_materials_sheen"
        or "KHR_materials_iridescence" or "KHR_materials_anisotropy" or "KHR_materials_dispersion"
        or "KHR_materials_emissive_strength" or "KHR_materials_diffuse_transmission";

    /// <summary>
    /// Whether a property's or slot's name begins with the name of an extension, such as
    /// "KHR_materials_ior.ior".
    /// </summary>
    internal static bool TrySplitExtension(string name, out string extension, out string member)
    {
        int dot = name.IndexOf('.', StringComparison.Ordinal);
        extension = dot < 0 ? name : name[..dot];
        member = dot < 0 ? string.Empty : name[(dot + 1)..];
        int underscore = extension.IndexOf('_', StringComparison.Ordinal);
        if (underscore < 2 || underscore == extension.Length - 1)
            return false;
        foreach (char c in extension.AsSpan(0, underscore))
        {
            if (!char.IsAsciiLetterUpper(c) && !char.IsAsciiDigit(c))
                return false;
        }
        return true;
    }
}
