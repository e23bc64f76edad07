using System;
using System.Diagnostics;
using System.IO;
using System.Text;
using Xunit;

namespace Velbor.Voxlar.Tests.Gltf;

/// <summary>
/// Malformed and hostile documents: an exception with the file, the place and the reason, and nothing else.
/// </summary>
public class GltfBadInputTests
{
    private const string Asset = """ "asset": {"version": "2.0"} """;

    private const string Buffer12 = """
        "buffers": [{"byteLength": 12, "uri": "data:;base64,AAAAAAAAAAAAAAAA"}], "bufferViews": [{"buffer": 0, "byteLength": 12}]
        """;

    private const string MeshNode = """ "nodes": [{"mesh": 0}], "scenes": [{"nodes": [0]}], "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}] """;

    [Theory]
    [InlineData("{\"asset\": {\"version\": \"2.0\"},\n \"nodes\": [}", "line 2", "not valid JSON")]
    [InlineData("{\"asset\": {\"version\": \"2.0\"}", "line 1", "not valid JSON")]
    [InlineData("{}", "\"asset\" is missing", "")]
    [InlineData("{\"asset\": {}}", "asset", "\"version\" is missing")]
    [InlineData("{\"asset\": {\"version\": \"3.0\"}}", "asset.version", "\"3.0\"")]
    [InlineData("{\"asset\": {\"version\": \"2.0\", \"minVersion\": \"2.1\"}}", "asset.minVersion", "2.1")]
    [InlineData("{" + Asset + ", \"extensionsRequired\": [\"X_unknown\"]}", "extensionsRequired[0]",
        "X_unknown")]
    [InlineData("{" + Asset + ", \"nodes\": 5}", "nodes", "an array is expected")]
    [InlineData("{" + Asset + ", \"nodes\": [7]}", "nodes[0]", "an object is expected")]
    [InlineData("{" + Asset + ", \"nodes\": [{\"children\": [9]}]}", "nodes[0].children[0]",
        "there is no node 9")]
    [InlineData("{" + Asset + ", \"nodes\": [{\"children\": [-1]}]}", "nodes[0].children[0]", "whole number")]
    [InlineData("{" + Asset + ", \"nodes\": [{\"children\": [0]}]}", "nodes[0].children", "below itself")]
    [InlineData("{" + Asset + ", \"nodes\": [{\"children\": [1]}, {\"children\": [0]}]}", "children",
        "below itself")]
    [InlineData("{" + Asset + ", \"nodes\": [{\"children\": [2]}, {\"children\": [2]}, {}]}",
        "nodes[1].children", "child of node 0")]
    [InlineData("{" + Asset + ", \"nodes\": [{\"matrix\": [1, 2]}]}", "nodes[0].matrix",
        "16 numbers are expected, 2")]
    [InlineData("{" + Asset + ", \"nodes\": [{\"translation\": [1, 2, \"x\"]}]}", "nodes[0].translation[2]",
        "a number is expected")]
    [InlineData("{" + Asset + ", \"nodes\": [{\"translation\": [1, 2, 1e999]}]}", "nodes[0].translation[2]",
        "out of range")]
    [InlineData("{" + Asset + ", \"nodes\": [{\"mesh\": 3}], \"scenes\": [{\"nodes\": [0]}]}",
        "nodes[0].mesh", "there is no mesh 3")]
    [InlineData("{" + Asset + ", \"nodes\": [{\"children\": [1]}, {}], \"scenes\": [{\"nodes\": [1]}]}",
        "scenes[0].nodes[0]", "cannot be the root")]
    [InlineData("{" + Asset + ", \"scene\": 4, \"scenes\": [{}]}", "scene", "there is no scene 4")]
    [InlineData("{" + Asset + "," + MeshNode + "}", "meshes[0].primitives[0].attributes.POSITION",
        "there is no accessor 0")]
    [InlineData("{" + Asset + "," + MeshNode
        + ", \"accessors\": [{\"componentType\": 5126, \"count\": 2147483647, \"type\": \"VEC3\"}]}",
        "accessors[0].count", "without a buffer view")]
    [InlineData("{" + Asset + "," + MeshNode + "," + Buffer12
        + ", \"accessors\": [{\"bufferView\": 0, \"componentType\": 5126, \"count\": 2, \"type\": \"VEC3\"}]}", "accessors[0]", "do not fit")]
    [InlineData("{" + Asset + "," + MeshNode + "," + Buffer12
        + ", \"accessors\": [{\"bufferView\": 0, \"componentType\": 5126, \"count\": 2147483647, \"byteOffset\": 2147483647, \"type\": \"VEC3\"}]}", "accessors[0]", "do not fit")]
    [InlineData("{" + Asset + "," + MeshNode + "," + Buffer12
        + ", \"accessors\": [{\"bufferView\": 0, \"componentType\": 5126, \"count\": 9223372036854775807, \"type\": \"VEC3\"}]}", "accessors[0]", "do not fit")]
    [InlineData("{" + Asset + "," + MeshNode + "," + Buffer12
        + ", \"accessors\": [{\"bufferView\": 0, \"componentType\": 77, \"count\": 1, \"type\": \"VEC3\"}]}",
        "accessors[0].componentType", "77")]
    [InlineData("{" + Asset + "," + MeshNode + "," + Buffer12
        + ", \"accessors\": [{\"bufferView\": 0, \"componentType\": 5126, \"count\": 1, \"type\": \"VEC9\"}]}", "accessors[0].type", "VEC9")]
    [InlineData("{" + Asset + "," + MeshNode + "," + Buffer12
        + ", \"accessors\": [{\"bufferView\": 0, \"componentType\": 5126, \"count\": 3, \"type\": \"SCALAR\"}]}", "POSITION", "3 are expected")]
    [InlineData("{" + Asset + "," + MeshNode + "," + Buffer12
        + ", \"accessors\": [{\"bufferView\": 0, \"componentType\": 5126, \"count\": 1, \"type\": \"VEC3\"}]}", "primitives[0]", "whole triangles")]
    [InlineData("{" + Asset + "," + MeshNode
        + ", \"buffers\": [{\"byteLength\": 12, \"uri\": \"data:;base64,A*AA\"}], \"bufferViews\": [{\"buffer\": 0, \"byteLength\": 12}], \"accessors\": [{\"bufferView\": 0, \"componentType\": 5126, \"count\": 1, \"type\": \"VEC3\"}]}", "buffers[0].uri", "base64")]
    [InlineData("{" + Asset + "," + MeshNode
        + ", \"buffers\": [{\"byteLength\": 12}], \"bufferViews\": [{\"buffer\": 0, \"byteLength\": 12}], \"accessors\": [{\"bufferView\": 0, \"componentType\": 5126, \"count\": 1, \"type\": \"VEC3\"}]}", "buffers[0]", "no URI")]
    [InlineData("{" + Asset + "," + MeshNode
        + ", \"buffers\": [{\"byteLength\": 12, \"uri\": \"http://example.org/a.bin\"}], \"bufferViews\": [{\"buffer\": 0, \"byteLength\": 12}], \"accessors\": [{\"bufferView\": 0, \"componentType\": 5126, \"count\": 1, \"type\": \"VEC3\"}]}", "buffers[0].uri", "only files beside")]
    [InlineData("{" + Asset + "," + MeshNode
        + ", \"buffers\": [{\"byteLength\": 12, \"uri\": \"%2e%2e/secret.bin\"}], \"bufferViews\": [{\"buffer\": 0, \"byteLength\": 12}], \"accessors\": [{\"bufferView\": 0, \"componentType\": 5126, \"count\": 1, \"type\": \"VEC3\"}]}", "../secret.bin", "out of its folder")]
    [InlineData("{" + Asset + "," + MeshNode
        + ", \"buffers\": [{\"byteLength\": 12, \"uri\": \"none.bin\"}], \"bufferViews\": [{\"buffer\": 0, \"byteLength\": 12}], \"accessors\": [{\"bufferView\": 0, \"componentType\": 5126, \"count\": 1, \"type\": \"VEC3\"}]}", "none.bin", "not found")]
    [InlineData("{" + Asset + ", \"materials\": [{\"normalTexture\": {\"index\": 0}}]}",
        "materials[0].normalTexture.index", "there is no texture 0")]
    [InlineData("{" + Asset + ", \"cameras\": [{\"type\": \"fisheye\"}]}", "cameras[0].type", "fisheye")]
    [InlineData("{" + Asset
        + ", \"animations\": [{\"channels\": [{\"sampler\": 0, \"target\": {\"node\": 0, \"path\": \"scale\"}}]}]}", "animations[0].channels[0].sampler", "there is no sampler 0")]
    public void Is_refused_with_file_place_and_reason(string text, string place, string reason)
    {
        var e = Assert.Throws<ImportException>(() => GltfSample.OpenText(text));
        Assert.Contains("sample.gltf", e.Message, StringComparison.Ordinal);
        Assert.Contains(place, e.Message, StringComparison.Ordinal);
        Assert.Contains(reason, e.Message, StringComparison.Ordinal);
    }

    [Theory]
    [InlineData(8, "header")]
    [InlineData(16, "cut short")]
    public void A_container_that_is_cut_short_is_refused(int length, string reason)
    {
        byte[] file = Container("{\"asset\":{\"version\":\"2.0\"}}");
        var e = Assert.Throws<ImportException>(() => OpenBytes(file[..length]));
        Assert.Contains("byte", e.Message, StringComparison.Ordinal);
        Assert.Contains(reason, e.Message, StringComparison.Ordinal);
    }

    [Fact]
    public void A_chunk_longer_than_the_container_is_refused()
    {
        byte[] file = Container("{\"asset\":{\"version\":\"2.0\"}}");
        BitConverter.TryWriteBytes(file.AsSpan(12), uint.MaxValue);
        var e = Assert.Throws<ImportException>(() => OpenBytes(file));
        Assert.Contains("byte 12", e.Message, StringComparison.Ordinal);
        Assert.Contains("4294967295 bytes", e.Message, StringComparison.Ordinal);
    }

    [Fact]
    public void A_deep_hierarchy_is_refused()
    {
        var nodes = new StringBuilder();
        for (int i = 0; i < 5000; i++)
            nodes.Append(i < 4999 ? $"{{\"children\": [{i + 1}]}}," : "{}");
        var e = Assert.Throws<ImportException>(() =>
            GltfSample.OpenText("{" + Asset + ", \"nodes\": [" + nodes + "]}"));
        Assert.Contains("deep", e.Message, StringComparison.Ordinal);
    }

    [Fact]
    public void Deep_JSON_is_refused()
    {
        string deep = new string('[', 5000) + new string(']', 5000);
        var e = Assert.Throws<ImportException>(() =>
            GltfSample.OpenText("{" + Asset + ", \"extras\": " + deep + "}"));
        Assert.Contains("line 1", e.Message, StringComparison.Ordinal);
    }

    [Fact]
    public void A_small_file_that_asks_for_much_memory_is_refused()
    {
        var meshes = new StringBuilder();
        var nodes = new StringBuilder();
        for (int i = 0; i < 500; i++)
        {
            meshes.Append(i == 0 ? ""
                : ",").Append("{\"primitives\": [{\"attributes\": {\"POSITION\": 0}, \"mode\": 0}]}");
            nodes.Append(i == 0 ? "" : ",").Append($"{{\"mesh\": {i}}}");
        }
        long before = GC.GetTotalAllocatedBytes();
        var e = Assert.Throws<ImportException>(() => GltfSample.OpenText("{" + Asset + $$$$$"""
            , "accessors": [{"componentType": 5126, "count": 1000000, "type": "VEC3"}], "meshes": [{{{{{meshes}}}}}], "nodes": [{{{{{nodes}}}}}] }
            """));
        Assert.Contains("far more data than it holds", e.Message, StringComparison.Ordinal);
        Assert.True(GC.GetTotalAllocatedBytes() - before < 1L << 30);
    }

    /// <summary>
    /// Single bytes of a valid document are changed; it opens or is refused, and nothing else happens.
    /// </summary>
    [Theory]
    [InlineData(1)]
    [InlineData(2)]
    [InlineData(3)]
    public void Changed_bytes_never_do_more_than_be_refused(int seed)
    {
        byte[] original = Rich();
        var random = new Random(seed);
        var clock = Stopwatch.StartNew();
        for (int round = 0; round < 400 && clock.Elapsed.TotalSeconds < 20; round++)
        {
            byte[] file = (byte[])original.Clone();
            int changes = random.Next(1, 6);
            for (int i = 0; i < changes; i++)
            {
                int at = random.Next(file.Length);
                file[at] = random.Next(3) == 0 ? (byte)random.Next(256)
                    : (byte)"0123456789-.,[]{}\"e"[random.Next(19)];
            }
            if (random.Next(10) == 0)
                file = file[..random.Next(file.Length)];
            try
            {
                OpenBytes(file);
            }
            catch (ImportException)
            {
            }
        }
    }

    private static byte[] Rich()
    {
        var sample = new GltfSample();
        int position = sample.Triangle();
        int times = sample.Floats("SCALAR", 0, 1);
        int turns = sample.Floats("VEC4", 0, 0, 0, 1, 0, 1, 0, 0);
        string text = sample.Text($$$$$"""
            "scenes": [{"nodes": [0, 1]}], "scene": 0, "extras": {"a": 1},
            "nodes": [{"mesh": 0, "skin": 0, "rotation": [0, 0, 0, 1]}, {"name": "j", "children": [2], "camera": 0}, {"name": "k"}],
            "skins": [{"joints": [1, 2]}], "cameras": [{"type": "perspective", "perspective": {"yfov": 1.0, "znear": 0.5}}],
            "meshes": [{"primitives": [{"attributes": {"POSITION": {{{{{position}}}}}, "JOINTS_0": {{{{{sample.Bytes("VEC4", false, new byte[12])}}}}},
              "WEIGHTS_0": {{{{{sample.Floats("VEC4", new float[12])}}}}}}, "indices": {{{{{sample.Bytes("SCALAR", false, 0, 1, 2)}}}}}, "material": 0,
              "targets": [{"POSITION": {{{{{position}}}}}}]}]}],
            "materials": [{"alphaMode": "MASK", "normalTexture": {"index": 0, "texCoord": 0}}], "textures": [{"source": 0, "sampler": 0}],
            "images": [{"bufferView": 0, "mimeType": "image/png"}], "samplers": [{"wrapS": 10497, "minFilter": 9729}],
            "animations": [{"samplers": [{"input": {{{{{times}}}}}, "output": {{{{{turns}}}}}}], "channels": [{"sampler": 0, "target": {"node": 1, "path": "rotation"}}]}]
            """);
        return Encoding.UTF8.GetBytes(text);
    }

    private static byte[] Container(string json)
    {
        byte[] text = Encoding.UTF8.GetBytes(json.PadRight((json.Length + 3) & ~3));
        byte[] file = new byte[20 + text.Length];
        "glTF"u8.CopyTo(file);
        BitConverter.TryWriteBytes(file.AsSpan(4), 2);
        BitConverter.TryWriteBytes(file.AsSpan(8), file.Length);
        BitConverter.TryWriteBytes(file.AsSpan(12), text.Length);
        "JSON"u8.CopyTo(file.AsSpan(16));
        text.CopyTo(file, 20);
        return file;
    }

    private static void OpenBytes(byte[] file)
    {
        using var folder = new TemporaryFolder();
        string path = folder.File("bytes.gltf");
        File.WriteAllBytes(path, file);
        new Scene().Open(path, new Velbor.Voxlar.Formats.GltfLoadOptions());
    }
}
