using System;
using System.Collections.Generic;
using System.Globalization;
using System.Runtime.InteropServices;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Writes meshes. A geometry becomes one primitive for each material and polygon group of its polygons, all
/// over the same vertices; where these primitives use ranges of vertices that do not overlap, each gets its
/// range. A geometry without polygons becomes points, a line becomes lines. Polygons of n corners are cut
/// into n - 2 triangles. Smoothing groups, creases and holes have no place in a document.
/// </summary>
internal sealed class GltfMeshWriter
{
    private readonly GltfDocument _document;
    private readonly GltfMaterialWriter _materials;
    private readonly GltfSaveOptions _options;
    private readonly WriteContext _context;
    private readonly Dictionary<string, int> _meshOf = new(StringComparer.Ordinal);
    private readonly Dictionary<object, int> _numbers = new(ReferenceEqualityComparer.Instance);
    private readonly Dictionary<Geometry, GltfGeometryData> _dataOf = new(ReferenceEqualityComparer.Instance);

    internal GltfMeshWriter(GltfDocument document, GltfMaterialWriter materials, GltfSaveOptions options,
        WriteContext context)
    {
        _document = document;
        _materials = materials;
        _options = options;
        _context = context;
    }

    /// <summary>Whether there is anything to draw, since a document has no empty meshes.</summary>
    internal static bool HasContent(Entity entity) => entity switch
    {
        Geometry geometry => geometry.ControlPointList.Count > 0,
        Line line => line.ControlPoints.Count > 0,
        _ => false,
    };

    /// <summary>The index of the mesh that shows the entities with the materials of their node.</summary>
    internal int IndexOf(List<Entity> entities, IList<Material> nodeMaterials)
    {
        string key = KeyOf(entities, nodeMaterials);
        if (_meshOf.TryGetValue(key, out int known))
            return known;
        var json = new JsonObject();
        if (entities[0].Name.Length > 0)
            json["name"] = entities[0].Name;
        var primitives = new JsonArray();
        foreach (Entity entity in entities)
        {
            int first = primitives.Count;
            if (entity is Line line)
                AddLine(primitives, line, nodeMaterials);
            else
                AddGeometry(primitives, (Geometry)entity, nodeMaterials);
            if (entity != entities[0] && _options.SaveExtras)
                SetOwnNameAndExtras(primitives, first, entity, entities[0]);
        }
        json["primitives"] = primitives;
        WriteMorphMembers(json, entities[0]);
        return _meshOf[key] = _document.Add("meshes", json);
    }

    /// <summary>
    /// Whether a property of an entity is written elsewhere than in the extras of its mesh.
    /// </summary>
    internal static bool HasOwnPlace(string name) =>
        name is GltfNames.MaterialIndex or GltfNames.PrimitiveExtras || GltfLines.IsAttribute(name);

    // The mesh has the name and the extras of its first entity; others keep theirs on their primitives.
    private static void SetOwnNameAndExtras(JsonArray primitives, int first, Entity entity, Entity leader)
    {
        JsonNode? own = ExtrasOf(entity);
        bool hasOwnExtras = !JsonNode.DeepEquals(own, ExtrasOf(leader));
        for (int i = first; i < primitives.Count; i++)
        {
            var primitive = (JsonObject)primitives[i]!;
            if (primitive["extras"] is not JsonObject extras)
                extras = [];
            if (entity.Name != leader.Name)
                extras[GltfNames.EntityName] = entity.Name;
            if (hasOwnExtras)
                extras[GltfNames.EntityExtras] = own?.DeepClone() ?? new JsonObject();
            if (extras.Count > 0 && extras.Parent is null)
                primitive["extras"] = extras;
        }
    }

    private static JsonNode? ExtrasOf(Entity entity)
    {
        var holder = new JsonObject();
        GltfExtras.Write(holder, entity, HasOwnPlace);
        return holder["extras"];
    }

    private string KeyOf(List<Entity> entities, IList<Material> nodeMaterials)
    {
        var key = new System.Text.StringBuilder();
        foreach (Entity entity in entities)
            key.Append(CultureInfo.InvariantCulture, $"{NumberOf(entity)} ");
        foreach (Material material in nodeMaterials)
            key.Append(CultureInfo.InvariantCulture, $"m{NumberOf(material)} ");
        return key.ToString();
    }

    private int NumberOf(object item)
    {
        if (!_numbers.TryGetValue(item, out int number))
            _numbers[item] = number = _numbers.Count;
        return number;
    }

    private void WriteMorphMembers(JsonObject json, Entity entity)
    {
        List<MorphTargetChannel> channels = GltfMorphs.ChannelsOf(entity);
        if (channels.Count > 0)
            json["weights"] = GltfValues.Factors(GltfMorphs.DefaultWeights(channels, _context));
        if (_options.SaveExtras)
            GltfExtras.Write(json, entity, HasOwnPlace);
        GltfExtensionData.Write(_document, json, entity);
        if (!channels.Exists(static channel => channel.Name.Length > 0))
            return;
        var names = new JsonArray();
        foreach (MorphTargetChannel channel in channels)
            names.Add((JsonNode)channel.Name);
        if (json["extras"] is not JsonObject extras)
            json["extras"] = extras = [];
        extras["targetNames"] = names;
    }

    private void AddGeometry(JsonArray primitives, Geometry geometry, IList<Material> nodeMaterials)
    {
        if (!_dataOf.TryGetValue(geometry, out GltfGeometryData? data))
            _dataOf[geometry] = data = new GltfGeometryData(geometry, _document, _options, _context);
        for (int i = 0; i < data.Parts.Count; i++)
        {
            JsonObject primitive = data.ToPrimitive(data.Parts[i]);
            SetMaterial(primitive, data.Parts[i].Material, nodeMaterials);
            SetExtras(primitive, geometry, i, data.Parts.Count);
            primitives.Add((JsonNode)primitive);
        }
    }

    private void AddLine(JsonArray primitives, Line line, IList<Material> nodeMaterials)
    {
        List<JsonObject> parts = GltfLines.ToPrimitives(line, _document, _context);
        for (int i = 0; i < parts.Count; i++)
        {
            SetLineMaterial(parts[i], line, nodeMaterials);
            SetExtras(parts[i], line, i, parts.Count);
            primitives.Add((JsonNode)parts[i]);
        }
    }

    private void SetLineMaterial(JsonObject primitive, Line line, IList<Material> nodeMaterials)
    {
        if (nodeMaterials.Count == 0 && line.Color != Vector3.Origin)
            primitive["material"] = _materials.IndexOfColor(line.Color);
        else
            SetMaterial(primitive, line.GetProperty(GltfNames.MaterialIndex) is int slot ? slot : 0,
                nodeMaterials);
    }

    // Extras are kept as long as there are as many primitives as there were.
    private void SetExtras(JsonObject primitive, Entity entity, int index, int count)
    {
        bool isTold = _options.SaveExtras
            && entity.GetProperty(GltfNames.PrimitiveExtras) is IList<object?> list && list.Count == count
            && list[index] is not null;
        if (isTold)
            primitive["extras"] =
                GltfValues.ToJson(((IList<object?>)entity.GetProperty(GltfNames.PrimitiveExtras)!)[index]);
    }

    private void SetMaterial(JsonObject primitive, int slot, IList<Material> nodeMaterials)
    {
        if (slot < nodeMaterials.Count)
            primitive["material"] = _materials.IndexOf(nodeMaterials[slot]);
    }
}

/// <summary>A primitive to be: polygons of one material and group.</summary>
/// <param name="Material">The place of the material in the node's list.</param>
/// <param name="Mode">The mode of the primitive.</param>
/// <param name="Indices">The vertices, or null for all in order.</param>
/// <param name="First">The first vertex of the range that the primitive uses.</param>
/// <param name="Count">The number of vertices in the range.</param>
internal sealed record GltfGeometryPart(int Material, int Mode, int[]? Indices, int First, int Count);
