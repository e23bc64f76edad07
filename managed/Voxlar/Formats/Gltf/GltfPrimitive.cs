using System;
using System.Collections.Generic;
using System.Globalization;
using System.Text;
using System.Text.Json;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// A primitive of a mesh as the document tells it, with everything checked that needs no decoded data.
/// </summary>
internal sealed class GltfPrimitive
{
    internal const int Points = 0;
    internal const int Lines = 1;
    internal const int LineLoop = 2;
    internal const int LineStrip = 3;
    internal const int Triangles = 4;
    internal const int TriangleStrip = 5;
    internal const int TriangleFan = 6;

    internal const string Position = "POSITION";

    private GltfPrimitive(GltfJson json) => Json = json;

    internal GltfJson Json { get; }

    internal GltfPlace Place => Json.Place;

    internal int Mode { get; private init; }

    /// <summary>The index of the material, or -1.</summary>
    internal int Material { get; private init; }

    /// <summary>The accessor of the indices, or -1.</summary>
    internal int Indices { get; private init; }

    internal required SortedDictionary<string, int> Attributes { get; init; }

    internal required SortedDictionary<string, int>[] Targets { get; init; }

    internal int VertexCount { get; private init; }

    internal bool IsTriangles => Mode >= Triangles;

    internal bool IsLines => Mode is Lines or LineLoop or LineStrip;

    /// <summary>
    /// The name of the entity where it is another than the mesh's; this library's own extra.
    /// </summary>
    internal string? EntityName { get; private init; }

    /// <summary>The extras of the entity where they are others than the mesh's.</summary>
    internal GltfJson? EntityExtras { get; private init; }

    /// <summary>Primitives of one key can be one entity; points never are.</summary>
    internal string? GroupKey => IsTriangles ? $"t{Layout}{EntityName} {EntityExtras}"
        : IsLines ? $"l{Layout}{Block}{Material} {EntityName} {EntityExtras}" : null;

    /// <summary>What the attributes are called: primitives of one layout can share a geometry.</summary>
    internal string Layout { get; private set; } = string.Empty;

    /// <summary>Where the attributes lie: primitives of one block have the same vertices.</summary>
    internal string Block { get; private set; } = string.Empty;

    internal static GltfPrimitive Read(GltfJson json, GltfAccessors accessors, int materialCount)
    {
        long mode = json.Count("mode", Triangles);
        if (mode > TriangleFan)
            throw json.Place.Child("mode").Fault($"there is no mode {mode}");
        SortedDictionary<string, int> attributes = ReadAttributes(json.Require("attributes"), accessors);
        if (!attributes.TryGetValue(Position, out int position))
            throw json.Place.Child("attributes").Fault("primitives without POSITION are not supported");
        accessors.RequireComponents(position, 3, json.Place.Child("attributes").Child(Position));
        int count = accessors.ElementCount(position);
        var targets = Array.ConvertAll(json.Objects("targets"), target => ReadAttributes(target, accessors));
        foreach (SortedDictionary<string, int> set in (SortedDictionary<string, int>[])[attributes,
            .. targets])
        {
            foreach ((string semantic, int accessor) in set)
            {
                if (accessors.ElementCount(accessor) != count)
                    throw json.Place.Fault(
                        $"{semantic} has {accessors.ElementCount(accessor)} elements, POSITION has {count}");
            }
        }
        var primitive = new GltfPrimitive(json)
        {
            Mode = (int)mode,
            Material = json.Index("material", materialCount, "material"),
            Indices = json.Index("indices", accessors.Count, "accessor"),
            Attributes = attributes,
            Targets = targets,
            VertexCount = count,
            EntityName = OwnExtra(json, GltfNames.EntityName, JsonValueKind.String)?.AsString(),
            EntityExtras = OwnExtra(json, GltfNames.EntityExtras, JsonValueKind.Object),
        };
        primitive.Describe();
        return primitive;
    }

    // Extras are free: what has another form is left to whoever wrote it.
    private static GltfJson? OwnExtra(GltfJson json, string name, JsonValueKind kind) =>
        json.TryGet(GltfNames.Extras, out GltfJson extras) && extras.TryGet(name, out GltfJson value)
            && value.Element.ValueKind == kind ? value : null;

    private static SortedDictionary<string, int> ReadAttributes(GltfJson json, GltfAccessors accessors)
    {
        var attributes = new SortedDictionary<string, int>(StringComparer.Ordinal);
        foreach ((string semantic, GltfJson value) in json.Members())
            attributes[semantic] = value.AsIndex(accessors.Count, "accessor");
        return attributes;
    }

    private void Describe()
    {
        var layout = new StringBuilder();
        var block = new StringBuilder();
        Append(Attributes);
        foreach (SortedDictionary<string, int> target in Targets)
            Append(target);
        Layout = layout.ToString();
        Block = block.ToString();

        void Append(SortedDictionary<string, int> set)
        {
            foreach ((string semantic, int accessor) in set)
            {
                layout.Append(semantic).Append(' ');
                block.Append(accessor.ToString(CultureInfo.InvariantCulture)).Append(' ');
            }
            layout.Append('|');
            block.Append('|');
        }
    }

    /// <summary>
    /// The vertex numbers that the primitive goes through, each checked against the number of vertices.
    /// </summary>
    internal int[] ReadIndices(GltfAccessors accessors)
    {
        if (Indices < 0)
        {
            var all = new int[VertexCount];
            for (int i = 0; i < all.Length; i++)
                all[i] = i;
            return all;
        }
        GltfPlace place = Place.Child("indices");
        accessors.RequireComponents(Indices, 1, place);
        int[] indices = accessors.ReadIntegers(Indices, place);
        for (int i = 0; i < indices.Length; i++)
        {
            if ((uint)indices[i] >= (uint)VertexCount)
                throw place.Fault(
                    $"index {i} is {(uint)indices[i]}, but the primitive has {VertexCount} vertices");
        }
        return indices;
    }

    internal int TriangleCount(GltfAccessors accessors)
    {
        int corners = Indices >= 0 ? accessors.ElementCount(Indices) : VertexCount;
        return Mode == Triangles ? corners / 3 : corners - 2;
    }

    /// <summary>
    /// The corners of all triangles, three by three, in the order and orientation that the mode tells.
    /// </summary>
    internal int[] ReadTriangles(GltfAccessors accessors)
    {
        int[] indices = ReadIndices(accessors);
        if (Mode == Triangles)
        {
            if (indices.Length % 3 != 0)
                throw Place.Fault($"{indices.Length} corners do not make whole triangles");
            return indices;
        }
        if (indices.Length < 3)
            throw Place.Fault($"{indices.Length} corners are too few for a strip or fan");
        var corners = new int[(indices.Length - 2) * 3];
        for (int i = 0; i + 2 < indices.Length; i++)
        {
            bool isOdd = (i & 1) == 1;
            corners[i * 3] = Mode == TriangleFan ? indices[0] : indices[i];
            corners[i * 3 + 1] = Mode == TriangleStrip && isOdd ? indices[i + 2] : indices[i + 1];
            corners[i * 3 + 2] = Mode == TriangleStrip && isOdd ? indices[i + 1] : indices[i + 2];
        }
        return corners;
    }
}
