using System;
using System.Collections.Generic;
using System.Globalization;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// What a mesh becomes: the entities for its node, the materials that they index, and their morph channels.
/// </summary>
internal sealed record GltfMeshContent(List<Entity> Entities, List<Material> Materials,
    List<MorphTargetChannel[]> Morphs);

/// <summary>
/// Makes the entities of meshes. All triangle primitives of a mesh whose attributes have the same names
/// become one <see cref="Mesh"/>, each points primitive a <see cref="PointCloud"/>, lines over the same
/// vertices a <see cref="Line"/>; all of them stand on the node. Every stored vertex is one control point:
/// nothing is merged or split, and primitives that share their vertices share the control points. A mesh that
/// several nodes show is made once and stands on all of them.
/// </summary>
internal sealed class GltfMeshReader
{
    private readonly GltfJson[] _meshes;
    private readonly GltfAccessors _accessors;
    private readonly GltfMaterialReader _materials;
    private readonly GltfSkinReader _skins;
    private readonly bool _flipV;
    private readonly Dictionary<(int Mesh, int Skin, string Weights), GltfMeshContent> _made = [];
    private readonly bool[] _used;

    internal GltfMeshReader(GltfJson root, GltfAccessors accessors, GltfMaterialReader materials,
        GltfSkinReader skins, bool flipV)
    {
        _meshes = root.Objects("meshes");
        _used = new bool[_meshes.Length];
        _accessors = accessors;
        _materials = materials;
        _skins = skins;
        _flipV = flipV;
    }

    internal int Count => _meshes.Length;

    internal bool IsUsed(int mesh) => _used[mesh];

    /// <summary>
    /// The content of a mesh. The same mesh with the same skin and weights gives the same entities.
    /// </summary>
    /// <param name="mesh">The index of the mesh.</param>
    /// <param name="skin">The index of the skin that deforms it, or -1.</param>
    /// <param name="weights">The weights of the morph targets when the node tells its own.</param>
    internal GltfMeshContent Get(int mesh, int skin, double[]? weights)
    {
        string weightsKey = weights is null ? string.Empty : string.Join(' ', Array.ConvertAll(
            weights, static weight => weight.ToString("R", CultureInfo.InvariantCulture)));
        _used[mesh] = true;
        if (!_made.TryGetValue((mesh, skin, weightsKey), out GltfMeshContent? content))
            _made[(mesh, skin, weightsKey)] = content = Make(_meshes[mesh], skin, weights);
        return content;
    }

    private GltfMeshContent Make(GltfJson json, int skin, double[]? weights)
    {
        GltfPrimitive[] primitives = Array.ConvertAll(
            json.Objects("primitives"), item => GltfPrimitive.Read(item, _accessors, _materials.Count));
        if (primitives.Length == 0)
            throw json.Place.Fault("the mesh has no primitives");
        foreach (GltfPrimitive primitive in primitives)
            CheckDraco(primitive);
        var content = new GltfMeshContent([], [], []);
        int[] slots = MaterialSlots(primitives, content.Materials);
        bool severalMaterials = content.Materials.Count > 1;
        string name = json.StringOrNull("name") ?? string.Empty;
        double[]? defaults = weights ?? json.DoublesOrNull("weights");
        foreach (List<int> group in Groups(primitives))
        {
            GltfPrimitive first = primitives[group[0]];
            string ownName = first.EntityName ?? name;
            Entity entity = first.IsTriangles ? MakeMesh(ownName, primitives, group, slots)
                : first.IsLines ? MakeLine(ownName, primitives, group) : MakePoints(ownName, first);
            if (severalMaterials)
                SetMaterials(entity, primitives, group, slots);
            if (entity is Geometry geometry)
            {
                Deform(geometry, json, primitives, group, skin, defaults, content.Morphs);
            }
            else if (first.Targets.Length > 0)
            {
                throw first.Place.Child("targets").Fault("morph targets of lines are not supported");
            }
            if (first.EntityExtras is GltfJson own)
                GltfExtras.Read(own, entity, null);
            else
                ReadMeshExtras(json, entity);
            GltfExtensionData.Read(json, entity);
            ReadPrimitiveExtras(primitives, group, entity);
            content.Entities.Add(entity);
        }
        return content;
    }

    private static void ReadPrimitiveExtras(GltfPrimitive[] primitives, List<int> group, Entity entity)
    {
        List<object?> extras = group.ConvertAll(index =>
            primitives[index].Json.TryGet(GltfNames.Extras, out GltfJson told) ? PrimitiveExtras(told)
                : null);
        if (extras.Exists(static item => item is not null))
            entity.SetProperty(GltfNames.PrimitiveExtras, extras);
    }

    // What belongs to the entity is read as such.
    private static object? PrimitiveExtras(GltfJson told)
    {
        object? value = GltfValues.FromJson(told.Element);
        if (value is not Dictionary<string, object?> members)
            return value;
        bool isOwn = members.Remove(GltfNames.EntityName) | members.Remove(GltfNames.EntityExtras);
        return isOwn && members.Count == 0 ? null : members;
    }

    // Compressed data may come with a plain copy, and then need not be understood; without one there is
    // nothing to read.
    private void CheckDraco(GltfPrimitive primitive)
    {
        if (primitive.Json.TryGetExtension(GltfNames.Draco, out GltfJson draco)
            && !_accessors.HasData(primitive.Attributes[GltfPrimitive.Position]))
            throw draco.Place.Fault($"the extension {GltfNames.Draco} is not supported");
    }

    private static void ReadMeshExtras(GltfJson json, Entity entity)
    {
        // The names of morph targets are read as the names of the channels.
        if (json.TryGet(GltfNames.Extras, out GltfJson extras))
            GltfExtras.Read(extras, entity, "targetNames");
    }

    /// <summary>
    /// Puts the materials of the primitives into a list and gives the place of each primitive's. Where some
    /// primitives have a material and others none, these get the default material, since a place in the list
    /// must be told for all.
    /// </summary>
    private int[] MaterialSlots(GltfPrimitive[] primitives, List<Material> list)
    {
        var slots = new int[primitives.Length];
        if (Array.TrueForAll(primitives, static primitive => primitive.Material < 0))
            return slots;
        for (int i = 0; i < primitives.Length; i++)
        {
            Material material = primitives[i].Material < 0 ? _materials.Default
                : _materials.Get(primitives[i].Material);
            slots[i] = list.IndexOf(material);
            if (slots[i] < 0)
            {
                slots[i] = list.Count;
                list.Add(material);
            }
        }
        return slots;
    }

    private static List<List<int>> Groups(GltfPrimitive[] primitives)
    {
        var groups = new List<List<int>>();
        var groupOf = new Dictionary<string, List<int>>(StringComparer.Ordinal);
        for (int i = 0; i < primitives.Length; i++)
        {
            if (primitives[i].GroupKey is not string key)
                groups.Add([i]);
            else if (groupOf.TryGetValue(key, out List<int>? group))
                group.Add(i);
            else
                groups.Add(groupOf[key] = [i]);
        }
        return groups;
    }

    private Mesh MakeMesh(string name, GltfPrimitive[] primitives, List<int> group, int[] slots)
    {
        var mesh = new Mesh(name);
        List<(GltfPrimitive Primitive, int Start)> blocks = Blocks(primitives, group, out int[] starts);
        FillGeometry(mesh, blocks);
        List<int[]> corners = group.ConvertAll(index => primitives[index].ReadTriangles(_accessors));
        int[] groupOfPolygon = AddTriangles(mesh, corners, starts);
        // Where materials do not tell the primitives apart, groups of polygons do.
        var distinct = new HashSet<int>();
        foreach (int index in group)
            distinct.Add(slots[index]);
        if (distinct.Count < group.Count)
        {
            var element = new VertexElementPolygonGroup
            {
                MappingMode = MappingMode.Polygon,
                ReferenceMode = ReferenceMode.Direct,
            };
            element.SetData(groupOfPolygon);
            mesh.AddElement(element);
        }
        return mesh;
    }

    /// <summary>Adds the triangles of all primitives and gives the number of the primitive of each.</summary>
    private static int[] AddTriangles(Mesh mesh, List<int[]> corners, int[] starts)
    {
        int total = 0;
        foreach (int[] part in corners)
            total = checked(total + part.Length);
        PolygonStore polygons = mesh.PolygonStore;
        polygons.EnsureCapacity(total / 3, total);
        var primitiveOfPolygon = new int[total / 3];
        for (int i = 0; i < corners.Count; i++)
        {
            int[] part = corners[i];
            for (int k = 0; k < part.Length && starts[i] != 0; k++)
                part[k] += starts[i];
            primitiveOfPolygon.AsSpan(polygons.Count, part.Length / 3).Fill(i);
            for (int k = 0; k < part.Length; k += 3)
                polygons.Add(part.AsSpan(k, 3));
        }
        return primitiveOfPolygon;
    }

    /// <summary>
    /// Lays the vertices of a group's primitives one after the other, those of shared vertices once.
    /// </summary>
    private static List<(GltfPrimitive Primitive, int Start)> Blocks(GltfPrimitive[] primitives,
        List<int> group, out int[] starts)
    {
        var blocks = new List<(GltfPrimitive, int)>();
        var startOf = new Dictionary<string, int>(StringComparer.Ordinal);
        starts = new int[group.Count];
        long total = 0;
        for (int i = 0; i < group.Count; i++)
        {
            GltfPrimitive primitive = primitives[group[i]];
            if (!startOf.TryGetValue(primitive.Block, out starts[i]))
            {
                starts[i] = (int)total;
                startOf[primitive.Block] = starts[i];
                blocks.Add((primitive, starts[i]));
                total += primitive.VertexCount;
                if (total > Array.MaxLength)
                    throw primitive.Place.Fault("the mesh has more vertices than are supported");
            }
        }
        return blocks;
    }

    private PointCloud MakePoints(string name, GltfPrimitive primitive)
    {
        var points = new PointCloud(name);
        FillGeometry(points, [(primitive, 0)]);
        if (primitive.Indices < 0)
            return points;
        bool isDeformed = primitive.Targets.Length > 0 || primitive.Attributes.ContainsKey("JOINTS_0");
        if (isDeformed)
            throw primitive.Place.Fault("points with indices that are deformed as well are not supported");
        GltfElements.Gather(points, primitive.ReadIndices(_accessors));
        return points;
    }

    private Line MakeLine(string name, GltfPrimitive[] primitives, List<int> group)
    {
        GltfPrimitive first = primitives[group[0]];
        var line = new Line(name);
        float[] positions = _accessors.ReadFloats(first.Attributes[GltfPrimitive.Position]);
        line.ControlPoints.AddRange(GltfVectors.From(positions, 3, 1));
        foreach (int index in group)
            AddSegments(line, primitives[index]);
        // A line has no vertex elements; what else is told of its vertices stays under the name of the
        // attribute.
        foreach ((string semantic, int accessor) in first.Attributes)
        {
            if (semantic != GltfPrimitive.Position)
                line.SetProperty(semantic, _accessors.ReadAsStored(accessor));
        }
        return line;
    }

    private void AddSegments(Line line, GltfPrimitive primitive)
    {
        int[] indices = primitive.ReadIndices(_accessors);
        if (primitive.Mode == GltfPrimitive.Lines)
        {
            if (indices.Length % 2 != 0)
                throw primitive.Place.Fault($"{indices.Length} ends do not make whole lines");
            for (int i = 0; i < indices.Length; i += 2)
                line.Segments.Add([indices[i], indices[i + 1]]);
        }
        else
        {
            line.Segments.Add(primitive.Mode == GltfPrimitive.LineLoop ? [.. indices, indices[0]] : indices);
        }
    }

    private void SetMaterials(Entity entity, GltfPrimitive[] primitives, List<int> group, int[] slots)
    {
        if (entity is not Geometry geometry)
        {
            entity.SetProperty(GltfNames.MaterialIndex, slots[group[0]]);
            return;
        }
        var element = new VertexElementMaterial { ReferenceMode = ReferenceMode.Index };
        bool isOne = group.TrueForAll(index => slots[index] == slots[group[0]]);
        if (isOne)
        {
            element.MappingMode = MappingMode.AllSame;
            element.SetIndices([slots[group[0]]]);
        }
        else
        {
            element.MappingMode = MappingMode.Polygon;
            var indices = new List<int>();
            foreach (int index in group)
            {
                for (int k = primitives[index].TriangleCount(_accessors); k > 0; k--)
                    indices.Add(slots[index]);
            }
            element.SetIndices([.. indices]);
        }
        geometry.AddElement(element);
    }

    private void FillGeometry(Geometry geometry, List<(GltfPrimitive Primitive, int Start)> blocks)
    {
        (GltfPrimitive last, int lastStart) = blocks[^1];
        int total = lastStart + last.VertexCount;
        foreach (string semantic in last.Attributes.Keys)
        {
            if (semantic == GltfPrimitive.Position)
                geometry.ControlPointList.AddRange(Vectors(blocks, total, semantic, 3, 1));
            else if (!GltfSkinReader.IsSkinAttribute(semantic))
                geometry.AddElement(MakeElement(blocks, total, semantic));
        }
    }

    private VertexElement MakeElement(List<(GltfPrimitive Primitive, int Start)> blocks, int total,
        string semantic)
    {
        VertexElementVector4? element = null;
        int components = _accessors.ComponentCount(blocks[0].Primitive.Attributes[semantic]);
        Vector4[]? values = null;
        if (semantic == "NORMAL")
        {
            element = new VertexElementNormal();
            values = Vectors(blocks, total, semantic, 3, 0);
        }
        else if (semantic == "TANGENT")
        {
            element = new VertexElementTangent();
            values = Vectors(blocks, total, semantic, 4, 0);
        }
        else if (semantic.StartsWith("TEXCOORD_", StringComparison.Ordinal))
        {
            element = new VertexElementUV(TextureMapping.Diffuse);
            values = Vectors(blocks, total, semantic, 2, 1);
            if (_flipV)
                GltfVectors.FlipV(values);
        }
        else if (semantic.StartsWith("COLOR_", StringComparison.Ordinal) && components is 3 or 4)
        {
            element = new VertexElementVertexColor();
            values = Vectors(blocks, total, semantic, components, 1);
        }
        if (element is null)
            return GltfElements.Named(new VertexElementUserData { Data = AsStored(blocks, semantic) },
                semantic);
        element.SetData(values!);
        return GltfElements.Named(element, semantic);
    }

    private Vector4[] Vectors(List<(GltfPrimitive Primitive, int Start)> blocks, int total, string semantic,
        int components, double last)
    {
        var values = new Vector4[total];
        foreach ((GltfPrimitive primitive, int start) in blocks)
        {
            float[] floats = _accessors.ReadFloats(
                primitive.Attributes[semantic], components,
                primitive.Place.Child("attributes").Child(semantic));
            GltfVectors.Copy(floats, components, last, values.AsSpan(start));
        }
        return values;
    }

    private Array AsStored(List<(GltfPrimitive Primitive, int Start)> blocks, string semantic)
    {
        if (blocks.Count == 1)
            return _accessors.ReadAsStored(blocks[0].Primitive.Attributes[semantic]);
        var all = new List<float>();
        foreach ((GltfPrimitive primitive, _) in blocks)
            all.AddRange(_accessors.ReadFloats(primitive.Attributes[semantic]));
        return all.ToArray();
    }

    private void Deform(Geometry geometry, GltfJson json, GltfPrimitive[] primitives, List<int> group,
        int skin, double[]? weights, List<MorphTargetChannel[]> morphs)
    {
        List<(GltfPrimitive Primitive, int Start)> blocks = Blocks(primitives, group, out _);
        if (skin >= 0 && blocks[0].Primitive.Attributes.ContainsKey("JOINTS_0"))
            geometry.Deformers.Add(_skins.Make(skin, blocks, _accessors));
        else
            KeepSkinAttributes(geometry, blocks);
        if (blocks[0].Primitive.Targets.Length > 0)
        {
            MorphTargetDeformer deformer =
                GltfMorphReader.Make(geometry, json, blocks, _accessors, weights, _flipV);
            geometry.Deformers.Add(deformer);
            morphs.Add([.. deformer.Channels]);
        }
    }

    /// <summary>
    /// Joints and weights without a skin mean nothing, but another node may use the mesh with one.
    /// </summary>
    private void KeepSkinAttributes(Geometry geometry, List<(GltfPrimitive Primitive, int Start)> blocks)
    {
        foreach (string semantic in blocks[0].Primitive.Attributes.Keys)
        {
            if (GltfSkinReader.IsSkinAttribute(semantic))
            {
                var data = new VertexElementUserData { Data = AsStored(blocks, semantic) };
                geometry.AddElement(GltfElements.Named(data, semantic));
            }
        }
    }
}
