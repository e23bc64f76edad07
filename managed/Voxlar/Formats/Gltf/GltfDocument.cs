using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;
using System.Text.Encodings.Web;
using System.Text.Json;
using System.Text.Json.Nodes;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// The document that is being written: its top-level arrays, its binary data and the extensions it uses.
/// Equal data is stored once: an accessor over the same bytes in the same form is the same accessor.
/// </summary>
internal sealed class GltfDocument
{
    private const int ArrayBuffer = 34962;
    private const int ElementArrayBuffer = 34963;

    // The order in which the arrays stand in the file; empty ones are left out.
    private static readonly string[] ArrayNames =
    [
        "scenes", "nodes", "meshes", "skins", "animations", "cameras", "materials", "textures", "images",
        "samplers",
        "accessors", "bufferViews",
    ];

    private readonly Dictionary<string, JsonArray> _arrays = [];
    private readonly Dictionary<DataKey, List<StoredBlock>> _stored = [];
    private readonly Dictionary<AccessorKey, int> _accessorOf = [];
    private readonly SortedSet<string> _extensionsUsed = new(StringComparer.Ordinal);

    internal GltfDocument()
    {
        foreach (string name in ArrayNames)
            _arrays[name] = [];
    }

    private readonly record struct DataKey(int Hash, int Length, int Stride, int Target);

    private readonly record struct AccessorKey(
        int View, int Offset, int Count, int ComponentType, int Components, bool IsIndex);

    private readonly record struct StoredBlock(ReadOnlyMemory<byte> Bytes, int View);

    internal JsonObject Asset { get; } = [];

    internal JsonObject Extensions { get; } = [];

    internal GltfBinary Binary { get; } = new();

    /// <summary>The index of the scene to show first, or -1.</summary>
    internal int DefaultScene { get; set; } = -1;

    internal int CountOf(string array) => _arrays[array].Count;

    /// <summary>Appends an object to one of the top-level arrays and gives its index.</summary>
    internal int Add(string array, JsonObject item)
    {
        JsonArray items = _arrays[array];
        items.Add((JsonNode)item);
        return items.Count - 1;
    }

    internal JsonObject Get(string array, int index) => (JsonObject)_arrays[array][index]!;

    internal void UseExtension(string name) => _extensionsUsed.Add(name);

    /// <summary>Puts the content of an extension into an object of the document.</summary>
    internal void AddExtension(JsonObject owner, string name, JsonNode content)
    {
        UseExtension(name);
        if (owner["extensions"] is not JsonObject all)
            owner["extensions"] = all = [];
        all[name] = content;
    }

    /// <summary>A vertex attribute of single-precision numbers.</summary>
    /// <param name="values">All components one after the other. The array is kept and must not change any
    /// more.</param>
    /// <param name="components">Components of an element.</param>
    /// <param name="first">The first element that the accessor shows.</param>
    /// <param name="count">The number of elements that it shows.</param>
    /// <param name="bounds">Whether the smallest and largest values are told, as positions need it.</param>
    internal int AddAttribute(float[] values, int components, int first, int count, bool bounds)
    {
        int accessor = AddVertexData(AsBytes(values), components * sizeof(float), GltfComponents.Float,
            components, first, count);
        if (bounds)
            SetBounds(accessor, values.AsSpan(first * components, count * components), components);
        return accessor;
    }

    /// <summary>
    /// A vertex attribute of integers, such as joints. The element size must be a multiple of four bytes.
    /// </summary>
    internal int AddVertexData(ReadOnlyMemory<byte> bytes, int stride, int componentType, int components,
        int first, int count)
    {
        bool isWhole = first == 0 && count * stride == bytes.Length;
        bool isTight = stride == components * GltfComponents.SizeOf(componentType);
        int view = AddView(bytes, isWhole && isTight ? 0 : stride, ArrayBuffer);
        return AddAccessor(view, first * stride, count, componentType, components, false);
    }

    /// <summary>
    /// Vertex indices, in the smallest type that never needs the value that restarts a primitive.
    /// </summary>
    internal int AddIndices(ReadOnlySpan<int> indices, int vertexCount)
    {
        if (vertexCount > ushort.MaxValue)
        {
            ReadOnlyMemory<byte> wide = MemoryMarshal.AsBytes(indices).ToArray();
            return AddAccessor(AddView(wide, 0, ElementArrayBuffer), 0, indices.Length,
                GltfComponents.UnsignedInt, 1, true);
        }
        var narrow = new byte[indices.Length * sizeof(ushort)];
        Span<ushort> target = MemoryMarshal.Cast<byte, ushort>(narrow.AsSpan());
        for (int i = 0; i < indices.Length; i++)
            target[i] = (ushort)indices[i];
        return AddAccessor(AddView(narrow, 0, ElementArrayBuffer), 0, indices.Length,
            GltfComponents.UnsignedShort, 1, true);
    }

    /// <summary>Numbers that are no vertex attribute: key times, key values, bind matrices.</summary>
    internal int AddNumbers(float[] values, int components, bool bounds)
    {
        int view = AddView(AsBytes(values), 0, 0);
        int accessor = AddAccessor(view, 0, values.Length / components, GltfComponents.Float, components,
            false);
        if (bounds)
            SetBounds(accessor, values, components);
        return accessor;
    }

    /// <summary>Bytes of an image; equal images are stored once.</summary>
    internal int AddImageView(ReadOnlyMemory<byte> content) => AddView(content, 0, 0);

    private int AddView(ReadOnlyMemory<byte> bytes, int stride, int target)
    {
        var hash = default(HashCode);
        hash.AddBytes(bytes.Span);
        var key = new DataKey(hash.ToHashCode(), bytes.Length, stride, target);
        if (!_stored.TryGetValue(key, out List<StoredBlock>? blocks))
            _stored[key] = blocks = [];
        foreach (StoredBlock block in blocks)
        {
            if (block.Bytes.Span.SequenceEqual(bytes.Span))
                return block.View;
        }
        long offset = Binary.Append(bytes);
        var view = new JsonObject { ["buffer"] = 0 };
        if (offset > 0)
            view["byteOffset"] = offset;
        view["byteLength"] = bytes.Length;
        if (stride > 0)
            view["byteStride"] = stride;
        if (target > 0)
            view["target"] = target;
        int index = Add("bufferViews", view);
        blocks.Add(new StoredBlock(bytes, index));
        return index;
    }

    private int AddAccessor(int view, int offset, int count, int componentType, int components, bool isIndex)
    {
        var key = new AccessorKey(view, offset, count, componentType, components, isIndex);
        if (_accessorOf.TryGetValue(key, out int known))
            return known;
        var accessor = new JsonObject { ["bufferView"] = view };
        if (offset > 0)
            accessor["byteOffset"] = offset;
        accessor["componentType"] = componentType;
        accessor["count"] = count;
        accessor["type"] = GltfComponents.TypeOf(components);
        return _accessorOf[key] = Add("accessors", accessor);
    }

    private void SetBounds(int accessor, ReadOnlySpan<float> values, int components)
    {
        JsonObject json = Get("accessors", accessor);
        if (json.ContainsKey("min"))
            return;
        Span<float> low = stackalloc float[components];
        Span<float> high = stackalloc float[components];
        low.Fill(float.PositiveInfinity);
        high.Fill(float.NegativeInfinity);
        for (int i = 0; i < values.Length; i += components)
        {
            for (int k = 0; k < components; k++)
            {
                float value = values[i + k];
                if (value < low[k])
                    low[k] = value;
                if (value > high[k])
                    high[k] = value;
            }
        }
        json["min"] = Numbers(low);
        json["max"] = Numbers(high);
    }

    // Widened, so that the text tells the stored value exactly to a reader that compares in double precision.
    private static JsonArray Numbers(ReadOnlySpan<float> values)
    {
        var array = new JsonArray();
        foreach (float value in values)
            array.Add((JsonNode)(double)value);
        return array;
    }

    private static byte[] AsBytes(float[] values) => MemoryMarshal.AsBytes(values.AsSpan()).ToArray();

    /// <summary>The text of the document.</summary>
    /// <param name="bufferUri">Where the binary data is; null for the binary chunk of the container.</param>
    /// <param name="pretty">Whether the text is laid out in lines.</param>
    internal byte[] ToUtf8(string? bufferUri, bool pretty)
    {
        var root = new JsonObject { ["asset"] = Asset };
        if (_extensionsUsed.Count > 0)
        {
            var names = new JsonArray();
            foreach (string name in _extensionsUsed)
                names.Add((JsonNode)name);
            root["extensionsUsed"] = names;
        }
        if (Extensions.Count > 0)
            root["extensions"] = Extensions;
        if (DefaultScene >= 0)
            root["scene"] = DefaultScene;
        foreach (string name in ArrayNames)
        {
            if (_arrays[name].Count > 0)
                root[name] = _arrays[name];
        }
        if (Binary.Length > 0)
        {
            var buffer = new JsonObject { ["byteLength"] = Binary.Length };
            if (bufferUri is not null)
                buffer["uri"] = bufferUri;
            root["buffers"] = new JsonArray(buffer);
        }
        using var text = new MemoryStream();
        var options = new JsonWriterOptions
        {
            Indented = pretty,
            Encoder = JavaScriptEncoder.UnsafeRelaxedJsonEscaping,
        };
        using (var writer = new Utf8JsonWriter(text, options))
            root.WriteTo(writer);
        return text.ToArray();
    }
}
