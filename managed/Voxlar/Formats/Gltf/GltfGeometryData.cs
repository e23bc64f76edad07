using System;
using System.Collections.Generic;
using System.Globalization;
using System.Runtime.InteropServices;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// The vertices, attributes and parts of one geometry, made once however many nodes show it.
/// </summary>
internal sealed class GltfGeometryData
{
    // A stored normal may be this far from length 1 and is kept as it is; beyond that it is normalized.
    private const double LengthTolerance = 0.005;

    private readonly Geometry _geometry;
    private readonly GltfDocument _document;
    private readonly GltfSaveOptions _options;
    private readonly WriteContext _context;
    private readonly List<(string Semantic, VertexElementVector4 Element)> _elements = [];
    private readonly GltfVertices _vertices;
    private readonly List<Attribute> _attributes = [];
    private readonly List<List<Attribute>> _targets = [];

    internal GltfGeometryData(Geometry geometry, GltfDocument document, GltfSaveOptions options,
        WriteContext context)
    {
        _geometry = geometry;
        _document = document;
        _options = options;
        _context = context;
        CheckPolygons();
        ChooseElements();
        _vertices = GltfVertices.Of(geometry,
            _elements.ConvertAll(static item => (VertexElement)item.Element).ToArray());
        Parts = MakeParts();
        AddPositions();
        for (int i = 0; i < _elements.Count; i++)
            AddElement(i);
        AddFallbackNormals();
        AddUserData();
        AddSkin();
        AddMorphs();
    }

    /// <summary>An attribute of all vertices: either single-precision numbers or bytes of integers.</summary>
    private readonly record struct Attribute(string Semantic, int Components, float[]? Floats, byte[]? Bytes,
        int ComponentType);

    internal List<GltfGeometryPart> Parts { get; }

    internal JsonObject ToPrimitive(GltfGeometryPart part)
    {
        var json = new JsonObject { ["attributes"] = Accessors(_attributes, part) };
        if (part.Indices is not null)
            json["indices"] = _document.AddIndices(part.Indices, part.Count);
        if (part.Mode != GltfPrimitive.Triangles)
            json["mode"] = part.Mode;
        if (_targets.Count == 0)
            return json;
        var array = new JsonArray();
        foreach (List<Attribute> target in _targets)
            array.Add((JsonNode)Accessors(target, part));
        json["targets"] = array;
        return json;
    }

    private JsonObject Accessors(List<Attribute> set, GltfGeometryPart part)
    {
        var json = new JsonObject();
        foreach (Attribute attribute in set)
        {
            bool isPosition = attribute.Semantic == GltfPrimitive.Position;
            json[attribute.Semantic] = attribute.Floats is not null
                ? _document.AddAttribute(attribute.Floats, attribute.Components, part.First, part.Count,
                    isPosition)
                : _document.AddVertexData(attribute.Bytes, attribute.Bytes!.Length / _vertices.Count,
                    attribute.ComponentType,
                        attribute.Components, part.First, part.Count);
        }
        return json;
    }

    private void CheckPolygons()
    {
        if (_geometry is not Mesh mesh)
            return;
        int count = mesh.ControlPointList.Count;
        foreach (int corner in mesh.PolygonStore.Corners)
        {
            if ((uint)corner >= (uint)count)
                throw _context.Error(
                    $"a polygon of the mesh '{mesh.Name}' uses control point {corner}; the mesh has {count}");
        }
    }

    private void ChooseElements()
    {
        var taken = new HashSet<string>(StringComparer.Ordinal);
        foreach (VertexElement element in _geometry.VertexElements)
        {
            if (element is not VertexElementVector4 { ValueCount: > 0 } values
                || element.MappingMode == MappingMode.Edge)
                continue;
            string? semantic = element switch
            {
                VertexElementNormal => "NORMAL",
                VertexElementTangent => "TANGENT",
                VertexElementUV => SetName("TEXCOORD_", element.Name, taken),
                VertexElementVertexColor => SetName("COLOR_", element.Name, taken),
                _ => null,
            };
            if (semantic is not null && taken.Add(semantic))
                _elements.Add((semantic, values));
        }
        // Tangents mean nothing without normals.
        if (!taken.Contains("NORMAL") && _options.FallbackNormal is null)
            _elements.RemoveAll(static item => item.Semantic == "TANGENT");
        Renumber("TEXCOORD_");
        Renumber("COLOR_");
    }

    private static string SetName(string prefix, string name, HashSet<string> taken)
    {
        bool isNumbered = name.StartsWith(prefix, StringComparison.Ordinal) && name.Length > prefix.Length
            && int.TryParse(name.AsSpan(prefix.Length), NumberStyles.None, CultureInfo.InvariantCulture,
                out _);
        if (isNumbered && !taken.Contains(name))
            return name;
        int number = 0;
        while (taken.Contains(prefix + number.ToString(CultureInfo.InvariantCulture)))
            number++;
        return prefix + number.ToString(CultureInfo.InvariantCulture);
    }

    // Sets must be numbered from 0 without gaps.
    private void Renumber(string prefix)
    {
        List<int> places = [];
        for (int i = 0; i < _elements.Count; i++)
        {
            if (_elements[i].Semantic.StartsWith(prefix, StringComparison.Ordinal))
                places.Add(i);
        }
        places.Sort((a, b) => NumberOf(_elements[a].Semantic).CompareTo(NumberOf(_elements[b].Semantic)));
        for (int number = 0; number < places.Count; number++)
            _elements[places[number]] =
                (prefix + number.ToString(CultureInfo.InvariantCulture), _elements[places[number]].Element);

        int NumberOf(string semantic) =>
            int.Parse(semantic.AsSpan(prefix.Length), CultureInfo.InvariantCulture);
    }

    private List<GltfGeometryPart> MakeParts()
    {
        if (_geometry is not Mesh { PolygonCount: > 0 } mesh)
            return [new GltfGeometryPart(MaterialOfAll(), GltfPrimitive.Points, null, 0, _vertices.Count)];
        var groups = new List<(int Material, int[] Indices)>();
        int[]? groupOfPolygon = GroupPolygons(mesh, groups);
        FillTriangles(mesh, groupOfPolygon, groups);
        return Ranges(groups);
    }

    private int MaterialOfAll() =>
        _geometry.GetElement(VertexElementType.Material) is VertexElementMaterial element
            ? element.MaterialOf(0) : 0;

    /// <summary>
    /// Finds the groups in the order in which the polygons name them; null when all polygons are in one.
    /// </summary>
    private static int[]? GroupPolygons(Mesh mesh, List<(int Material, int[] Indices)> groups)
    {
        PolygonStore polygons = mesh.PolygonStore;
        var material = mesh.GetElement(VertexElementType.Material) as VertexElementMaterial;
        var group = mesh.GetElement(VertexElementType.PolygonGroup) as VertexElementPolygonGroup;
        int triangles = polygons.CornerCount - 2 * polygons.Count;
        bool isOne = group is not { ValueCount: > 0 }
            && (material is null || material.MappingMode == MappingMode.AllSame);
        if (isOne)
        {
            groups.Add((material?.MaterialOf(0) ?? 0, new int[triangles * 3]));
            return null;
        }
        var groupOfPolygon = new int[polygons.Count];
        var numberOf = new Dictionary<(int, int), int>();
        var sizes = new List<int>();
        var slots = new List<int>();
        for (int i = 0; i < groupOfPolygon.Length; i++)
        {
            int slot = material?.MaterialOf(i) ?? 0;
            int place = group?.ValueIndex(-1, -1, i) ?? -1;
            var key = (slot, place < 0 ? -1 : group!.Data[place]);
            ref int number = ref CollectionsMarshal.GetValueRefOrAddDefault(numberOf, key, out bool exists);
            if (!exists)
            {
                number = sizes.Count;
                sizes.Add(0);
                slots.Add(slot);
            }
            groupOfPolygon[i] = number;
            sizes[number] += polygons.Size(i) - 2;
        }
        for (int i = 0; i < sizes.Count; i++)
            groups.Add((slots[i], new int[sizes[i] * 3]));
        return groupOfPolygon;
    }

    private void FillTriangles(Mesh mesh, int[]? groupOfPolygon, List<(int Material, int[] Indices)> groups)
    {
        PolygonStore polygons = mesh.PolygonStore;
        ReadOnlySpan<int> vertexOfCorner = _vertices.Corners ?? polygons.Corners;
        var points = new List<Vector3>();
        var places = new List<int>();
        var written = new int[groups.Count];
        int corner = 0;
        for (int polygon = 0; polygon < polygons.Count; polygon++)
        {
            int number = groupOfPolygon is null ? 0 : groupOfPolygon[polygon];
            int[] indices = groups[number].Indices;
            int at = written[number];
            int size = polygons.Size(polygon);
            ReadOnlySpan<int> own = vertexOfCorner.Slice(corner, size);
            if (size == 3)
            {
                own.CopyTo(indices.AsSpan(at));
            }
            else
            {
                points.Clear();
                places.Clear();
                foreach (int point in polygons.Polygon(polygon))
                    points.Add(new Vector3(mesh.ControlPointList[point]));
                Triangulator.Cut(CollectionsMarshal.AsSpan(points), places);
                for (int k = 0; k < places.Count; k++)
                    indices[at + k] = own[places[k]];
            }
            written[number] = at + (size - 2) * 3;
            corner += size;
        }
    }

    /// <summary>
    /// Gives each group its own range of vertices when the ranges follow each other, so that vertices between
    /// them belong to the range before; otherwise all groups use all vertices.
    /// </summary>
    private List<GltfGeometryPart> Ranges(List<(int Material, int[] Indices)> groups)
    {
        var starts = new int[groups.Count + 1];
        starts[^1] = _vertices.Count;
        int end = -1;
        bool isOrdered = true;
        for (int i = 0; i < groups.Count && isOrdered; i++)
        {
            int low = int.MaxValue;
            int high = -1;
            foreach (int index in groups[i].Indices)
            {
                low = Math.Min(low, index);
                high = Math.Max(high, index);
            }
            isOrdered = low > end;
            starts[i] = i == 0 ? 0 : low;
            end = high;
        }
        var parts = new List<GltfGeometryPart>(groups.Count);
        for (int i = 0; i < groups.Count; i++)
        {
            (int material, int[] indices) = groups[i];
            int first = isOrdered ? starts[i] : 0;
            int count = isOrdered ? starts[i + 1] - first : _vertices.Count;
            for (int k = 0; k < indices.Length && first > 0; k++)
                indices[k] -= first;
            parts.Add(new GltfGeometryPart(material, GltfPrimitive.Triangles, indices, first, count));
        }
        return parts;
    }

    private void AddPositions()
    {
        var floats = new float[_vertices.Count * 3];
        List<Vector4> points = _geometry.ControlPointList;
        for (int i = 0, k = 0; i < _vertices.Count; i++)
        {
            Vector4 point = points[_vertices.ControlPointOf(i)];
            floats[k++] = Finite(point.x);
            floats[k++] = Finite(point.y);
            floats[k++] = Finite(point.z);
        }
        _attributes.Add(new Attribute(GltfPrimitive.Position, 3, floats, null, GltfComponents.Float));
    }

    private float Finite(double value)
    {
        var narrow = (float)value;
        return float.IsFinite(narrow) ? narrow
            : throw _context.Error(
                $"the geometry '{_geometry.Name}' has the coordinate {value}, which single precision "
                + "cannot hold");
    }

    private void AddElement(int index)
    {
        (string semantic, VertexElementVector4 element) = _elements[index];
        Func<int, Vector4> valueAt = vertex =>
        {
            int place = _vertices.ValueOf(index, vertex);
            return place < 0 ? MissingValue(semantic) : element.DataList[place];
        };
        _attributes.Add(semantic switch
        {
            "NORMAL" => Floats(semantic, 3, vertex => Unit(valueAt(vertex), vertex)),
            "TANGENT" => Floats(semantic, 4, vertex => Tangent(valueAt(vertex))),
            _ when element is VertexElementUV =>
                Floats(semantic, 2, _options.FlipTexCoordV ? vertex => Flip(valueAt(vertex)) : valueAt),
            _ => Floats(semantic, 4, valueAt),
        });
    }

    private static Vector4 MissingValue(string semantic) =>
        semantic.StartsWith("COLOR_", StringComparison.Ordinal) ? new Vector4(1, 1, 1, 1) : default;

    private static Vector4 Flip(Vector4 uv) => new(uv.x, 1 - uv.y, uv.z, uv.w);

    private Vector4 Unit(Vector4 value, int vertex)
    {
        double length = Math.Sqrt(value.x * value.x + value.y * value.y + value.z * value.z);
        if (Math.Abs(length - 1) < LengthTolerance)
            return value;
        if (length > 0 && double.IsFinite(length))
            return new Vector4(value.x / length, value.y / length, value.z / length, 0);
        Vector3 instead = _options.FallbackNormal ?? NormalAt(vertex);
        return new Vector4(instead.Normalize(), 0);
    }

    /// <summary>
    /// The normal of the first polygon around a control point that has one; upward where there is none.
    /// </summary>
    private Vector3 NormalAt(int vertex)
    {
        int controlPoint = _vertices.ControlPointOf(vertex);
        _surfaceNormals ??= SurfaceNormals();
        Vector3 normal = _surfaceNormals[controlPoint];
        return normal.Length > 0 ? normal : Vector3.YAxis;
    }

    private Vector3[]? _surfaceNormals;

    private Vector3[] SurfaceNormals()
    {
        var normals = new Vector3[_geometry.ControlPointList.Count];
        if (_geometry is not Mesh mesh)
            return normals;
        for (int i = 0; i < mesh.PolygonStore.Count; i++)
        {
            ReadOnlySpan<int> polygon = mesh.PolygonStore.Polygon(i);
            Vector3 sum = Vector3.Origin;
            var first = new Vector3(mesh.ControlPointList[polygon[0]]);
            for (int k = 1; k + 1 < polygon.Length; k++)
            {
                sum += (new Vector3(mesh.ControlPointList[polygon[k]]) - first)
                    .Cross(new Vector3(mesh.ControlPointList[polygon[k + 1]]) - first);
            }
            foreach (int corner in polygon)
            {
                if (normals[corner].Length == 0 && sum.Length > 0)
                    normals[corner] = sum.Normalize();
            }
        }
        return normals;
    }

    private static Vector4 Tangent(Vector4 value)
    {
        double sign = value.w < 0 ? -1 : 1;
        double length = Math.Sqrt(value.x * value.x + value.y * value.y + value.z * value.z);
        if (Math.Abs(length - 1) < LengthTolerance)
            return new Vector4(value.x, value.y, value.z, sign);
        return length > 0 && double.IsFinite(length)
            ? new Vector4(value.x / length, value.y / length, value.z / length, sign)
                : new Vector4(1, 0, 0, sign);
    }

    private Attribute Floats(string semantic, int components, Func<int, Vector4> valueAt)
    {
        var floats = new float[_vertices.Count * components];
        for (int i = 0, k = 0; i < _vertices.Count; i++)
        {
            Vector4 value = valueAt(i);
            floats[k++] = (float)value.x;
            floats[k++] = (float)value.y;
            if (components > 2)
                floats[k++] = (float)value.z;
            if (components > 3)
                floats[k++] = (float)value.w;
        }
        return new Attribute(semantic, components, floats, null, GltfComponents.Float);
    }

    private void AddFallbackNormals()
    {
        if (_options.FallbackNormal is not Vector3 normal || _geometry is not Mesh
            || _attributes.Exists(static a => a.Semantic == "NORMAL"))
            return;
        var unit = new Vector4(normal.Normalize(), 0);
        _attributes.Add(Floats("NORMAL", 3, _ => unit));
    }

    private void AddUserData()
    {
        foreach (VertexElement element in _geometry.VertexElements)
        {
            bool isAttribute = element.Name.StartsWith('_') || GltfSkinReader.IsSkinAttribute(element.Name);
            if (!isAttribute || element is not VertexElementUserData { Data: Array data }
                || _attributes.Exists(a => a.Semantic == element.Name))
                continue;
            int points = _geometry.ControlPointList.Count;
            int components = points == 0 ? 0 : data.Length / points;
            if (components is not (1 or 2 or 3 or 4 or 9 or 16) || components * points != data.Length)
                throw _context.Error(
                    $"the user data '{element.Name}' of the geometry '{_geometry.Name}' has {data.Length} "
                    + $"values for {points} control points");
            if (GltfNumericData.Pack(data, components, _vertices) is not { } packed)
                throw _context.Error(
                    $"the user data '{element.Name}' of the geometry '{_geometry.Name}' holds "
                    + $"{data.GetType().GetElementType()!.Name} values, which glTF has no form for");
            _attributes.Add(new Attribute(element.Name, components, packed.Floats, packed.Bytes,
                packed.ComponentType));
        }
    }

    private void AddSkin()
    {
        SkinDeformer? skin = GltfSkinWriter.SkinOf(_geometry, _context);
        if (skin is null || skin.Bones.Count == 0)
            return;
        _attributes.RemoveAll(static attribute => GltfSkinReader.IsSkinAttribute(attribute.Semantic));
        GltfInfluences influences = GltfInfluences.Of(skin, _geometry.ControlPointList.Count);
        for (int set = 0; set < influences.SetCount; set++)
        {
            string number = set.ToString(CultureInfo.InvariantCulture);
            byte[] joints = influences.Joints(set, _vertices, out int componentType);
            _attributes.Add(new Attribute("JOINTS_" + number, 4, null, joints, componentType));
            _attributes.Add(new Attribute("WEIGHTS_" + number, 4, influences.Weights(set, _vertices), null,
                GltfComponents.Float));
        }
    }

    private void AddMorphs()
    {
        foreach (MorphTargetChannel channel in GltfMorphs.ChannelsOf(_geometry))
        {
            var target = new List<Attribute>();
            Shape? shape = GltfMorphs.ShapeOf(channel, _context);
            float[] moves = GltfMorphs.Differences(_geometry.ControlPointList, shape?.ControlPointList, shape,
                _vertices, 1, _context);
            target.Add(new Attribute(GltfPrimitive.Position, 3, moves, null, GltfComponents.Float));
            for (int i = 0; i < _elements.Count && shape is not null; i++)
            {
                (string semantic, VertexElementVector4 element) = _elements[i];
                VertexElementVector4? moved = GltfMorphs.Counterpart(shape, element, semantic);
                bool isPlain = element.MappingMode == MappingMode.ControlPoint
                    && element.ReferenceMode == ReferenceMode.Direct;
                if (moved is null || !isPlain)
                    continue;
                int components = element is VertexElementUV ? 2 : semantic is "NORMAL" or "TANGENT" ? 3 : 4;
                float[] changes = GltfMorphs.Differences(element.DataList, moved.DataList, shape, _vertices,
                    element is VertexElementUV && _options.FlipTexCoordV
                        ? -1 : 1, _context, components);
                target.Add(new Attribute(semantic, components, changes, null, GltfComponents.Float));
            }
            _targets.Add(target);
        }
    }
}
