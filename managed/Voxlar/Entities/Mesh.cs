using System;
using System.Collections;
using System.Collections.Generic;
using System.Collections.ObjectModel;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A surface of polygons over control points. Seen from outside, the corners of a polygon run
/// counter-clockwise. Enumerating a mesh gives its polygons as arrays of control point indices.
/// </summary>
public class Mesh : Geometry, IMeshConvertible, IEnumerable<int[]>
{
    private static readonly EntityRendererKey RendererKey = new("Mesh");

    private readonly PolygonStore _polygons = new();
    private IList<int>? _edges;
    private int _edgesVersion;

    /// <summary>Makes a mesh without polygons and without a name.</summary>
    public Mesh()
        : this("")
    {
    }

    /// <summary>
    /// Makes a triangle mesh of a height map, see <see cref="Mesh(TextureData, bool, Matrix4)"/>.
    /// </summary>
    /// <param name="heightMap">The image whose brightness is the height.</param>
    public Mesh(TextureData heightMap)
        : this(heightMap, true, Matrix4.Identity)
    {
    }

    /// <summary>
    /// Makes a triangle mesh of a height map, see <see cref="Mesh(TextureData, bool, Matrix4)"/>.
    /// </summary>
    /// <param name="heightMap">The image whose brightness is the height.</param>
    /// <param name="transform">Applied to every point.</param>
    public Mesh(TextureData heightMap, Matrix4 transform)
        : this(heightMap, true, transform)
    {
    }

    /// <summary>
    /// Makes a mesh of a height map, one control point for each pixel. Before the transform the points lie
    /// over the square from -0.5 to 0.5 in x and z, the top row of the image at z = -0.5, and the heights in
    /// y are from 0 for black to 1 for white.
    /// </summary>
    /// <param name="heightMap">The image whose brightness is the height, at least 2 x 2 pixels.</param>
    /// <param name="triMesh">Whether the polygons are triangles; quads otherwise.</param>
    /// <param name="transform">Applied to every point.</param>
    /// <exception cref="ArgumentException">The image is too small.</exception>
    /// <exception cref="NotSupportedException">The pixels cannot be read as brightness.</exception>
    public Mesh(TextureData heightMap, bool triMesh, Matrix4 transform)
        : this("")
    {
        HeightMap.Fill(this, heightMap, triMesh, transform);
    }

    /// <summary>Makes a mesh without polygons.</summary>
    /// <param name="name">Its name.</param>
    public Mesh(string name)
        : base(name)
    {
    }

    /// <summary>
    /// The edges of the polygons, each once: the two control points of the first edge, those of the second,
    /// and so on, in the order in which going round the polygons first meets them. The list cannot be
    /// changed; it is made anew after the polygons have changed.
    /// </summary>
    public IList<int> Edges
    {
        get
        {
            if (_edges is null || _edgesVersion != _polygons.Version)
            {
                _edges = FindEdges();
                _edgesVersion = _polygons.Version;
            }
            return _edges;
        }
    }

    /// <summary>The number of polygons.</summary>
    public int PolygonCount => _polygons.Count;

    /// <summary>
    /// The polygons as arrays of control point indices. The arrays are copies: to change a polygon, set it.
    /// </summary>
    public IList<int[]> Polygons => _polygons;

    /// <summary>The polygons as they are kept.</summary>
    internal PolygonStore PolygonStore => _polygons;

    /// <summary>Adds a polygon.</summary>
    /// <param name="indices">An array that holds the indices of its control points.</param>
    /// <param name="offset">The place of the first of them.</param>
    /// <param name="length">Their number, at least 3.</param>
    /// <exception cref="ArgumentException">
    /// The polygon has fewer than three corners or a negative index.
    /// </exception>
    public void CreatePolygon(int[] indices, int offset, int length)
    {
        ArgumentNullException.ThrowIfNull(indices);
        ArgumentOutOfRangeException.ThrowIfNegative(offset);
        ArgumentOutOfRangeException.ThrowIfNegative(length);
        if (length > indices.Length - offset)
            throw new ArgumentException("The array has fewer indices than the polygon needs.",
                nameof(length));
        _polygons.Add(indices.AsSpan(offset, length));
    }

    /// <summary>Adds a polygon.</summary>
    /// <param name="indices">The indices of its control points, at least 3.</param>
    /// <exception cref="ArgumentException">
    /// The polygon has fewer than three corners or a negative index.
    /// </exception>
    public void CreatePolygon(int[] indices)
    {
        ArgumentNullException.ThrowIfNull(indices);
        _polygons.Add(indices.AsSpan());
    }

    /// <summary>Adds a quad.</summary>
    /// <param name="v1">The index of its first control point.</param>
    /// <param name="v2">The index of its second control point.</param>
    /// <param name="v3">The index of its third control point.</param>
    /// <param name="v4">The index of its fourth control point.</param>
    public void CreatePolygon(int v1, int v2, int v3, int v4) => _polygons.Add([v1, v2, v3, v4]);

    /// <summary>Adds a triangle.</summary>
    /// <param name="v1">The index of its first control point.</param>
    /// <param name="v2">The index of its second control point.</param>
    /// <param name="v3">The index of its third control point.</param>
    public void CreatePolygon(int v1, int v2, int v3) => _polygons.Add([v1, v2, v3]);

    /// <summary>Gives the number of corners of a polygon.</summary>
    /// <param name="index">The index of the polygon.</param>
    /// <exception cref="ArgumentOutOfRangeException">There is no such polygon.</exception>
    public int GetPolygonSize(int index) => _polygons.Size(index);

    /// <summary>Gives this mesh itself.</summary>
    public Mesh ToMesh() => this;

    /// <inheritdoc/>
    public override EntityRendererKey GetEntityRendererKey() => RendererKey;

    IEnumerator<int[]> IEnumerable<int[]>.GetEnumerator() => _polygons.GetEnumerator();

    IEnumerator IEnumerable.GetEnumerator() => _polygons.GetEnumerator();

    private ReadOnlyCollection<int> FindEdges()
    {
        List<int> edges = new();
        HashSet<(int, int)> seen = new();
        for (int i = 0; i < _polygons.Count; ++i)
        {
            ReadOnlySpan<int> polygon = _polygons.Polygon(i);
            for (int k = 0; k < polygon.Length; ++k)
            {
                int a = polygon[k];
                int b = polygon[k + 1 == polygon.Length ? 0 : k + 1];
                if (seen.Add((Math.Min(a, b), Math.Max(a, b))))
                {
                    edges.Add(a);
                    edges.Add(b);
                }
            }
        }
        return edges.AsReadOnly();
    }
}
