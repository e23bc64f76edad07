namespace Velbor.Voxlar.Formats.Ply;

/// <summary>
/// The names of PLY, and of the dynamic properties in which values of PLY files stand that the scene has no
/// other place for: "ply.", the element, "." and the property hold an array of the type of the property, or
/// an array of arrays.
/// </summary>
internal static class PlyNames
{
    public const string Prefix = "ply.";

    /// <summary>On the geometry: string[], the comments.</summary>
    public const string Comments = "ply:comments";

    /// <summary>On the geometry: string[], the lines of obj_info.</summary>
    public const string Infos = "ply:obj_info";

    public const string Vertex = "vertex";
    public const string Face = "face";
    public const string Edge = "edge";
    public const string Strips = "tristrips";

    /// <summary>On faces: the texture coordinates of the corners, two or three for each.</summary>
    public const string CornerTexCoords = "texcoord";

    /// <summary>On faces: the normals of the corners, three for each.</summary>
    public const string CornerNormals = "normal";

    /// <summary>On faces: the colours of the corners, four for each.</summary>
    public const string CornerColors = "color";

    public static readonly string[] Positions = ["x", "y", "z"];
    public static readonly string[] Normals = ["nx", "ny", "nz"];
    public static readonly string[] Colors = ["red", "green", "blue", "alpha"];
    public static readonly string[] OtherColors = ["r", "g", "b", "a"];
    public static readonly string[] DiffuseColors =
        ["diffuse_red", "diffuse_green", "diffuse_blue", "diffuse_alpha"];
    public static readonly string[] TexCoords = ["s", "t"];
    public static readonly string[] OtherTexCoords = ["u", "v"];
    public static readonly string[] LongTexCoords = ["texture_u", "texture_v"];
    public static readonly string[] LongOtherTexCoords = ["texture_s", "texture_t"];
    public static readonly string[] Indices = ["vertex_indices", "vertex_index"];
}
