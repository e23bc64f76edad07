using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Text.Json;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Tests.Gltf;
using Velbor.Voxlar.Utilities;
using Xunit;
using Xunit.Abstractions;

namespace Velbor.Voxlar.Tests.Formats;

/// <summary>
/// Real files of OBJ, STL and PLY against what is known about them, and through each other's formats.
/// </summary>
public class GeometryAssetTests(ITestOutputHelper output)
{
    private static readonly (string Name, FileFormat Format, Func<SaveOptions> Options)[] Targets =
    [
        ("obj", FileFormat.WavefrontOBJ, () => new ObjSaveOptions { ExportTextures = true }),
        ("stl text", FileFormat.STLASCII, () => new StlSaveOptions(FileContentType.ASCII)),
        ("stl binary", FileFormat.STLBinary, () => new StlSaveOptions()),
        ("ply text", FileFormat.PLY, () => new PlySaveOptions(FileContentType.ASCII)),
        ("ply binary", FileFormat.PLY, () => new PlySaveOptions()),
        ("glb", FileFormat.GLTF2_Binary, () => new GltfSaveOptions(FileFormat.GLTF2_Binary)),
    ];

    [AssetsFact]
    public void Every_STL_and_PLY_file_has_the_counts_that_are_known()
    {
        List<string> differences = [];
        foreach (JsonElement truth in Truths("stl", "ply"))
        {
            string file = truth.GetProperty("main").GetString()!;
            JsonElement own = truth.GetProperty("own");
            Counts found = Counts.Of(Open(file));
            bool isStl = file.StartsWith("stl/", StringComparison.Ordinal);
            int facets = isStl ? own.GetProperty("facets").GetInt32() : 0;
            Counts known = isStl
                ? new Counts(Solids(own, facets), facets * 3, facets, facets, 0)
                : new Counts(Math.Min(1, own.GetProperty("vertex").GetInt32()), own.GetProperty("vertex").GetInt32(),
                    own.TryGetProperty("face", out JsonElement face) ? face.GetInt32() : 0, found.Triangles, found.Segments);
            output.WriteLine($"{file}: {found}");
            if (found != known)
                differences.Add($"{file}: known {known}, read {found}");
            if (isStl && own.TryGetProperty("nonzero_attribute_words", out JsonElement words)
                && words.GetInt32() != Words(Open(file)))
                differences.Add($"{file}: known words {words}");
        }
        Assert.True(differences.Count == 0, string.Join('\n', differences));
    }

    [AssetsFact]
    public void Nothing_that_a_target_can_hold_is_lost()
    {
        List<string> files = [];
        foreach (JsonElement truth in Truths("obj", "stl", "ply"))
            files.Add(Path.Combine(AssetsFactAttribute.Folder!, truth.GetProperty("main").GetString()!));
        Check(files);
    }

    [Fact]
    public void Nothing_of_the_small_files_is_lost() =>
        Check(Directory.GetFiles(Path.Combine(AppContext.BaseDirectory, "data"))
            .Where(file => Path.GetExtension(file) is ".obj" or ".stl" or ".ply"));

    [AssetsFact]
    public void Malformed_files_are_refused_with_file_place_and_reason()
    {
        Refuses("header_only.stl", "byte 84");
        Refuses("count_4g.stl", "byte 84: 4294967295 facets");
        Refuses("negative_count.ply", "line 3: ");
        Refuses("face_list_255.ply", "byte ");

        static void Refuses(string name, string place)
        {
            var e = Assert.Throws<ImportException>(() => Open("bad/" + name));
            Assert.Contains(name, e.Message);
            Assert.Contains(place, e.Message);
        }
    }

    private void Check(IEnumerable<string> files)
    {
        List<string> differences = [];
        foreach (string file in files)
        {
            foreach ((string name, FileFormat format, Func<SaveOptions> options) in Targets)
            {
                string? difference = Compare(file, format, options());
                output.WriteLine($"{Path.GetFileName(file)} to {name}: {difference ?? "the same"}");
                if (difference is not null && !difference.StartsWith("refused: ", StringComparison.Ordinal))
                    differences.Add($"{file} to {name}: {difference}");
            }
        }
        Assert.True(differences.Count == 0, string.Join('\n', differences));
    }

    private static string? Compare(string file, FileFormat format, SaveOptions options)
    {
        Scene before = new(file);
        bool hasLines = before.RootNode.ChildNodes.Any(node => node.Entities.Any(e => e is not Mesh));
        Scene after;
        try
        {
            after = SceneContent.SaveAndRead(before, format, options);
        }
        catch (ExportException e) when (format.FileFormatType == FileFormatType.STL && hasLines)
        {
            return "refused: " + e.Message;
        }
        if (Path.GetExtension(file).Equals(format.Extension, StringComparison.OrdinalIgnoreCase)
            && (format.FileFormatType != FileFormatType.STL || format.ContentType == FileContentType.Binary != IsText(file)))
            return FirstDifference(SceneContent.Of(before, SceneContent.Parts.All), SceneContent.Of(after, SceneContent.Parts.All));
        Counts wanted = Counts.Of(before);
        Counts found = Counts.Of(after);
        if (format.FileFormatType == FileFormatType.STL)
        {
            wanted = wanted with { Points = wanted.Triangles * 3, Polygons = wanted.Triangles };
            // A binary file is one solid.
            wanted = wanted with { Entities = format == FileFormat.STLBinary ? Math.Min(1, wanted.Triangles) : wanted.Entities };
        }
        else if (format == FileFormat.PLY)
        {
            wanted = wanted with { Entities = found.Entities };
        }
        else if (format == FileFormat.GLTF2_Binary)
        {
            // Vertices are told apart by their attributes there, polygons are triangles, and points that
            // nothing shows and nodes without content are left out.
            wanted = wanted with { Points = found.Points, Entities = found.Entities, Polygons = found.Polygons, Segments = found.Segments };
        }
        if (wanted != found)
            return $"was {wanted}, is {found}";
        return format == FileFormat.GLTF2_Binary ? null : SameBox(before, after, format.FileFormatType == FileFormatType.STL);
    }

    private static string? SameBox(Scene before, Scene after, bool isStl)
    {
        BoundingBox wanted = BoxOf(before, isStl);
        BoundingBox found = BoxOf(after, isStl);
        double size = Math.Max(Math.Abs(wanted.Maximum.x), Math.Abs(wanted.Minimum.x)) + wanted.Size.Length * 2;
        bool isSame = wanted.Equals(found) || ((wanted.Minimum - found.Minimum).Length <= size * 1e-6
            && (wanted.Maximum - found.Maximum).Length <= size * 1e-6);
        return isSame || after.RootNode.ChildNodes.Count == 0 ? null : $"the box was {wanted}, is {found}";
    }

    // An STL file has the points of polygons only.
    private static BoundingBox BoxOf(Scene scene, bool isOfPolygons)
    {
        if (!isOfPolygons)
            return scene.RootNode.GetBoundingBox();
        Mesh all = new();
        foreach (Node node in scene.RootNode.ChildNodes)
        {
            foreach (Mesh mesh in node.Entities.OfType<Mesh>())
            {
                foreach (int corner in mesh.PolygonStore.Corners)
                    all.ControlPoints.Add(mesh.ControlPoints[corner]);
            }
        }
        return all.GetBoundingBox();
    }

    private static bool IsText(string file)
    {
        byte[] data = File.ReadAllBytes(file);
        return !(data.Length >= 84 && data.Length == 84 + 50L * BitConverter.ToUInt32(data, 80));
    }

    private static string? FirstDifference(List<string> before, List<string> after)
    {
        for (int i = 0; i < Math.Max(before.Count, after.Count); i++)
        {
            string wanted = i < before.Count ? before[i] : "nothing";
            string found = i < after.Count ? after[i] : "nothing";
            if (wanted != found)
                return $"line {i}: was {Shorten(wanted)}, is {Shorten(found)}";
        }
        return null;
    }

    private static string Shorten(string text) => text.Length > 300 ? text[..300] + "..." : text;

    private static Scene Open(string file) => new(Path.Combine(AssetsFactAttribute.Folder!, file));

    private static int Solids(JsonElement own, int facets) =>
        facets == 0 ? 0 : own.TryGetProperty("solids", out JsonElement solids) ? solids.GetInt32() : 1;

    private static int Words(Scene scene) => ((Mesh)scene.RootNode.ChildNodes[0].Entity!)
        .GetProperty("stl.attributes") is int[] words ? words.Count(word => word != 0) : 0;

    private static IEnumerable<JsonElement> Truths(params string[] formats)
    {
        string text = File.ReadAllText(Path.Combine(AssetsFactAttribute.Folder!, "truth.json"));
        return JsonDocument.Parse(text).RootElement.EnumerateArray()
            .Where(truth => formats.Contains(truth.GetProperty("fmt").GetString()));
    }

    // Of meshes and clouds that have points; points of lines and clouds beside a mesh are copies of it and do
    // not count.
    private sealed record Counts(int Entities, int Points, int Polygons, int Triangles, int Segments)
    {
        public static Counts Of(Scene scene)
        {
            Counts counts = new(0, 0, 0, 0, 0);
            Stack<Node> open = new([scene.RootNode]);
            while (open.TryPop(out Node? node))
            {
                HashSet<Vector4> seen = [];
                foreach (Entity entity in node.Entities)
                {
                    IList<Vector4> points = entity is Line l ? l.ControlPoints : ((Geometry)entity).ControlPoints;
                    counts = counts with { Entities = counts.Entities + (entity is Line || points.Count == 0 ? 0 : 1) };
                    counts = counts with
                    {
                        Points = counts.Points + (seen.Count == 0 ? points.Count : points.Count(p => !seen.Contains(p))),
                    };
                    seen.UnionWith(points);
                    if (entity is Line line)
                        counts = counts with { Segments = counts.Segments + line.Segments.Sum(segment => segment.Length - 1) };
                    if (entity is Mesh mesh)
                        counts = counts with
                        {
                            Polygons = counts.Polygons + mesh.PolygonCount,
                            Triangles = counts.Triangles + MeshTriangles.Cut(mesh).Polygons.Count,
                        };
                }
                foreach (Node child in node.ChildNodes)
                    open.Push(child);
            }
            return counts;
        }
    }
}
