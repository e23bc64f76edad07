using System;
using System.Buffers.Binary;
using System.Collections.Generic;
using System.IO;
using System.Text.Json;

namespace Velbor.Voxlar.Tests.Gltf;

/// <summary>
/// Checks a written document against the rules of the format, from its bytes alone: it shares no code with
/// the writer. It gives a list of what is wrong.
/// </summary>
internal sealed class GltfStructure
{
    private static readonly Dictionary<string, int> componentsOf = new()
    {
        ["SCALAR"] = 1, ["VEC2"] = 2, ["VEC3"] = 3, ["VEC4"] = 4, ["MAT2"] = 4, ["MAT3"] = 9, ["MAT4"] = 16,
    };

    private readonly JsonElement root;
    private readonly byte[][] buffers;
    private readonly List<string> problems = [];

    private GltfStructure(JsonElement root, byte[][] buffers)
    {
        this.root = root;
        this.buffers = buffers;
    }

    public static List<string> ProblemsOf(string path)
    {
        byte[] file = File.ReadAllBytes(path);
        string folder = Path.GetDirectoryName(Path.GetFullPath(path))!;
        return ProblemsOf(file, name => File.ReadAllBytes(Path.Combine(folder, name)));
    }

    public static List<string> ProblemsOf(byte[] file, Func<string, byte[]> sideFile)
    {
        var problems = new List<string>();
        byte[]? binary = null;
        byte[] text = file;
        if (file.AsSpan().StartsWith("glTF"u8))
            (text, binary) = SplitContainer(file, problems);
        using JsonDocument document = JsonDocument.Parse(text);
        byte[][] buffers = LoadBuffers(document.RootElement, binary, sideFile, problems);
        var structure = new GltfStructure(document.RootElement, buffers);
        structure.Check();
        problems.AddRange(structure.problems);
        return problems;
    }

    private static (byte[] Json, byte[]? Binary) SplitContainer(byte[] file, List<string> problems)
    {
        if (BinaryPrimitives.ReadUInt32LittleEndian(file.AsSpan(4)) != 2)
            problems.Add("container version is not 2");
        if (BinaryPrimitives.ReadUInt32LittleEndian(file.AsSpan(8)) != file.Length)
            problems.Add("container length differs from the file's");
        byte[]? json = null;
        byte[]? binary = null;
        int at = 12;
        while (at < file.Length)
        {
            int length = BinaryPrimitives.ReadInt32LittleEndian(file.AsSpan(at));
            uint type = BinaryPrimitives.ReadUInt32LittleEndian(file.AsSpan(at + 4));
            if (length % 4 != 0)
                problems.Add("a chunk's length is no multiple of 4");
            byte[] content = file.AsSpan(at + 8, length).ToArray();
            if (json is null && type == 0x4E4F534A)
                json = content;
            else if (binary is null && type == 0x004E4942)
                binary = content;
            else
                problems.Add("an unexpected chunk");
            at += 8 + length;
        }
        return (json!, binary);
    }

    private static byte[][] LoadBuffers(JsonElement root, byte[]? binary, Func<string, byte[]> sideFile,
        List<string> problems)
    {
        if (!root.TryGetProperty("buffers", out JsonElement list))
            return [];
        var buffers = new List<byte[]>();
        foreach (JsonElement buffer in list.EnumerateArray())
        {
            byte[] content = binary ?? [];
            if (buffer.TryGetProperty("uri", out JsonElement uri))
            {
                string text = uri.GetString()!;
                content = text.StartsWith("data:", StringComparison.Ordinal)
                    ? Convert.FromBase64String(text[(text.IndexOf(',') + 1)..])
                        : sideFile(Uri.UnescapeDataString(text));
            }
            int length = buffer.GetProperty("byteLength").GetInt32();
            if (content.Length < length || content.Length > length + 3)
                problems.Add($"a buffer tells {length} bytes and has {content.Length}");
            buffers.Add(content);
        }
        return [.. buffers];
    }

    private void Check()
    {
        if (root.GetProperty("asset").GetProperty("version").GetString() != "2.0")
            problems.Add("the version is not 2.0");
        CheckEmpty(root, "$");
        CheckExtensions();
        CheckViews();
        CheckAccessors();
        // What follows reads the data, which must be there.
        if (problems.Count > 0)
            return;
        CheckNodes();
        CheckMeshes();
        CheckSkins();
        CheckMaterials();
        CheckAnimations();
        CheckScenes();
    }

    private int CountOf(string name) => root.TryGetProperty(name, out JsonElement list)
        ? list.GetArrayLength() : 0;

    private IEnumerable<(JsonElement Item, string Where)> All(string name)
    {
        if (!root.TryGetProperty(name, out JsonElement list))
            yield break;
        int index = 0;
        foreach (JsonElement item in list.EnumerateArray())
            yield return (item, $"{name}[{index++}]");
    }

    private bool Index(JsonElement owner, string name, string array, string where, out int index)
    {
        index = -1;
        if (!owner.TryGetProperty(name, out JsonElement value))
            return false;
        index = value.GetInt32();
        if (index >= 0 && index < CountOf(array))
            return true;
        problems.Add($"{where}.{name}: there is no {array}[{index}]");
        return false;
    }

    private void CheckEmpty(JsonElement value, string where)
    {
        if (value.ValueKind == JsonValueKind.Array)
        {
            if (value.GetArrayLength() == 0)
                problems.Add($"{where}: an empty array");
            int index = 0;
            foreach (JsonElement item in value.EnumerateArray())
                CheckEmpty(item, $"{where}[{index++}]");
        }
        else if (value.ValueKind == JsonValueKind.Object)
        {
            foreach (JsonProperty member in value.EnumerateObject())
            {
                if (member.Name != "extras")
                    CheckEmpty(member.Value, where + "." + member.Name);
            }
        }
    }

    private void CheckExtensions()
    {
        var told = new HashSet<string>();
        if (root.TryGetProperty("extensionsUsed", out JsonElement list))
        {
            foreach (JsonElement name in list.EnumerateArray())
            {
                if (!told.Add(name.GetString()!))
                    problems.Add($"extensionsUsed names {name} twice");
            }
        }
        var used = new HashSet<string>();
        Collect(root, used);
        foreach (string name in used)
        {
            if (!told.Contains(name))
                problems.Add($"the extension {name} is not in extensionsUsed");
        }
        foreach (string name in told)
        {
            if (!used.Contains(name))
                problems.Add($"the extension {name} is told and not used");
        }
    }

    private static void Collect(JsonElement value, HashSet<string> used)
    {
        if (value.ValueKind == JsonValueKind.Array)
        {
            foreach (JsonElement item in value.EnumerateArray())
                Collect(item, used);
        }
        else if (value.ValueKind == JsonValueKind.Object)
        {
            foreach (JsonProperty member in value.EnumerateObject())
            {
                if (member.Name == "extras")
                    continue;
                if (member.Name == "extensions")
                {
                    foreach (JsonProperty extension in member.Value.EnumerateObject())
                        used.Add(extension.Name);
                }
                Collect(member.Value, used);
            }
        }
    }

    private void CheckViews()
    {
        foreach ((JsonElement view, string where) in All("bufferViews"))
        {
            if (!Index(view, "buffer", "buffers", where, out int buffer))
                continue;
            long offset = Number(view, "byteOffset", 0);
            long length = Number(view, "byteLength", -1);
            if (length < 1 || offset + length > buffers[buffer].Length)
                problems.Add($"{where}: does not fit into its buffer");
            long stride = Number(view, "byteStride", 4);
            if (stride < 4 || stride > 252 || stride % 4 != 0)
                problems.Add($"{where}: a stride of {stride}");
        }
    }

    private static long Number(JsonElement owner, string name, long otherwise) =>
        owner.TryGetProperty(name, out JsonElement value) ? value.GetInt64() : otherwise;

    private static int SizeOf(int componentType) =>
        componentType switch { 5120 or 5121 => 1, 5122 or 5123 => 2, _ => 4 };

    private void CheckAccessors()
    {
        foreach ((JsonElement accessor, string where) in All("accessors"))
        {
            if (!Index(accessor, "bufferView", "bufferViews", where, out int viewIndex))
                continue;
            JsonElement view = root.GetProperty("bufferViews")[viewIndex];
            int componentType = accessor.GetProperty("componentType").GetInt32();
            if (componentType is not (5120 or 5121 or 5122 or 5123 or 5125 or 5126))
                problems.Add($"{where}: component type {componentType}");
            int components = componentsOf[accessor.GetProperty("type").GetString()!];
            int size = components * SizeOf(componentType);
            long offset = Number(accessor, "byteOffset", 0);
            long stride = Number(view, "byteStride", size);
            long count = accessor.GetProperty("count").GetInt64();
            if (count < 1)
                problems.Add($"{where}: no elements");
            if (stride < size || offset + stride * (count - 1)
                + size > view.GetProperty("byteLength").GetInt64())
                problems.Add($"{where}: does not fit into its view");
            if ((offset + Number(view, "byteOffset", 0)) % SizeOf(componentType) != 0)
                problems.Add($"{where}: not aligned");
            if (accessor.TryGetProperty("min", out JsonElement least))
                CheckBounds(Floats(accessor), components, least, accessor.GetProperty("max"), where);
        }
    }

    private void CheckBounds(double[] values, int components, JsonElement least, JsonElement most,
        string where)
    {
        for (int k = 0; k < components; k++)
        {
            double low = double.PositiveInfinity;
            double high = double.NegativeInfinity;
            for (int i = k; i < values.Length; i += components)
            {
                low = Math.Min(low, values[i]);
                high = Math.Max(high, values[i]);
            }
            if (low != least[k].GetDouble() || high != most[k].GetDouble())
                problems.Add($"{where}: bounds of component {k} are {least[k]} to {most[k]}, should be {low} to {high}");
        }
    }

    /// <summary>All components of an accessor.</summary>
    private double[] Floats(JsonElement accessor)
    {
        JsonElement view = root.GetProperty("bufferViews")[accessor.GetProperty("bufferView").GetInt32()];
        byte[] buffer = buffers[view.GetProperty("buffer").GetInt32()];
        int componentType = accessor.GetProperty("componentType").GetInt32();
        int components = componentsOf[accessor.GetProperty("type").GetString()!];
        int componentSize = SizeOf(componentType);
        long stride = Number(view, "byteStride", components * componentSize);
        long start = Number(view, "byteOffset", 0) + Number(accessor, "byteOffset", 0);
        int count = accessor.GetProperty("count").GetInt32();
        var values = new double[count * components];
        for (int i = 0; i < values.Length; i++)
        {
            ReadOnlySpan<byte> at =
                buffer.AsSpan((int)(start + i / components * stride + i % components * componentSize));
            values[i] = componentType switch
            {
                5120 => (sbyte)at[0],
                5121 => at[0],
                5122 => BinaryPrimitives.ReadInt16LittleEndian(at),
                5123 => BinaryPrimitives.ReadUInt16LittleEndian(at),
                5125 => BinaryPrimitives.ReadUInt32LittleEndian(at),
                _ => BinaryPrimitives.ReadSingleLittleEndian(at),
            };
        }
        return values;
    }

    private void CheckNodes()
    {
        var parents = new Dictionary<int, string>();
        foreach ((JsonElement node, string where) in All("nodes"))
        {
            Index(node, "mesh", "meshes", where, out _);
            Index(node, "camera", "cameras", where, out _);
            if (Index(node, "skin", "skins", where, out _) && !node.TryGetProperty("mesh", out _))
                problems.Add($"{where}: a skin without a mesh");
            bool hasParts = node.TryGetProperty("translation", out _)
                || node.TryGetProperty("rotation", out _)
                || node.TryGetProperty("scale", out _);
            if (hasParts && node.TryGetProperty("matrix", out _))
                problems.Add($"{where}: matrix and parts");
            if (node.TryGetProperty("rotation", out JsonElement rotation))
            {
                double length = 0;
                foreach (JsonElement part in rotation.EnumerateArray())
                    length += part.GetDouble() * part.GetDouble();
                if (Math.Abs(Math.Sqrt(length) - 1) > 0.0001)
                    problems.Add($"{where}: the rotation has no length of 1");
            }
            if (!node.TryGetProperty("children", out JsonElement children))
                continue;
            foreach (JsonElement child in children.EnumerateArray())
            {
                if (child.GetInt32() >= CountOf("nodes"))
                    problems.Add($"{where}: there is no child {child}");
                if (!parents.TryAdd(child.GetInt32(), where))
                    problems.Add($"{where}: node {child} has two parents");
            }
        }
    }

    private void CheckMeshes()
    {
        foreach ((JsonElement mesh, string where) in All("meshes"))
        {
            int targets = -1;
            foreach (JsonElement primitive in mesh.GetProperty("primitives").EnumerateArray())
            {
                CheckPrimitive(primitive, where);
                int own = primitive.TryGetProperty("targets", out JsonElement list) ? list.GetArrayLength()
                    : 0;
                if (targets >= 0 && targets != own)
                    problems.Add($"{where}: primitives with {targets} and {own} targets");
                targets = own;
            }
            if (mesh.TryGetProperty("weights", out JsonElement weights)
                && weights.GetArrayLength() != targets)
                problems.Add($"{where}: {weights.GetArrayLength()} weights for {targets} targets");
        }
    }

    private void CheckPrimitive(JsonElement primitive, string where)
    {
        Index(primitive, "material", "materials", where, out _);
        JsonElement attributes = primitive.GetProperty("attributes");
        long vertices = CheckAttributes(attributes, where, -1, false);
        if (primitive.TryGetProperty("targets", out JsonElement targets))
        {
            foreach (JsonElement target in targets.EnumerateArray())
                CheckAttributes(target, where + ".targets", vertices, true);
        }
        int mode = (int)Number(primitive, "mode", 4);
        long corners = vertices;
        if (Index(primitive, "indices", "accessors", where, out int index))
        {
            JsonElement accessor = root.GetProperty("accessors")[index];
            int type = accessor.GetProperty("componentType").GetInt32();
            double restart = type switch { 5121 => 255, 5123 => 65535, 5125 => uint.MaxValue, _ => -1 };
            if (restart < 0 || accessor.GetProperty("type").GetString() != "SCALAR")
                problems.Add($"{where}: indices of component type {type}");
            foreach (double value in Floats(accessor))
            {
                if (value >= vertices || value == restart)
                    problems.Add($"{where}: index {value} for {vertices} vertices");
            }
            corners = accessor.GetProperty("count").GetInt64();
        }
        bool fits = mode switch { 4 => corners % 3 == 0, 1 => corners % 2 == 0, 0 => true, 2 or 3 =>
            corners > 1, _ => corners > 2 };
        if (!fits)
            problems.Add($"{where}: {corners} corners for mode {mode}");
    }

    private long CheckAttributes(JsonElement attributes, string where, long vertices, bool isTarget)
    {
        foreach (JsonProperty attribute in attributes.EnumerateObject())
        {
            int index = attribute.Value.GetInt32();
            if (index >= CountOf("accessors"))
            {
                problems.Add($"{where}.{attribute.Name}: there is no accessor {index}");
                continue;
            }
            JsonElement accessor = root.GetProperty("accessors")[index];
            long count = accessor.GetProperty("count").GetInt64();
            if (vertices >= 0 && vertices != count)
                problems.Add($"{where}.{attribute.Name}: {count} values for {vertices} vertices");
            vertices = count;
            if (attribute.Name == "POSITION" && !accessor.TryGetProperty("min", out _))
                problems.Add($"{where}: POSITION without bounds");
            CheckValues(attribute.Name, accessor, where, isTarget);
        }
        if (!isTarget && !attributes.TryGetProperty("POSITION", out _))
            problems.Add($"{where}: no POSITION");
        if (!isTarget && attributes.TryGetProperty("TANGENT", out _)
            && !attributes.TryGetProperty("NORMAL", out _))
            problems.Add($"{where}: TANGENT without NORMAL");
        return vertices;
    }

    private void CheckValues(string semantic, JsonElement accessor, string where, bool isTarget)
    {
        string type = accessor.GetProperty("type").GetString()!;
        int componentType = accessor.GetProperty("componentType").GetInt32();
        (string Type, int ComponentType)? expected = semantic.Split('_')[0] switch
        {
            "POSITION" or "NORMAL" => ("VEC3", 5126),
            "TANGENT" => (isTarget ? "VEC3" : "VEC4", 5126),
            "TEXCOORD" => ("VEC2", 5126),
            "WEIGHTS" => ("VEC4", 5126),
            _ => null,
        };
        if (expected is not null && expected != (type, componentType))
            problems.Add($"{where}.{semantic}: {type} of {componentType}");
        if (semantic.StartsWith("JOINTS_", StringComparison.Ordinal)
            && (type != "VEC4" || componentType is not (5121 or 5123)))
            problems.Add($"{where}.{semantic}: {type} of {componentType}");
        double[] values = Floats(accessor);
        foreach (double value in values)
        {
            if (!double.IsFinite(value))
            {
                problems.Add($"{where}.{semantic}: {value}");
                break;
            }
        }
        if (isTarget || semantic is not ("NORMAL" or "TANGENT"))
            return;
        int components = componentsOf[type];
        for (int i = 0; i < values.Length; i += components)
        {
            double length = Math.Sqrt(values[i] * values[i] + values[i + 1] * values[i + 1]
                + values[i + 2] * values[i + 2]);
            if (Math.Abs(length - 1) > 0.0068)
                problems.Add($"{where}.{semantic}: element {i / components} has length {length}");
            if (semantic == "TANGENT" && Math.Abs(values[i + 3]) != 1)
                problems.Add($"{where}.{semantic}: element {i / components} has sign {values[i + 3]}");
        }
    }

    private void CheckSkins()
    {
        foreach ((JsonElement skin, string where) in All("skins"))
        {
            Index(skin, "skeleton", "nodes", where, out _);
            var joints = new HashSet<int>();
            foreach (JsonElement joint in skin.GetProperty("joints").EnumerateArray())
            {
                if (joint.GetInt32() >= CountOf("nodes") || !joints.Add(joint.GetInt32()))
                    problems.Add($"{where}: joint {joint}");
            }
            if (!Index(skin, "inverseBindMatrices", "accessors", where, out int index))
                continue;
            JsonElement accessor = root.GetProperty("accessors")[index];
            if (accessor.GetProperty("type").GetString() != "MAT4"
                || accessor.GetProperty("count").GetInt32() < joints.Count)
                problems.Add($"{where}: the bind matrices");
        }
    }

    private void CheckMaterials()
    {
        foreach ((JsonElement material, string where) in All("materials"))
            CheckTextures(material, where);
        foreach ((JsonElement texture, string where) in All("textures"))
        {
            Index(texture, "sampler", "samplers", where, out _);
            Index(texture, "source", "images", where, out _);
        }
        foreach ((JsonElement image, string where) in All("images"))
        {
            bool hasView = Index(image, "bufferView", "bufferViews", where, out _);
            if (hasView == image.TryGetProperty("uri", out _))
                problems.Add($"{where}: needs either a URI or a view");
            if (hasView && !image.TryGetProperty("mimeType", out _))
                problems.Add($"{where}: no media type");
        }
    }

    private void CheckTextures(JsonElement value, string where)
    {
        if (value.ValueKind != JsonValueKind.Object)
            return;
        foreach (JsonProperty member in value.EnumerateObject())
        {
            if (member.Name == "extras")
                continue;
            if (member.Name.EndsWith("Texture", StringComparison.Ordinal)
                && member.Value.ValueKind == JsonValueKind.Object)
                Index(member.Value, "index", "textures", where + "." + member.Name, out _);
            bool isFactor = member.Name.EndsWith("Factor", StringComparison.Ordinal);
            if (isFactor && member.Value.ValueKind == JsonValueKind.Number && member.Value.GetDouble() is < 0
                or > 1)
                problems.Add($"{where}.{member.Name}: {member.Value}");
            CheckTextures(member.Value, where + "." + member.Name);
        }
    }

    private void CheckAnimations()
    {
        foreach ((JsonElement animation, string where) in All("animations"))
        {
            JsonElement samplers = animation.GetProperty("samplers");
            var targets = new HashSet<string>();
            foreach (JsonElement channel in animation.GetProperty("channels").EnumerateArray())
            {
                JsonElement target = channel.GetProperty("target");
                string path = target.GetProperty("path").GetString()!;
                if (!targets.Add(target.GetProperty("node") + path))
                    problems.Add($"{where}: a target twice");
                if (Index(target, "node", "nodes", where, out int node) && path != "weights"
                    && root.GetProperty("nodes")[node].TryGetProperty("matrix", out _))
                    problems.Add($"{where}: node {node} has a matrix and is animated");
                if (channel.GetProperty("sampler").GetInt32() >= samplers.GetArrayLength())
                    problems.Add($"{where}: there is no sampler {channel.GetProperty("sampler")}");
                else
                    CheckSampler(samplers[channel.GetProperty("sampler").GetInt32()], path, node, where);
            }
        }
    }

    private void CheckSampler(JsonElement sampler, string path, int node, string where)
    {
        if (!Index(sampler, "input", "accessors", where, out int input)
            || !Index(sampler, "output", "accessors", where, out int output))
            return;
        JsonElement times = root.GetProperty("accessors")[input];
        JsonElement values = root.GetProperty("accessors")[output];
        if (!times.TryGetProperty("min", out _))
            problems.Add($"{where}: key times without bounds");
        double last = double.NegativeInfinity;
        foreach (double time in Floats(times))
        {
            if (time <= last || time < 0)
                problems.Add($"{where}: key time {time} after {last}");
            last = time;
        }
        bool cubic = sampler.TryGetProperty("interpolation", out JsonElement told)
            && told.GetString() == "CUBICSPLINE";
        int perKey = 1;
        if (path == "weights")
        {
            JsonElement mesh =
                root.GetProperty("meshes")[root.GetProperty("nodes")[node].GetProperty("mesh").GetInt32()];
            perKey = mesh.GetProperty("primitives")[0].GetProperty("targets").GetArrayLength();
        }
        long expected = times.GetProperty("count").GetInt64() * perKey * (cubic ? 3 : 1);
        if (values.GetProperty("count").GetInt64() != expected)
            problems.Add($"{where}: {values.GetProperty("count")} values, {expected} are needed");
        string type = path switch { "rotation" => "VEC4", "weights" => "SCALAR", _ => "VEC3" };
        if (values.GetProperty("type").GetString() != type)
            problems.Add($"{where}: {path} with {values.GetProperty("type")}");
    }

    private void CheckScenes()
    {
        Index(root, "scene", "scenes", "$", out _);
        var children = new HashSet<int>();
        foreach ((JsonElement node, _) in All("nodes"))
        {
            if (!node.TryGetProperty("children", out JsonElement list))
                continue;
            foreach (JsonElement child in list.EnumerateArray())
                children.Add(child.GetInt32());
        }
        foreach ((JsonElement scene, string where) in All("scenes"))
        {
            if (!scene.TryGetProperty("nodes", out JsonElement nodes))
                continue;
            foreach (JsonElement node in nodes.EnumerateArray())
            {
                if (node.GetInt32() >= CountOf("nodes") || children.Contains(node.GetInt32()))
                    problems.Add($"{where}: node {node} is no root");
            }
        }
    }
}
