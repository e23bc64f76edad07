using System.IO;
using System.Text;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats;

namespace Velbor.Voxlar.Tests.Formats.Obj;

/// <summary>Scenes from the text of an OBJ file, with its libraries in memory.</summary>
internal static class ObjText
{
    public static Scene Read(string text, ObjLoadOptions? options = null) =>
        Read(Encoding.UTF8.GetBytes(text), options);

    public static Scene Read(byte[] data, ObjLoadOptions? options = null)
    {
        Scene scene = new();
        using MemoryStream stream = new(data);
        SceneLoader.Load(scene, stream, null, options ?? new ObjLoadOptions());
        return scene;
    }

    public static Mesh MeshOf(Node node) => (Mesh)node.Entity!;

    public static Mesh OnlyMesh(Scene scene) => MeshOf(Xunit.Assert.Single(scene.RootNode.ChildNodes));
}
