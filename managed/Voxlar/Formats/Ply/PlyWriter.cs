using System;
using System.Collections.Generic;
using System.IO;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats.Text;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Ply;

/// <summary>
/// Writes PLY, as text or binary with the low byte first. Entities are brought to their places in the scene;
/// bodies are turned into meshes and curves into polylines first.
/// </summary>
/// <remarks>
/// <para>All geometries become one: their vertices follow each other, and so do their faces and edges. The
/// points of lines and clouds that a geometry of the same node has too are not written again. Numbers are
/// single where that holds all of them exactly, else double; colours are bytes where these hold all of them
/// exactly. Where only some geometries have an attribute, the others get zeros, or white.</para>
/// <para>What a PLY file told about vertices, faces, edges and other things is written again where it still
/// fits their number. PLY has no place for names, groups and materials.</para>
/// </remarks>
internal sealed class PlyWriter : ISceneWriter
{
    private WriteContext _context = null!;
    private PlySaveOptions _options = null!;
    private List<PlacedEntity> _items = null!;
    private int[] _firstVertex = null!;
    private int _vertexCount;

    public void Write(Stream stream, Scene scene, WriteContext context)
    {
        _context = context;
        _options = context.OptionsAs<PlySaveOptions>();
        _items = PlacedEntity.Of(scene, PlacedEntity.Flip(_options.FlipCoordinate), context);
        if (_options.PointCloud)
            _items.RemoveAll(item => item.Entity is Line);
        // Lines after all geometries, whose points they share.
        List<PlacedEntity> lines = _items.FindAll(item => item.Entity is Line);
        _items.RemoveAll(item => item.Entity is Line);
        _items.RemoveAll(IsShown);
        CountVertices();
        List<PlyElement> elements = [];
        PlyElement vertices = new(_options.VertexElement, 0);
        PlyElement faces = new(_options.FaceElement, 0);
        PlyElement? edges = lines.Count > 0 ? new PlyElement(PlyNames.Edge, 0) : null;
        List<Vector4> points = Points();
        int ownPoints = points.Count;
        if (edges is not null)
            FillEdges(edges, lines, points);
        FillVertices(vertices, points);
        elements.Add(vertices);
        bool hasMeshes = !_options.PointCloud
            && (_items.Exists(item => item.Entity is Mesh) || _items.Count == 0);
        if (hasMeshes)
        {
            FillFaces(faces);
            elements.Add(faces);
        }
        AddAttributes(vertices, hasMeshes ? faces : null);
        foreach (PlyElement element in elements)
            KeepColumns(element, element == vertices ? PlyNames.Vertex : PlyNames.Face, ownPoints);
        if (edges is not null)
            elements.Add(edges);
        if (!_options.PointCloud)
            KeepElements(elements);
        PlyEncoder.Write(
            stream, elements, Lines(PlyNames.Comments), Lines(PlyNames.Infos), _options.ContentType);
    }

    // A cloud of nothing but points that a mesh of its node has adds nothing.
    private bool IsShown(PlacedEntity cloud)
    {
        if (cloud.Entity is not PointCloud { VertexElements.Count: 0 })
            return false;
        HashSet<Vector4> points = [];
        foreach (PlacedEntity item in _items)
        {
            if (item.Entity is Mesh && item.Node == cloud.Node)
                points.UnionWith(item.ControlPoints);
        }
        return points.Count > 0 && cloud.ControlPoints.TrueForAll(points.Contains);
    }

    private void CountVertices()
    {
        _firstVertex = new int[_items.Count];
        long count = 0;
        for (int i = 0; i < _firstVertex.Length; i++)
        {
            _firstVertex[i] = (int)count;
            count += _items[i].ControlPoints.Count;
            if (count > Array.MaxLength)
                throw _context.Error("the scene has more vertices than one file can hold");
        }
        _vertexCount = (int)count;
    }

    private List<Vector4> Points()
    {
        List<Vector4> points = new(_vertexCount);
        foreach (PlacedEntity item in _items)
        {
            foreach (Vector4 point in item.ControlPoints)
                points.Add(item.Point(point));
        }
        return points;
    }

    private static void FillVertices(PlyElement vertices, List<Vector4> points)
    {
        vertices.Count = points.Count;
        double[] all = new double[points.Count * 3];
        double[] weights = new double[points.Count];
        bool hasWeights = false;
        for (int i = 0; i < points.Count; i++)
        {
            all[i] = points[i].x;
            all[i + points.Count] = points[i].y;
            all[i + points.Count * 2] = points[i].z;
            weights[i] = points[i].w;
            hasWeights |= points[i].w != 1;
        }
        AddColumns(vertices, PlyNames.Positions, all, PlyArrays.TypeFor(all));
        if (hasWeights)
            AddColumns(vertices, ["w"], weights, PlyArrays.TypeFor(weights));
    }

    // Adds columns of one type, whose values follow each other.
    private static void AddColumns(
        PlyElement element, ReadOnlySpan<string> names, double[] values, PlyType type)
    {
        for (int i = 0; i < names.Length; i++)
            element.Columns.Add(new PlyColumn(names[i], type)
            {
                Values = values[(i * element.Count)..((i + 1) * element.Count)],
            });
    }

    private void FillFaces(PlyElement faces)
    {
        IntBuffer ends = new();
        DoubleBuffer corners = new();
        int largest = 0;
        for (int i = 0; i < _items.Count; i++)
        {
            if (_items[i].Entity is not Mesh mesh)
                continue;
            PolygonStore polygons = mesh.PolygonStore;
            for (int polygon = 0; polygon < polygons.Count; polygon++)
            {
                int start = polygons.Start(polygon);
                int size = polygons.Size(polygon);
                largest = Math.Max(largest, size);
                for (int k = 0; k < size; k++)
                {
                    int point = polygons.Corners[_items[i].CornerAt(start, size, k)];
                    if (point >= mesh.ControlPointList.Count)
                        throw _context.Error(
                            $"polygon {polygon} of the mesh '{_items[i].Name}' has a corner at {point}, "
                            + $"but there are {mesh.ControlPointList.Count} control points");
                    corners.Add(_firstVertex[i] + point);
                }
                ends.Add(corners.Count);
            }
        }
        faces.Count = ends.Count;
        faces.Columns.Add(new PlyColumn(_options.FaceProperty, PlyType.Int, PlyArrays.CountTypeFor(largest))
        {
            Values = corners.Items[..corners.Count],
            Ends = ends.Items[..ends.Count],
        });
    }

    private void FillEdges(PlyElement edges, List<PlacedEntity> lines, List<Vector4> points)
    {
        DoubleBuffer first = new();
        DoubleBuffer second = new();
        foreach (PlacedEntity item in lines)
        {
            Dictionary<Vector4, int> known = SharedPoints(item);
            Line line = (Line)item.Entity;
            int[] places = new int[line.ControlPoints.Count];
            for (int i = 0; i < places.Length; i++)
            {
                if (known.TryGetValue(line.ControlPoints[i], out places[i]))
                    continue;
                places[i] = points.Count;
                points.Add(item.Point(line.ControlPoints[i]));
            }
            IList<int[]> segments = line.Segments.Count > 0 ? line.Segments : [WholeOf(places.Length)];
            foreach (int[] segment in segments)
            {
                for (int k = 0; k + 1 < segment.Length; k++)
                {
                    if ((uint)segment[k] >= (uint)places.Length
                        || (uint)segment[k + 1] >= (uint)places.Length)
                        throw _context.Error(
                            $"a segment of the line '{item.Name}' uses a point that it does not have");
                    first.Add(places[segment[k]]);
                    second.Add(places[segment[k + 1]]);
                }
            }
        }
        edges.Count = first.Count;
        edges.Columns.Add(new PlyColumn("vertex1", PlyType.Int) { Values = first.Items[..first.Count] });
        edges.Columns.Add(new PlyColumn("vertex2", PlyType.Int) { Values = second.Items[..second.Count] });
        if (lines.Count == 1)
            KeepColumns(edges, PlyNames.Edge, lines[0].Entity);
    }

    private static int[] WholeOf(int count)
    {
        int[] all = new int[count];
        for (int i = 0; i < count; i++)
            all[i] = i;
        return all;
    }

    private Dictionary<Vector4, int> SharedPoints(PlacedEntity line)
    {
        Dictionary<Vector4, int> known = [];
        for (int i = 0; i < _items.Count; i++)
        {
            if (_items[i].Node != line.Node)
                continue;
            List<Vector4> points = _items[i].ControlPoints;
            for (int k = 0; k < points.Count; k++)
                known.TryAdd(points[k], _firstVertex[i] + k);
        }
        return known;
    }

    private void AddAttributes(PlyElement vertices, PlyElement? faces)
    {
        PlyAttribute normals = new(_items, VertexElementType.Normal);
        PlyAttribute texCoords = new(_items, VertexElementType.UV);
        PlyAttribute colors = new(_items, VertexElementType.VertexColor);
        AddAttribute(vertices, faces, normals, PlyNames.Normals, PlyNames.CornerNormals, 3, default);
        // Without a face to hang them on, texture coordinates of three values lose the third.
        AddAttribute(vertices, faces, texCoords, PlyNames.TexCoords, PlyNames.CornerTexCoords, 2, default);
        AddAttribute(
            vertices, faces, colors, PlyNames.Colors, PlyNames.CornerColors, 4, new Vector4(1, 1, 1, 1));
    }

    private void AddAttribute(
        PlyElement vertices, PlyElement? faces, PlyAttribute attribute, string[] names, string listName,
        int size, Vector4 otherwise)
    {
        switch (attribute.Mapping)
        {
            case PlyMapping.Vertex:
                AddByVertex(vertices, attribute, names, otherwise);
                break;
            case PlyMapping.Face when faces is not null && size > 2:
                AddByFace(faces, attribute, names, otherwise);
                break;
            case PlyMapping.Face or PlyMapping.Corner when faces is not null:
                AddByCorner(faces, attribute, listName, size);
                break;
        }
    }

    private void AddByVertex(PlyElement vertices, PlyAttribute attribute, string[] names, Vector4 otherwise)
    {
        Vector4[] values = attribute.ByVertex(vertices.Count, otherwise);
        bool isNormal = names == PlyNames.Normals;
        for (int i = 0; isNormal && i < _items.Count; i++)
        {
            for (int k = 0; k < _items[i].ControlPoints.Count; k++)
            {
                ref Vector4 value = ref values[_firstVertex[i] + k];
                value = new Vector4(_items[i].Normal(value), 0);
            }
        }
        AddVectors(vertices, names, values);
    }

    private void AddByFace(PlyElement faces, PlyAttribute attribute, string[] names, Vector4 otherwise)
    {
        Vector4[] values = new Vector4[faces.Count];
        Array.Fill(values, otherwise);
        int face = 0;
        foreach (PlacedEntity item in _items)
        {
            if (item.Entity is not Mesh mesh)
                continue;
            VertexElementVector4? element = attribute.ElementOf(item);
            for (int polygon = 0; polygon < mesh.PolygonCount; polygon++, face++)
            {
                int value = element?.ValueIndex(-1, -1, polygon) ?? -1;
                if (value >= 0)
                    values[face] = names == PlyNames.Normals
                        ? new Vector4(item.Normal(element!.DataList[value]), 0) : element!.DataList[value];
            }
        }
        AddVectors(faces, names, values);
    }

    private static void AddVectors(PlyElement target, string[] names, Vector4[] values)
    {
        int size = names.Length;
        bool isOpaque = true;
        foreach (Vector4 value in values)
            isOpaque &= value.w == 1;
        if (size == 4 && isOpaque)
            size = 3;
        double[] all = new double[values.Length * size];
        for (int i = 0; i < values.Length; i++)
        {
            for (int k = 0; k < size; k++)
                all[i + k * values.Length] = Component(values[i], k);
        }
        PlyType type = names == PlyNames.Colors && TryBytes(all) ? PlyType.UChar : PlyArrays.TypeFor(all);
        AddColumns(target, names.AsSpan(0, size), all, type);
    }

    // Brings shares to bytes where these are the same numbers.
    private static bool TryBytes(double[] shares)
    {
        foreach (double share in shares)
        {
            if (Math.Round(share * byte.MaxValue) / byte.MaxValue != share || share is < 0 or > 1)
                return false;
        }
        for (int i = 0; i < shares.Length; i++)
            shares[i] = Math.Round(shares[i] * byte.MaxValue);
        return true;
    }

    private static double Component(Vector4 value, int k) => k switch
    {
        0 => value.x,
        1 => value.y,
        2 => value.z,
        _ => value.w,
    };

    // Corners without a value get NaN.
    private void AddByCorner(PlyElement faces, PlyAttribute attribute, string name, int size)
    {
        if (size == 2 && HasDepth(attribute))
            size = 3;
        IntBuffer ends = new();
        DoubleBuffer values = new();
        int longest = 0;
        foreach (PlacedEntity item in _items)
        {
            if (item.Entity is not Mesh mesh)
                continue;
            VertexElementVector4? element = attribute.ElementOf(item);
            PolygonStore polygons = mesh.PolygonStore;
            for (int polygon = 0; polygon < polygons.Count; polygon++)
            {
                int start = polygons.Start(polygon);
                int count = polygons.Size(polygon);
                longest = Math.Max(longest, count * size);
                for (int k = 0; k < count; k++)
                {
                    int corner = item.CornerAt(start, count, k);
                    int found = element?.ValueIndex(polygons.Corners[corner], corner, polygon) ?? -1;
                    Vector4 value = found < 0
                        ? new Vector4(double.NaN, double.NaN, double.NaN, double.NaN)
                        : element!.DataList[found];
                    if (found >= 0 && name == PlyNames.CornerNormals)
                        value = new Vector4(item.Normal(value), 0);
                    for (int c = 0; c < size; c++)
                        values.Add(Component(value, c));
                }
                ends.Add(values.Count);
            }
        }
        double[] all = values.Items[..values.Count];
        faces.Columns.Add(new PlyColumn(name, PlyArrays.TypeFor(all), PlyArrays.CountTypeFor(longest))
        {
            Values = all,
            Ends = ends.Items[..ends.Count],
        });
    }

    private bool HasDepth(PlyAttribute attribute)
    {
        foreach (PlacedEntity item in _items)
        {
            if (attribute.ElementOf(item) is { } element && element.DataList.Exists(value => value.z != 0))
                return true;
        }
        return false;
    }

    // Kept columns fit where one geometry makes all rows of the element.
    private void KeepColumns(PlyElement element, string name, int ownPoints)
    {
        bool isWhole = name != PlyNames.Vertex || element.Count == ownPoints;
        if (_items.Count == 1 && isWhole)
            KeepColumns(element, name, _items[0].Entity);
    }

    private static void KeepColumns(PlyElement element, string name, Entity source)
    {
        string prefix = PlyNames.Prefix + name + ".";
        foreach (Property property in source.Properties)
        {
            if (property is UserProperty { Value: Array array } && array.Length == element.Count
                && element.Count > 0
                && property.Name.StartsWith(prefix, StringComparison.Ordinal)
                && element.Find(property.Name[prefix.Length..]) is null
                && PlyArrays.ToColumn(property.Name[prefix.Length..], array) is { } column)
                element.Columns.Add(column);
        }
    }

    // Elements of other kinds are those of the first geometry that has them.
    private void KeepElements(List<PlyElement> elements)
    {
        foreach (PlacedEntity item in _items)
        {
            List<PlyElement> own = [];
            foreach (Property property in item.Entity.Properties)
            {
                if (property is not UserProperty { Value: Array array }
                    || !property.Name.StartsWith(PlyNames.Prefix, StringComparison.Ordinal))
                    continue;
                string[] names = property.Name[PlyNames.Prefix.Length..].Split('.', 2);
                bool isOther = names.Length == 2
                    && names[0] is not (PlyNames.Vertex or PlyNames.Face or PlyNames.Edge)
                    && !elements.Exists(element => element.Name == names[0]);
                if (!isOther || PlyArrays.ToColumn(names[1], array) is not { } column)
                    continue;
                PlyElement? element = own.Find(element => element.Name == names[0]);
                if (element is null)
                    own.Add(element = new PlyElement(names[0], 0) { Count = array.Length });
                if (element.Count == array.Length)
                    element.Columns.Add(column);
            }
            elements.AddRange(own);
        }
    }

    private List<string> Lines(string name)
    {
        List<string> lines = [];
        foreach (PlacedEntity item in _items)
        {
            if (item.Entity.GetProperty(name) is string[] kept)
                lines.AddRange(kept);
        }
        return lines;
    }
}
