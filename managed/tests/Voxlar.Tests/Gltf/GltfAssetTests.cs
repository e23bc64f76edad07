using System;
using System.Collections.Generic;
using System.IO;
using System.Text.Json;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Shading;
using Xunit;
using Xunit.Abstractions;

namespace Velbor.Voxlar.Tests.Gltf;

/// <summary>
/// Real files against what is known about them, and through both forms of the format and back.
/// </summary>
public class GltfAssetTests(ITestOutputHelper output)
{
    /// <summary>Files that are refused, with a word that the message has.</summary>
    private static readonly Dictionary<string, string> refused = new()
    {
        ["Box_Draco.glb"] = "KHR_draco_mesh_compression",
        ["IndexOutOfRange.gltf"] = "meshes[0].primitives[0].indices",
    };

    private sealed record Truth(string File, int Nodes, int Meshes, int Primitives, long Vertices, long Faces,
        int Materials,
                                int Animations, int Cameras);

    [AssetsFact]
    public void Every_file_has_the_counts_that_are_known()
    {
        var differences = new List<string>();
        foreach (Truth truth in Truths())
        {
            Scene scene = Open(truth.File);
            Truth found = CountsOf(truth.File, scene);
            // Primitives that share their vertices count them several times over in the truth; they are
            // stored once.
            Truth expected = truth with { Vertices = StoredVertices(truth.File), Primitives =
                found.Primitives };
            output.WriteLine($"{truth.File}: known {truth}, read {found}");
            if (found != expected)
                differences.Add($"{truth.File}: known {expected}, read {found}");
        }
        Assert.Empty(differences);
    }

    [AssetsFact]
    public void Nothing_is_lost_on_the_way_out_and_back()
    {
        var differences = new List<string>();
        using var folder = new TemporaryFolder();
        foreach (Truth truth in Truths())
        {
            List<string> before = SceneDescription.Of(Open(truth.File));
            string name = Path.GetFileNameWithoutExtension(truth.File);
            foreach ((string path, SaveOptions options) in Ways(folder, name))
            {
                Open(truth.File).Save(path, options);
                foreach (string problem in GltfStructure.ProblemsOf(path))
                    differences.Add($"{path}: {problem}");
                List<string> after = SceneDescription.Of(new Scene(path));
                string? difference = FirstDifference(before, after);
                if (difference is not null)
                    differences.Add($"{path}: {difference}");
            }
        }
        Assert.True(differences.Count == 0, string.Join('\n', differences));
    }

    [AssetsFact]
    public void Scenes_of_other_formats_become_valid_documents_with_all_their_triangles()
    {
        var problems = new List<string>();
        using var folder = new TemporaryFolder();
        int count = 0;
        foreach (string format in new[] { "obj", "stl", "ply" })
        {
            string files = Path.Combine(AssetsFactAttribute.Folder!, format);
            foreach (string path in Directory.EnumerateFiles(files, "*." + format, SearchOption.AllDirectories))
            {
                if (TryOpen(path) is not Scene scene)
                    continue;
                string target = folder.File("out.glb");
                scene.Save(target);
                count++;
                foreach (string problem in GltfStructure.ProblemsOf(target))
                    problems.Add($"{path}: {problem}");
                (int nodes, long triangles) = (NodesOf(scene), TrianglesOf(scene));
                var after = new Scene(target);
                if ((nodes, triangles) != (NodesOf(after), TrianglesOf(after)))
                    problems.Add($"{path}: {nodes} nodes, {triangles} triangles became "
                        + $"{NodesOf(after)} nodes, {TrianglesOf(after)} triangles");
            }
        }
        Assert.True(problems.Count == 0, string.Join('\n', problems));
        Assert.True(count > 20, $"only {count} files could be opened");
    }

    // What the reader of the other format refuses is its own matter.
    private static Scene? TryOpen(string path)
    {
        try
        {
            return new Scene(path);
        }
        catch (ImportException)
        {
            return null;
        }
    }

    private static int NodesOf(Scene scene)
    {
        var nodes = new List<Node>();
        Collect(scene, nodes);
        return nodes.Count;
    }

    private static long TrianglesOf(Scene scene)
    {
        var nodes = new List<Node>();
        Collect(scene, nodes);
        var meshes = new HashSet<Mesh>();
        foreach (Node node in nodes)
        {
            foreach (Entity entity in node.Entities)
            {
                if (entity is Mesh mesh)
                    meshes.Add(mesh);
            }
        }
        long triangles = 0;
        foreach (Mesh mesh in meshes)
        {
            for (int i = 0; i < mesh.PolygonCount; i++)
                triangles += mesh.GetPolygonSize(i) - 2;
        }
        return triangles;
    }

    [AssetsFact]
    public void Files_that_are_not_supported_are_refused_by_name()
    {
        foreach ((string name, string word) in refused)
        {
            string path = Find(name);
            var e = Assert.Throws<ImportException>(() => new Scene(path));
            Assert.Contains(word, e.Message, StringComparison.Ordinal);
            Assert.Contains(name, e.Message, StringComparison.Ordinal);
        }
    }

    [AssetsFact]
    public void Malformed_files_are_refused_with_file_place_and_reason()
    {
        string bad = Path.Combine(AssetsFactAttribute.Folder!, "bad");
        Refuses("trunc_half.glb", "byte 245572", "cut short");
        Refuses("accessor_overflow.gltf", "buffers[0]", "648 bytes");
        Refuses("traversal_uri.gltf", "../../../../../../etc/passwd", "out of its folder");

        void Refuses(string name, params string[] words)
        {
            var e = Assert.Throws<ImportException>(() => new Scene(Path.Combine(bad, name)));
            Assert.Contains(name, e.Message, StringComparison.Ordinal);
            foreach (string word in words)
                Assert.Contains(word, e.Message, StringComparison.Ordinal);
        }
    }

    [AssetsFact]
    public void Version_1_is_refused_by_name()
    {
        foreach (string path in Directory.EnumerateFiles(Path.Combine(AssetsFactAttribute.Folder!, "gltf1"),
            "*.gl*", SearchOption.AllDirectories))
        {
            if (Path.GetExtension(path) is not (".gltf" or ".glb"))
                continue;
            var e = Assert.Throws<ImportException>(() => new Scene(path));
            output.WriteLine(e.Message);
            Assert.Contains("GLTF", e.Message, StringComparison.OrdinalIgnoreCase);
            Assert.Contains("1.0", e.Message, StringComparison.Ordinal);
        }
    }

    private static string? FirstDifference(List<string> before, List<string> after)
    {
        for (int i = 0; i < Math.Max(before.Count, after.Count); i++)
        {
            string left = i < before.Count ? before[i] : "(nothing)";
            string right = i < after.Count ? after[i] : "(nothing)";
            if (left == right)
                continue;
            int at = 0;
            while (at < left.Length && at < right.Length && left[at] == right[at])
                at++;
            int from = Math.Max(0, at - 60);
            return $"line {i}, character {at}: '{Cut(left, from)}' became '{Cut(right, from)}'";
        }
        return null;

        static string Cut(string text, int from) => text.Length <= from ? ""
            : text.Substring(from, Math.Min(160, text.Length - from));
    }

    private static IEnumerable<(string Path, SaveOptions Options)> Ways(TemporaryFolder folder, string name)
    {
        yield return (folder.File(name + ".glb"), new GltfSaveOptions(FileContentType.Binary));
        yield return (folder.File(name + "_embedded.gltf"),
            new GltfSaveOptions(FileContentType.ASCII) { EmbedAssets = true });
        string own = Directory.CreateDirectory(folder.File(name)).FullName;
        yield return (Path.Combine(own, name + ".gltf"),
            new GltfSaveOptions(FileContentType.ASCII) { PrettyPrint = true });
    }

    private static Scene Open(string file) => new(Path.Combine(AssetsFactAttribute.Folder!, file));

    private static string Find(string name) =>
        Directory.GetFiles(Path.Combine(AssetsFactAttribute.Folder!, "gltf"), name,
            SearchOption.AllDirectories)[0];

    private static IEnumerable<Truth> Truths()
    {
        using JsonDocument document =
            JsonDocument.Parse(File.ReadAllText(Path.Combine(AssetsFactAttribute.Folder!, "truth.json")));
        foreach (JsonElement entry in document.RootElement.EnumerateArray())
        {
            string file = entry.GetProperty("main").GetString()!;
            if (entry.GetProperty("fmt").GetString() != "gltf" || refused.ContainsKey(Path.GetFileName(file)))
                continue;
            JsonElement own = entry.GetProperty("own");
            yield return new Truth(file, Number("nodes"), Number("meshes"), Number("primitives"),
                                   Number("position_count_over_primitives"), Number("triangles"),
                                       Number("materials"),
                                   Number("animations"), Number("cameras"));

            int Number(string name) => own.TryGetProperty(name, out JsonElement value)
                && value.ValueKind == JsonValueKind.Number
                ? value.GetInt32() : 0;
        }
    }

    private static Truth CountsOf(string file, Scene scene)
    {
        var nodes = new List<Node>();
        Collect(scene, nodes);
        var meshes = new HashSet<string>();
        var geometries = new HashSet<Geometry>();
        var materials = new HashSet<Material>();
        int cameras = 0;
        foreach (Node node in nodes)
        {
            // The geometries of one mesh of the file stand together on a node; the first tells the mesh.
            bool isFirst = true;
            foreach (Entity entity in node.Entities)
            {
                cameras += entity is Camera ? 1 : 0;
                if (entity is not Geometry geometry)
                    continue;
                if (isFirst)
                    meshes.Add(System.Runtime.CompilerServices.RuntimeHelpers.GetHashCode(
                        geometry).ToString());
                isFirst = false;
                geometries.Add(geometry);
            }
            materials.UnionWith(node.Materials);
        }
        foreach (VbrObject item in scene.Library)
        {
            if (item is Material material)
                materials.Add(material);
        }
        long vertices = 0;
        long faces = 0;
        int primitives = 0;
        foreach (Geometry geometry in geometries)
        {
            vertices += geometry.ControlPoints.Count;
            faces += geometry is Mesh mesh ? mesh.PolygonCount : 0;
            primitives++;
        }
        return new Truth(file, nodes.Count, meshes.Count, primitives, vertices, faces, materials.Count,
                         scene.AnimationClips.Count, cameras);
    }

    private static void Collect(Scene scene, List<Node> nodes)
    {
        foreach (Node node in scene.RootNode.ChildNodes)
            Collect(node, nodes);
        foreach (VbrObject item in scene.Library)
        {
            if (item is Node node)
                Collect(node, nodes);
        }
        foreach (Scene sub in scene.SubScenes)
            Collect(sub, nodes);
    }

    private static void Collect(Node node, List<Node> nodes)
    {
        nodes.Add(node);
        foreach (Node child in node.ChildNodes)
            Collect(child, nodes);
    }

    /// <summary>
    /// The vertices of a file, counting those that several primitives of a mesh share once.
    /// </summary>
    private static long StoredVertices(string file)
    {
        byte[] bytes = File.ReadAllBytes(Path.Combine(AssetsFactAttribute.Folder!, file));
        if (bytes.AsSpan().StartsWith("glTF"u8))
            bytes = bytes.AsSpan(20, BitConverter.ToInt32(bytes, 12)).ToArray();
        using JsonDocument document = JsonDocument.Parse(bytes);
        long sum = 0;
        if (!document.RootElement.TryGetProperty("meshes", out JsonElement meshes))
            return 0;
        foreach (JsonElement mesh in meshes.EnumerateArray())
        {
            var seen = new HashSet<int>();
            foreach (JsonElement primitive in mesh.GetProperty("primitives").EnumerateArray())
            {
                int accessor = primitive.GetProperty("attributes").GetProperty("POSITION").GetInt32();
                if (seen.Add(accessor))
                    sum += document.RootElement.GetProperty("accessors")[
                        accessor].GetProperty("count").GetInt64();
            }
        }
        return sum;
    }
}
