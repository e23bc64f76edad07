namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// The names of the dynamic properties in which values of OBJ files stand that the scene has no other place
/// for.
/// </summary>
internal static class ObjNames
{
    /// <summary>
    /// On an entity that is called after a group: the name of its object, empty where it has none.
    /// </summary>
    public const string Object = "obj.object";

    /// <summary>On a mesh: string[], the group names; the polygon group element has places in it.</summary>
    public const string Groups = "obj.groups";

    /// <summary>On a mesh: string[], the object of each of the groups, empty where it has none.</summary>
    public const string GroupObjects = "obj.groupObjects";

    /// <summary>On a mesh: int[], the smoothing group of each polygon, where a number is over 32.</summary>
    public const string SmoothingGroups = "obj.smoothingGroups";

    /// <summary>On a point cloud: int[][], the points of each of its statements.</summary>
    public const string Points = "obj.points";

    /// <summary>
    /// On a line or point cloud: the name of its material, where that is not the first of its node.
    /// </summary>
    public const string Material = "obj.material";

    /// <summary>On a line: double[], u, v and w of the corners of all segments.</summary>
    public const string TexCoords = "obj.texCoords";

    /// <summary>
    /// Before the key of a material library: on materials and textures, the raw value of a key.
    /// </summary>
    public const string Mtl = "mtl.";

    /// <summary>In the place of the name of a material: elements from here on have none.</summary>
    public const string NoMaterial = "(null)";

    /// <summary>The slot of the bump texture.</summary>
    public const string BumpSlot = "Bump";

    /// <summary>
    /// The index of a corner without texture coordinate or normal: it points beyond all values, which is how
    /// vertex elements tell that there is none.
    /// </summary>
    public const int NoValue = int.MaxValue;
}
