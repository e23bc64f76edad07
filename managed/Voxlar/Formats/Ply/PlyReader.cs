using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats.Obj;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Ply;

/// <summary>
/// Reads PLY, text and binary of both byte orders.
/// </summary>
/// <remarks>
/// A file becomes one node with a mesh, or with a point cloud when it has no faces; edges become a line
/// beside it, with copies of the points that it uses. Normals, texture coordinates and colours of vertices
/// become vertex elements by control point, those of faces by polygon, and the lists "texcoord", "normal" and
/// "color" of faces elements by corner. Whole numbers of colours are brought to the range from 0 to 1.
/// Triangle strips become triangles. All other properties and elements are kept as properties of the
/// geometry: "ply.", the element, "." and the property; comments and obj_info as "ply:comments" and
/// "ply:obj_info".
/// </remarks>
internal sealed class PlyReader : ISceneReader
{
    private readonly HashSet<PlyColumn> _used = [];
    private ReadContext _context = null!;
    private PlyParser _file = null!;
    private bool _flip;

    public void Read(Stream stream, Scene scene, ReadContext context)
    {
        _context = context;
        _flip = context.OptionsAs<PlyLoadOptions>().FlipCoordinateSystem;
        PlyParser file = _file = new(context.ReadAll(stream), context);
        PlyElement? vertices = Find(file, PlyNames.Vertex);
        PlyElement? faces = Find(file, PlyNames.Face);
        PlyColumn? corners = faces is null ? null : CornersOf(faces);
        PlyElement? strips = Find(file, PlyNames.Strips);
        PlyColumn? stripCorners = strips is null ? null : CornersOf(strips);
        bool hasFaces = (corners is not null && faces!.Count > 0)
            || (stripCorners is not null && strips!.Count > 0);
        Geometry geometry = hasFaces ? new Mesh() : new PointCloud();
        Node node = scene.RootNode.CreateChildNode("", geometry);
        if (vertices is not null)
            FillVertices(geometry, vertices);
        if (geometry is Mesh mesh)
        {
            if (corners is not null)
                FillFaces(mesh, faces!, corners);
            if (stripCorners is not null)
                FillStrips(mesh, strips!, stripCorners);
        }
        if (Find(file, PlyNames.Edge) is { } edges)
            FillEdges(node, geometry, edges);
        if (!hasFaces && corners is not null)
            _used.Add(corners);
        Keep(file, geometry);
    }

    private static PlyElement? Find(PlyParser file, string name) =>
        file.Elements.Find(element => element.Name == name);

    private static PlyColumn? CornersOf(PlyElement element)
    {
        foreach (string name in PlyNames.Indices)
        {
            if (element.Find(name) is { CountType: not null } column)
                return column;
        }
        return element.Columns.Find(column => column.CountType is not null);
    }

    // The columns of a group of names; null unless the first so many are there. Missing ones at the end are
    // null.
    private PlyColumn?[]? Take(PlyElement element, int least, params string[][] names)
    {
        foreach (string[] group in names)
        {
            PlyColumn?[] columns = Array.ConvertAll(group, element.FindScalar);
            if (Array.FindIndex(columns, 0, least, column => column is null) >= 0)
                continue;
            foreach (PlyColumn? column in columns)
            {
                if (column is not null)
                    _used.Add(column);
            }
            return columns;
        }
        return null;
    }

    private void FillVertices(Geometry geometry, PlyElement vertices)
    {
        PlyColumn?[]? positions = Take(vertices, 3, PlyNames.Positions);
        if (positions is null)
        {
            if (vertices.Count > 0)
                throw _context.Error("the vertices do not have the properties x, y and z");
            return;
        }
        PlyColumn? weights = vertices.FindScalar("w");
        if (weights is not null)
            _used.Add(weights);
        CollectionsMarshal.SetCount(geometry.ControlPointList, vertices.Count);
        Span<Vector4> points = CollectionsMarshal.AsSpan(geometry.ControlPointList);
        double[] xs = positions[0]!.Values;
        double[] ys = positions[_flip ? 2 : 1]!.Values;
        double[] zs = positions[_flip ? 1 : 2]!.Values;
        for (int i = 0; i < points.Length; i++)
            points[i] = new Vector4(xs[i], ys[i], zs[i], weights is null ? 1 : weights.Values[i]);
        AddElements(geometry, vertices, MappingMode.ControlPoint);
    }

    // The attributes by vertex or by face, in columns of their own.
    private void AddElements(Geometry geometry, PlyElement source, MappingMode mapping)
    {
        if (geometry.GetElement(VertexElementType.Normal) is null
            && Take(source, 3, PlyNames.Normals) is [var nx, var ny, var nz])
            Add(geometry, new VertexElementNormal(), mapping, source.Count,
                nx!, _flip ? nz! : ny!, _flip ? ny! : nz!, 0);
        if (mapping == MappingMode.ControlPoint
            && Take(source, 2, PlyNames.TexCoords, PlyNames.OtherTexCoords, PlyNames.LongTexCoords,
                PlyNames.LongOtherTexCoords) is [var u, var v])
            Add(geometry, new VertexElementUV(), mapping, source.Count, u!, v!, null, 1);
        if (geometry.GetElement(VertexElementType.VertexColor) is null
            && Take(source, 3, PlyNames.Colors, PlyNames.OtherColors, PlyNames.DiffuseColors) is { } colors)
            AddColors(geometry, mapping, source.Count, colors);
    }

    private static void Add(
        Geometry geometry, VertexElementVector4 element, MappingMode mapping, int count, PlyColumn x,
        PlyColumn y, PlyColumn? z, double w)
    {
        if (count == 0)
            return;
        element.MappingMode = mapping;
        CollectionsMarshal.SetCount(element.DataList, count);
        Span<Vector4> target = CollectionsMarshal.AsSpan(element.DataList);
        for (int i = 0; i < count; i++)
            target[i] = new Vector4(x.Values[i], y.Values[i], z is null ? 0 : z.Values[i], w);
        geometry.VertexElements.Add(element);
    }

    private static void AddColors(Geometry geometry, MappingMode mapping, int count, PlyColumn?[] columns)
    {
        if (count == 0)
            return;
        VertexElementVertexColor element = new() { MappingMode = mapping };
        element.DataList.EnsureCapacity(count);
        for (int i = 0; i < count; i++)
            element.DataList.Add(new Vector4(
                Share(columns[0]!, i), Share(columns[1]!, i), Share(columns[2]!, i),
                columns[3] is null ? 1 : Share(columns[3]!, i)));
        geometry.VertexElements.Add(element);
    }

    private static double Share(PlyColumn column, int row) => column.Values[row] / (column.Type switch
    {
        PlyType.Char => sbyte.MaxValue,
        PlyType.UChar => byte.MaxValue,
        PlyType.Short => short.MaxValue,
        PlyType.UShort => ushort.MaxValue,
        PlyType.Int => int.MaxValue,
        PlyType.UInt => uint.MaxValue,
        _ => 1.0,
    });

    private void FillFaces(Mesh mesh, PlyElement faces, PlyColumn corners)
    {
        _used.Add(corners);
        PolygonStore polygons = mesh.PolygonStore;
        polygons.EnsureCapacity(faces.Count, corners.Values.Length);
        int[] polygon = new int[16];
        for (int row = 0; row < faces.Count; row++)
        {
            int start = corners.Start(row);
            int size = corners.Ends[row] - start;
            if (size < 3)
                throw _file.ErrorIn(faces, row, $"face {row} has {size} corners; it needs at least 3");
            if (polygon.Length < size)
                polygon = new int[size];
            for (int k = 0; k < size; k++)
                polygon[k] = IndexOf(mesh, corners.Values[CornerAt(start, size, k)], faces, row);
            polygons.Add(new ReadOnlySpan<int>(polygon, 0, size));
        }
        AddElements(mesh, faces, MappingMode.Polygon);
        AddCorners(mesh, faces, corners, PlyNames.CornerTexCoords, 2, 3);
        AddCorners(mesh, faces, corners, PlyNames.CornerNormals, 3, 3);
        AddCorners(mesh, faces, corners, PlyNames.CornerColors, 3, 4);
    }

    // Exchanging two axes turns the space inside out; the corners then run the other way round, from the same
    // first one.
    private int CornerAt(int start, int size, int k) => _flip && k > 0 ? start + size - k : start + k;

    private int IndexOf(Geometry geometry, double value, PlyElement element, int row)
    {
        if (!(value >= 0 && value < geometry.ControlPointList.Count) || value != Math.Floor(value))
            throw _file.ErrorIn(element, row, FormattableString.Invariant(
                $"{element.Name} {row} uses vertex {value}, but there are {geometry.ControlPoints.Count} vertices"));
        return (int)value;
    }

    // The lists of values by corner; a list that does not fit its face leaves the column among those that are
    // kept.
    private void AddCorners(Mesh mesh, PlyElement faces, PlyColumn corners, string name, int least, int most)
    {
        if (faces.Find(name) is not { CountType: not null } column)
            return;
        int size = 0;
        for (int row = 0; row < faces.Count; row++)
        {
            int count = corners.Ends[row] - corners.Start(row);
            int found = column.Ends[row] - column.Start(row);
            size = row == 0 ? found / count : size;
            if (size < least || size > most || found != size * count)
                return;
        }
        VertexElementVector4 element = name switch
        {
            PlyNames.CornerTexCoords => new VertexElementUV(),
            PlyNames.CornerNormals => new VertexElementNormal(),
            _ => new VertexElementVertexColor(),
        };
        if (mesh.GetElement(element.VertexElementType) is not null)
            return;
        _used.Add(column);
        FillCorners(element, faces, corners, column, size);
        mesh.VertexElements.Add(element);
    }

    // NaN stands for corners without a value.
    private void FillCorners(
        VertexElementVector4 element, PlyElement faces, PlyColumn corners, PlyColumn column, int size)
    {
        element.MappingMode = MappingMode.PolygonVertex;
        bool isNormal = element is VertexElementNormal;
        List<int> indices = element.IndexList;
        for (int row = 0; row < faces.Count; row++)
        {
            int count = corners.Ends[row] - corners.Start(row);
            for (int k = 0; k < count; k++)
            {
                int start = CornerAt(0, count, k) * size + column.Start(row);
                ReadOnlySpan<double> v = column.Values.AsSpan(start, size);
                if (double.IsNaN(v[0]))
                {
                    indices.Add(ObjNames.NoValue);
                    continue;
                }
                indices.Add(element.DataList.Count);
                double z = size > 2 ? v[2] : 0;
                element.DataList.Add(new Vector4(
                    v[0], isNormal && _flip ? z : v[1], isNormal && _flip ? v[1] : z,
                    isNormal ? 0 : size > 3 ? v[3] : 1));
            }
        }
        if (indices.Contains(ObjNames.NoValue))
            element.ReferenceMode = ReferenceMode.IndexToDirect;
        else
            indices.Clear();
    }

    // A strip goes on until -1; every second triangle runs the other way round. What has no area only links
    // parts.
    private void FillStrips(Mesh mesh, PlyElement strips, PlyColumn corners)
    {
        _used.Add(corners);
        for (int row = 0; row < strips.Count; row++)
        {
            int start = corners.Start(row);
            for (int i = start; i < corners.Ends[row]; i++)
            {
                if (corners.Values[i] == -1)
                {
                    start = i + 1;
                    continue;
                }
                int c = IndexOf(mesh, corners.Values[i], strips, row);
                if (i - start < 2)
                    continue;
                int a = IndexOf(mesh, corners.Values[i - 2], strips, row);
                int b = IndexOf(mesh, corners.Values[i - 1], strips, row);
                if (a == b || b == c || a == c)
                    continue;
                bool isTurned = (i - start) % 2 == 1 != _flip;
                mesh.PolygonStore.Add(isTurned ? [b, a, c] : [a, b, c]);
            }
        }
    }

    private void FillEdges(Node node, Geometry geometry, PlyElement edges)
    {
        if (edges.Count == 0
            || Take(edges, 2, ["vertex1", "vertex2"]) is not [{ } first, { } second])
            return;
        Line line = new();
        Dictionary<int, int> places = [];
        for (int row = 0; row < edges.Count; row++)
            line.Segments.Add([Place(first.Values[row], row), Place(second.Values[row], row)]);
        foreach (PlyColumn column in edges.Columns)
        {
            if (_used.Add(column))
                line.SetProperty(PlyNames.Prefix + edges.Name + "." + column.Name, PlyArrays.ToArray(column));
        }
        node.Entities.Add(line);

        int Place(double value, int row)
        {
            int vertex = IndexOf(geometry, value, edges, row);
            if (!places.TryGetValue(vertex, out int place))
            {
                places.Add(vertex, place = line.ControlPoints.Count);
                line.ControlPoints.Add(geometry.ControlPointList[vertex]);
            }
            return place;
        }
    }

    private void Keep(PlyParser file, Geometry geometry)
    {
        foreach (PlyElement element in file.Elements)
        {
            foreach (PlyColumn column in element.Columns)
            {
                if (!_used.Contains(column) && element.Count > 0)
                    geometry.SetProperty(
                        PlyNames.Prefix + element.Name + "." + column.Name, PlyArrays.ToArray(column));
            }
        }
        if (file.Comments.Count > 0)
            geometry.SetProperty(PlyNames.Comments, file.Comments.ToArray());
        if (file.Infos.Count > 0)
            geometry.SetProperty(PlyNames.Infos, file.Infos.ToArray());
    }
}
