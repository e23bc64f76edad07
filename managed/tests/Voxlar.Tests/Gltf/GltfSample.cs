using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Formats;

namespace Velbor.Voxlar.Tests.Gltf;

/// <summary>A small document made by a test: JSON written by hand, and data for its accessors.</summary>
internal sealed class GltfSample
{
    private readonly MemoryStream buffer = new();
    private readonly JsonArray views = [];
    private readonly JsonArray accessors = [];

    /// <summary>The accessor of single-precision numbers.</summary>
    public int Floats(string type, params float[] values) =>
        Add(type, 5126, MemoryMarshal.AsBytes(values.AsSpan()), values.Length, false);

    public int Bytes(string type, bool normalized, params byte[] values) =>
        Add(type, 5121, values, values.Length, normalized);

    public int Shorts(string type, bool normalized, params ushort[] values) =>
        Add(type, 5123, MemoryMarshal.AsBytes(values.AsSpan()), values.Length, normalized);

    public int SignedShorts(string type, bool normalized, params short[] values) =>
        Add(type, 5122, MemoryMarshal.AsBytes(values.AsSpan()), values.Length, normalized);

    public int Integers(params uint[] values) =>
        Add("SCALAR", 5125, MemoryMarshal.AsBytes(values.AsSpan()), values.Length, false);

    /// <summary>An accessor told by hand.</summary>
    public int Accessor(string json)
    {
        accessors.Add(JsonNode.Parse(json));
        return accessors.Count - 1;
    }

    public int View(ReadOnlySpan<byte> bytes)
    {
        while (buffer.Length % 4 != 0)
            buffer.WriteByte(0);
        views.Add((JsonNode)new JsonObject { ["buffer"] = 0, ["byteOffset"] = buffer.Length, ["byteLength"] =
            bytes.Length });
        buffer.Write(bytes);
        return views.Count - 1;
    }

    /// <summary>A view whose bytes are compressed.</summary>
    public int Compressed(byte[] bytes, int stride, int count, string mode, string filter = "NONE")
    {
        int index = View(bytes);
        var view = (JsonObject)views[index]!;
        JsonNode offset = view["byteOffset"]!.DeepClone();
        view["byteLength"] = stride * count;
        view["byteOffset"] = 0;
        view["extensions"] = new JsonObject
        {
            ["EXT_meshopt_compression"] = new JsonObject
            {
                ["buffer"] = 0, ["byteOffset"] = offset, ["byteLength"] = bytes.Length, ["byteStride"] =
                    stride,
                ["count"] = count, ["mode"] = mode, ["filter"] = filter,
            },
        };
        return index;
    }

    private int Add(string type, int componentType, ReadOnlySpan<byte> bytes, int count, bool normalized)
    {
        int components = type switch { "SCALAR" => 1, "VEC2" => 2, "VEC3" => 3, "MAT4" => 16, _ => 4 };
        var accessor = new JsonObject
        {
            ["bufferView"] = View(bytes), ["componentType"] = componentType, ["count"] = count / components,
                ["type"] = type,
        };
        if (normalized)
            accessor["normalized"] = true;
        accessors.Add((JsonNode)accessor);
        return accessors.Count - 1;
    }

    /// <summary>The text of the document, its buffer as a data URI.</summary>
    /// <param name="members">The members beside asset, accessors, views and buffers: the inside of an
    /// object.</param>
    public string Text(string members)
    {
        string inside = members.Trim();
        var root = (JsonObject)JsonNode.Parse("{" + inside + "}")!;
        root["asset"] ??= new JsonObject { ["version"] = "2.0" };
        if (accessors.Count > 0)
            root["accessors"] = accessors.DeepClone();
        if (views.Count > 0)
        {
            root["bufferViews"] = views.DeepClone();
            root["buffers"] = new JsonArray(new JsonObject
            {
                ["byteLength"] = buffer.Length,
                ["uri"] = "data:application/octet-stream;base64," + Convert.ToBase64String(buffer.ToArray()),
            });
        }
        return root.ToJsonString();
    }

    public Scene Open(string members, GltfLoadOptions? options = null) => OpenText(Text(members), options);

    public static Scene OpenText(string text, GltfLoadOptions? options = null)
    {
        using var folder = new TemporaryFolder();
        string path = folder.File("sample.gltf");
        File.WriteAllText(path, text);
        var scene = new Scene();
        scene.Open(path, options ?? new GltfLoadOptions());
        return scene;
    }

    /// <summary>A triangle in the plane of x and y, its positions as an accessor.</summary>
    public int Triangle() => Floats("VEC3", 0, 0, 0, 1, 0, 0, 0, 1, 0);

    /// <summary>Saves in both forms, holds what was written against the rules, and opens it again.</summary>
    public static IEnumerable<Scene> ThroughBothForms(Scene scene, Action<GltfSaveOptions>? set = null)
    {
        foreach (FileContentType form in new[] { FileContentType.Binary, FileContentType.ASCII })
        {
            var options = new GltfSaveOptions(form);
            set?.Invoke(options);
            yield return Through(scene, options, out _);
        }
    }

    public static Scene Through(Scene scene, GltfSaveOptions options, out JsonObject document)
    {
        using var folder = new TemporaryFolder();
        bool isBinary = options.FileFormat!.ContentType == FileContentType.Binary;
        string path = folder.File(isBinary ? "out.glb" : "out.gltf");
        scene.Save(path, options);
        List<string> problems = GltfStructure.ProblemsOf(path);
        Xunit.Assert.True(problems.Count == 0, string.Join('\n', problems));
        byte[] file = File.ReadAllBytes(path);
        byte[] text = isBinary ? file.AsSpan(20, BitConverter.ToInt32(file, 12)).ToArray() : file;
        document = (JsonObject)JsonNode.Parse(Encoding.UTF8.GetString(text))!;
        return new Scene(path);
    }
}
