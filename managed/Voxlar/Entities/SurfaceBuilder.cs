using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// Builds the mesh of a body from corners with a position, a normal and texture coordinates. Equal positions
/// become one control point, so that faces which meet exactly are joined; corners that fall together vanish,
/// so that quads at a pole become triangles.
/// </summary>
internal sealed class SurfaceBuilder
{
    private readonly Welded _points = new();
    private readonly Welded _normals = new();
    private readonly Welded _coordinates = new();
    private readonly List<Indices> _corners = new();
    private readonly List<int> _sizes = new();

    /// <summary>A corner of a polygon.</summary>
    public readonly record struct Corner(Vector3 Position, Vector3 Normal, Vector2 UV);

    /// <summary>Adds a polygon, unless fewer than three of its corners differ.</summary>
    public void Polygon(params ReadOnlySpan<Corner> corners)
    {
        Indices[] indices = new Indices[corners.Length];
        for (int i = 0; i < indices.Length; ++i)
            indices[i] = Weld(corners[i]);
        Add(indices);
    }

    /// <summary>
    /// Adds a grid of quads. Outside is where the direction of growing i crossed with that of growing j points.
    /// </summary>
    public void Grid(int columns, int rows, Func<int, int, Corner> corner)
    {
        Indices[] below = new Indices[columns + 1];
        Indices[] above = new Indices[columns + 1];
        for (int i = 0; i <= columns; ++i)
            below[i] = Weld(corner(i, 0));
        for (int j = 0; j < rows; ++j)
        {
            for (int i = 0; i <= columns; ++i)
                above[i] = Weld(corner(i, j + 1));
            for (int i = 0; i < columns; ++i)
                Add(below[i], below[i + 1], above[i + 1], above[i]);
            (below, above) = (above, below);
        }
    }

    /// <summary>
    /// Turns all polygons and their normals round when the closed surface encloses a negative volume.
    /// </summary>
    public void OrientOutward()
    {
        double volume = 0;
        int start = 0;
        foreach (int size in _sizes)
        {
            Vector3 a = _points.Values[_corners[start].Point];
            for (int k = 1; k + 1 < size; ++k)
            {
                Vector3 b = _points.Values[_corners[start + k].Point];
                volume += a.Dot(b.Cross(_points.Values[_corners[start + k + 1].Point]));
            }
            start += size;
        }
        if (volume >= 0)
            return;
        start = 0;
        foreach (int size in _sizes)
        {
            _corners.Reverse(start, size);
            start += size;
        }
        for (int i = 0; i < _normals.Values.Count; ++i)
            _normals.Values[i] = Vector3.Origin - _normals.Values[i];
    }

    /// <summary>Makes the mesh, with normals and diffuse texture coordinates.</summary>
    public Mesh ToMesh(string name)
    {
        Mesh mesh = new(name);
        foreach (Vector3 point in _points.Values)
            mesh.ControlPointList.Add(new Vector4(point, 1));

        VertexElementNormal normals = new()
        {
            MappingMode = MappingMode.PolygonVertex,
            ReferenceMode = ReferenceMode.IndexToDirect,
        };
        foreach (Vector3 normal in _normals.Values)
            normals.DataList.Add(new Vector4(normal, 0));
        VertexElementUV coordinates = mesh.CreateElementUV(
            TextureMapping.Diffuse, MappingMode.PolygonVertex, ReferenceMode.IndexToDirect);
        foreach (Vector3 uv in _coordinates.Values)
            coordinates.DataList.Add(new Vector4(uv.x, uv.y, 0, 1));
        mesh.VertexElements.Insert(0, normals);

        mesh.PolygonStore.EnsureCapacity(_sizes.Count, _corners.Count);
        int[] polygon = [];
        int at = 0;
        foreach (int size in _sizes)
        {
            if (polygon.Length < size)
                polygon = new int[size];
            for (int k = 0; k < size; ++k, ++at)
            {
                polygon[k] = _corners[at].Point;
                normals.IndexList.Add(_corners[at].Normal);
                coordinates.IndexList.Add(_corners[at].UV);
            }
            mesh.PolygonStore.Add(polygon.AsSpan(0, size));
        }
        return mesh;
    }

    private Indices Weld(Corner corner) => new(
        _points.Index(corner.Position), _normals.Index(corner.Normal),
        _coordinates.Index(new Vector3(corner.UV.x, corner.UV.y, 0)));

    private void Add(params ReadOnlySpan<Indices> corners)
    {
        int first = _corners.Count;
        foreach (Indices corner in corners)
        {
            if (_corners.Count == first || _corners[^1].Point != corner.Point)
                _corners.Add(corner);
        }
        while (_corners.Count - first > 1 && _corners[^1].Point == _corners[first].Point)
            _corners.RemoveAt(_corners.Count - 1);
        if (_corners.Count - first < 3)
            _corners.RemoveRange(first, _corners.Count - first);
        else
            _sizes.Add(_corners.Count - first);
    }

    private readonly record struct Indices(int Point, int Normal, int UV);

    // Values are the same only when they are equal to the last bit: what has to meet is computed the same
    // way.
    private sealed class Welded
    {
        private readonly Dictionary<(double, double, double), int> _indices = new();

        public List<Vector3> Values { get; } = new();

        public int Index(Vector3 value)
        {
            // Adding 0 makes a negative zero positive, as the two differ in their bits.
            (double, double, double) key = (value.x + 0.0, value.y + 0.0, value.z + 0.0);
            if (!_indices.TryGetValue(key, out int index))
            {
                index = Values.Count;
                _indices.Add(key, index);
                Values.Add(new Vector3(key.Item1, key.Item2, key.Item3));
            }
            return index;
        }
    }
}
