using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Text.Json;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Tests.Gltf;
using Velbor.Voxlar.Utilities;
using Xunit;
using Xunit.Abstractions;

namespace Velbor.Voxlar.Tests.Formats.Obj;

/// <summary>Real files against what is known about them.</summary>
public class ObjAssetTests(ITestOutputHelper output)
{
    [AssetsFact]
    public void Every_file_has_the_counts_that_are_known()
    {
        List<string> differences = [];
        foreach (JsonElement truth in Truths("obj"))
        {
            string file = truth.GetProperty("main").GetString()!;
            JsonElement own = truth.GetProperty("own");
            string[] known = Array.ConvertAll(
                ["v", "vt", "vn", "faces", "lines", "points", "materials_used"],
                (string name) => $"{name} {own.GetProperty(name).GetInt32()}");
            Scene scene = new(Path.Combine(AssetsFactAttribute.Folder!, file));
            string[] found = CountsOf(scene);
            output.WriteLine($"{file}: {string.Join(", ", found)}");
            for (int i = 0; i < known.Length; i++)
            {
                // Texture coordinates and normals that several meshes use are copied to each of them.
                bool mayGrow = i is 1 or 2 && scene.RootNode.ChildNodes.Count > 1;
                if (known[i] != found[i] && !(mayGrow && NumberOf(found[i]) > NumberOf(known[i])))
                    differences.Add($"{file}: known {known[i]}, read {found[i]}");
            }
        }
        Assert.True(differences.Count == 0, string.Join('\n', differences));
    }

    [AssetsFact]
    public void Indices_out_of_range_are_refused_with_file_line_and_reason()
    {
        string file = Path.Combine(AssetsFactAttribute.Folder!, "bad", "index_oob.obj");
        var e = Assert.Throws<ImportException>(() => new Scene(file));
        Assert.Contains("index_oob.obj', line ", e.Message);
        Assert.Contains("vertex", e.Message);
    }

    internal static IEnumerable<JsonElement> Truths(string format)
    {
        string text = File.ReadAllText(Path.Combine(AssetsFactAttribute.Folder!, "truth.json"));
        return JsonDocument.Parse(text).RootElement.EnumerateArray()
            .Where(truth => truth.GetProperty("fmt").GetString() == format);
    }

    private static int NumberOf(string count) =>
        int.Parse(count.AsSpan(count.IndexOf(' ') + 1), System.Globalization.CultureInfo.InvariantCulture);

    // Vertices of meshes and clouds; those of lines and points that a mesh beside them has too count once.
    private static string[] CountsOf(Scene scene)
    {
        int v = 0;
        int vt = 0;
        int vn = 0;
        int faces = 0;
        int lines = 0;
        int points = 0;
        HashSet<Material> materials = [];
        foreach (Node node in scene.RootNode.ChildNodes)
        {
            HashSet<Vector4> seen = [];
            foreach (Entity entity in node.Entities)
            {
                IList<Vector4> positions = entity is Line l ? l.ControlPoints : ((Geometry)entity).ControlPoints;
                v += entity is Mesh || seen.Count == 0 ? positions.Count : positions.Count(p => !seen.Contains(p));
                seen.UnionWith(positions);
                if (entity is Geometry geometry)
                {
                    vt += geometry.VertexElements.OfType<VertexElementUV>().Sum(uv => uv.Data.Count);
                    vn += geometry.VertexElements.OfType<VertexElementNormal>().Sum(normal => normal.Data.Count);
                }
                faces += (entity as Mesh)?.PolygonCount ?? 0;
                lines += (entity as Line)?.Segments.Count ?? 0;
                points += (entity.GetProperty("obj.points") as int[][])?.Length ?? 0;
            }
            materials.UnionWith(node.Materials);
        }
        return [$"v {v}", $"vt {vt}", $"vn {vn}", $"faces {faces}", $"lines {lines}", $"points {points}",
            $"materials_used {materials.Count}"];
    }
}
