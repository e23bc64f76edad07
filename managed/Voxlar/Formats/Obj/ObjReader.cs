using System.Collections.Generic;
using System.IO;
using Velbor.Voxlar.Formats.Text;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// Reads OBJ with its material libraries.
/// </summary>
/// <remarks>
/// <para>Each object or group with faces becomes a node below the root with a mesh of its name. Groups that
/// have vertices in common stay one mesh, so that there are as many control points as vertices in the file;
/// its polygon groups and the property "obj.groups" tell them apart. Vertices that nothing uses stay with the
/// mesh of the vertices before them. Lines become line entities and points point clouds, on the node of the
/// mesh of their group where there is one, with copies of the points that they share with it. A file of
/// vertices alone is a point cloud.</para>
/// <para>A library that is not there leaves materials that have nothing but their names. Materials that no
/// element uses go to the library of the scene.</para>
/// <para>Not kept: comments, groups without elements, empty space in names, statements of how surfaces are
/// drawn.</para>
/// </remarks>
internal sealed class ObjReader : ISceneReader
{
    public void Read(Stream stream, Scene scene, ReadContext context)
    {
        byte[] data = TextBytes.ToUtf8(context.ReadAll(stream), context);
        ObjLoadOptions options = context.OptionsAs<ObjLoadOptions>();
        ObjFile file = ObjParser.Parse(data, context);
        ObjMaterials materials = new(file.Materials);
        if (options.EnableMaterials)
            ReadLibraries(file.Libraries, materials, context);
        new ObjSceneBuilder(file, materials, options, scene).Build();
        materials.AddUnusedTo(scene.Library);
    }

    private static void ReadLibraries(List<string> libraries, ObjMaterials materials, ReadContext context)
    {
        foreach (string told in libraries)
        {
            // Several names may stand in a line; yet one name may have blanks in it.
            if (told.Length == 0 || TryReadLibrary(told, materials, context))
                continue;
            foreach (string name in told.Split((char[]?)null, System.StringSplitOptions.RemoveEmptyEntries))
                TryReadLibrary(name, materials, context);
        }
    }

    private static bool TryReadLibrary(string told, ObjMaterials materials, ReadContext context)
    {
        string name = ObjFileNames.Inside(told);
        using Stream? stream = name.Length == 0 ? null : context.TryOpenSideFile(name);
        if (stream is null)
            return false;
        byte[] data = TextBytes.ToUtf8(context.ReadAll(stream), context);
        new MtlReader(data, name, materials, context).Read();
        return true;
    }
}
