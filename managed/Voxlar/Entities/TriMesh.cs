using System;
using System.Buffers.Binary;
using System.Collections;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;
using BitOperations = System.Numerics.BitOperations;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A triangle mesh as a device takes it: vertices laid out by a declaration, one after the other in one array
/// of bytes, and three indices for each triangle. Vertices that are added one by one and are equal to the
/// last bit are kept once. Enumerating it gives its vertices.
/// </summary>
public class TriMesh : Entity, IEnumerable<Vertex>
{
    private static readonly EntityRendererKey RendererKey = new("TriMesh");

    private readonly int _size;
    private readonly List<int> _indices = new();
    private readonly Dictionary<int, int> _known;
    private readonly byte[] _scratch;
    private readonly Vertex _scratchVertex;
    private byte[] _data = [];
    private bool _open;

    /// <summary>Makes a mesh without vertices. Its declaration cannot be changed from then on.</summary>
    /// <param name="name">Its name.</param>
    /// <param name="declaration">The fields of its vertices, at least one.</param>
    /// <exception cref="ArgumentException">The declaration has no fields.</exception>
    public TriMesh(string name, VertexDeclaration declaration)
        : base(name)
    {
        ArgumentNullException.ThrowIfNull(declaration);
        if (declaration.Size == 0)
            throw new ArgumentException("The vertices of a mesh have at least one field.",
                nameof(declaration));
        declaration.Seal();
        VertexDeclaration = declaration;
        _size = declaration.Size;
        _scratch = new byte[_size];
        _scratchVertex = new Vertex(declaration, _scratch);
        _known = new Dictionary<int, int>(new ByContent(this));
    }

    /// <summary>The fields of the vertices.</summary>
    public VertexDeclaration VertexDeclaration { get; }

    /// <summary>The number of vertices.</summary>
    public int VerticesCount { get; private set; }

    /// <summary>The number of indices, three for each triangle.</summary>
    public int IndicesCount => _indices.Count;

    /// <summary>The number of vertices if equal ones had not been merged.</summary>
    public int UnmergedVerticesCount { get; private set; }

    /// <summary>The number of vertices that there is room for.</summary>
    public int Capacity => _data.Length / _size;

    /// <summary>The size of all vertices in bytes.</summary>
    public int VerticesSizeInBytes => VerticesCount * _size;

    internal ReadOnlySpan<byte> VertexBytes => _data.AsSpan(0, VerticesSizeInBytes);

    internal ReadOnlySpan<int> IndexSpan => CollectionsMarshal.AsSpan(_indices);

    /// <summary>Makes a mesh of the triangles that the polygons of another are cut into.</summary>
    /// <param name="declaration">
    /// The fields of its vertices. A field takes the vertex element of its meaning and index; one that has
    /// none is 0.
    /// </param>
    /// <param name="mesh">The mesh.</param>
    /// <exception cref="InvalidOperationException">
    /// A polygon has a control point that does not exist.
    /// </exception>
    public static TriMesh FromMesh(VertexDeclaration declaration, Mesh mesh)
    {
        ArgumentNullException.ThrowIfNull(mesh);
        TriMesh result = new(mesh.Name, declaration);
        TriMeshBuilder.Fill(result, mesh);
        return result;
    }

    /// <summary>
    /// Makes a mesh with a field for each vertex element of another, see <see cref="VertexDeclaration"/>.
    /// </summary>
    /// <param name="mesh">The mesh.</param>
    /// <param name="useFloat">Whether fields are of single precision; of double precision otherwise.</param>
    /// <exception cref="InvalidOperationException">
    /// A polygon has a control point that does not exist.
    /// </exception>
    public static TriMesh FromMesh(Mesh mesh, bool useFloat) =>
        FromMesh(VertexDeclaration.FromGeometry(mesh, useFloat), mesh);

    /// <summary>
    /// Makes a copy of a mesh with other fields. Fields that the source does not have are 0.
    /// </summary>
    /// <param name="input">The mesh.</param>
    /// <param name="vd">The fields of the copy.</param>
    public static TriMesh CopyFrom(TriMesh input, VertexDeclaration vd)
    {
        ArgumentNullException.ThrowIfNull(input);
        TriMesh result = new(input.Name, vd);
        List<(VertexField From, VertexField To)> common = new();
        foreach (VertexField field in vd)
        {
            if (input.VertexDeclaration.Find(field.Semantic, field.Index) is VertexField source)
                common.Add((source, field));
        }
        result.Reserve(input.VerticesCount);
        for (int i = 0; i < input.VerticesCount; ++i)
        {
            Vertex source = input.VertexAt(i);
            Vertex target = result.VertexAt(i);
            foreach ((VertexField from, VertexField to) in common)
                target.Write(to, source.ReadVector4(from));
        }
        result.VerticesCount = input.VerticesCount;
        result.UnmergedVerticesCount = input.UnmergedVerticesCount;
        result._indices.AddRange(input._indices);
        return result;
    }

    /// <summary>Makes a mesh of vertices and indices that are there already; both are copied.</summary>
    /// <param name="vd">The fields of the vertices.</param>
    /// <param name="vertices">The bytes of the vertices, without gaps.</param>
    /// <param name="indices">Three indices for each triangle.</param>
    /// <param name="generateVertexMapping">Whether vertices added later are merged with these.</param>
    /// <exception cref="ArgumentException">
    /// The bytes are no whole number of vertices, or an index has no vertex, or a triangle is not complete.
    /// </exception>
    public static TriMesh FromRawData(VertexDeclaration vd, byte[] vertices, int[] indices,
        bool generateVertexMapping)
    {
        ArgumentNullException.ThrowIfNull(indices);
        TriMesh result = new("", vd);
        result.LoadVerticesFromBytes(vertices);
        if (indices.Length % 3 != 0)
            throw new ArgumentException("A triangle mesh has three indices for each triangle.",
                nameof(indices));
        foreach (int index in indices)
        {
            if (index < 0 || index >= result.VerticesCount)
            {
                throw new ArgumentException(
                    $"There is no vertex {index} among the {result.VerticesCount} vertices.",
                    nameof(indices));
            }
        }
        result._indices.AddRange(indices);
        result.UnmergedVerticesCount = indices.Length;
        if (generateVertexMapping)
        {
            for (int i = 0; i < result.VerticesCount; ++i)
                result._known.TryAdd(i, i);
        }
        return result;
    }

    /// <summary>Gives the indices as 16-bit numbers.</summary>
    /// <param name="result">The indices.</param>
    /// <exception cref="InvalidOperationException">There are more vertices than 16 bits can tell.</exception>
    public void IndicesToArray(out ushort[] result)
    {
        Check16Bits();
        result = new ushort[_indices.Count];
        for (int i = 0; i < result.Length; ++i)
            result[i] = (ushort)_indices[i];
    }

    /// <summary>Gives the indices as 32-bit numbers.</summary>
    /// <param name="result">The indices.</param>
    public void IndicesToArray(out int[] result) => result = _indices.ToArray();

    /// <summary>Begins a vertex, all of whose bytes are 0 at first.</summary>
    /// <returns>The vertex, the same object every time; it can be filled until it is ended.</returns>
    /// <exception cref="InvalidOperationException">The last vertex has not been ended.</exception>
    public Vertex BeginVertex()
    {
        if (_open)
            throw new InvalidOperationException("The last vertex has not been ended.");
        _open = true;
        Array.Clear(_scratch);
        return _scratchVertex;
    }

    /// <summary>
    /// Ends a vertex: adds it, unless an equal one is there, and adds its index. Three of them make a
    /// triangle.
    /// </summary>
    /// <exception cref="InvalidOperationException">No vertex has been begun.</exception>
    public void EndVertex()
    {
        if (!_open)
            throw new InvalidOperationException("No vertex has been begun.");
        _open = false;
        // The new vertex is looked up where it will stand if it stays; the comparison reads the bytes there.
        int candidate = VerticesCount;
        Reserve(candidate + 1);
        _scratch.CopyTo(_data, candidate * _size);
        if (!_known.TryGetValue(candidate, out int index))
        {
            index = candidate;
            _known.Add(candidate, candidate);
            ++VerticesCount;
        }
        _indices.Add(index);
        ++UnmergedVerticesCount;
    }

    /// <summary>Writes the bytes of all vertices.</summary>
    /// <param name="stream">The stream that takes them.</param>
    public void WriteVerticesTo(Stream stream)
    {
        ArgumentNullException.ThrowIfNull(stream);
        stream.Write(VertexBytes);
    }

    /// <summary>Writes the indices as little-endian 16-bit numbers.</summary>
    /// <param name="stream">The stream that takes them.</param>
    /// <exception cref="InvalidOperationException">There are more vertices than 16 bits can tell.</exception>
    public void Write16bIndicesTo(Stream stream)
    {
        ArgumentNullException.ThrowIfNull(stream);
        Check16Bits();
        byte[] bytes = new byte[_indices.Count * sizeof(ushort)];
        for (int i = 0; i < _indices.Count; ++i)
            BinaryPrimitives.WriteUInt16LittleEndian(bytes.AsSpan(i * sizeof(ushort)), (ushort)_indices[i]);
        stream.Write(bytes);
    }

    /// <summary>Writes the indices as little-endian 32-bit numbers.</summary>
    /// <param name="stream">The stream that takes them.</param>
    public void Write32bIndicesTo(Stream stream)
    {
        ArgumentNullException.ThrowIfNull(stream);
        byte[] bytes = new byte[_indices.Count * sizeof(int)];
        for (int i = 0; i < _indices.Count; ++i)
            BinaryPrimitives.WriteInt32LittleEndian(bytes.AsSpan(i * sizeof(int)), _indices[i]);
        stream.Write(bytes);
    }

    /// <summary>Gives a copy of the bytes of all vertices.</summary>
    public byte[] VerticesToArray() => VertexBytes.ToArray();

    /// <summary>
    /// Replaces the vertices; the indices stay. Vertices added later are not merged with these.
    /// </summary>
    /// <param name="verticesInBytes">The bytes of the vertices, without gaps, which are copied.</param>
    /// <exception cref="ArgumentException">
    /// The bytes are no whole number of vertices, or an index would have no vertex.
    /// </exception>
    public void LoadVerticesFromBytes(byte[] verticesInBytes)
    {
        ArgumentNullException.ThrowIfNull(verticesInBytes);
        if (verticesInBytes.Length % _size != 0)
        {
            throw new ArgumentException(
                $"{verticesInBytes.Length} bytes are no whole number of vertices of {_size} bytes.",
                nameof(verticesInBytes));
        }
        int count = verticesInBytes.Length / _size;
        if (_indices.Exists(index => index >= count))
            throw new ArgumentException("The indices of the mesh need more vertices.",
                nameof(verticesInBytes));
        _known.Clear();
        _data = (byte[])verticesInBytes.Clone();
        VerticesCount = count;
        if (_indices.Count == 0)
            UnmergedVerticesCount = count;
    }

    /// <summary>Reads a field of a vertex as four doubles, see <see cref="Vertex"/>.</summary>
    /// <param name="idx">The index of the vertex.</param>
    /// <param name="field">A field of the declaration.</param>
    public Vector4 ReadVector4(int idx, VertexField field) => Checked(idx).ReadVector4(field);

    /// <summary>Reads a field of a vertex as four singles.</summary>
    /// <param name="idx">The index of the vertex.</param>
    /// <param name="field">A field of the declaration.</param>
    public FVector4 ReadFVector4(int idx, VertexField field) => Checked(idx).ReadFVector4(field);

    /// <summary>Reads a field of a vertex as three doubles.</summary>
    /// <param name="idx">The index of the vertex.</param>
    /// <param name="field">A field of the declaration.</param>
    public Vector3 ReadVector3(int idx, VertexField field) => Checked(idx).ReadVector3(field);

    /// <summary>Reads a field of a vertex as three singles.</summary>
    /// <param name="idx">The index of the vertex.</param>
    /// <param name="field">A field of the declaration.</param>
    public FVector3 ReadFVector3(int idx, VertexField field) => Checked(idx).ReadFVector3(field);

    /// <summary>Reads a field of a vertex as two doubles.</summary>
    /// <param name="idx">The index of the vertex.</param>
    /// <param name="field">A field of the declaration.</param>
    public Vector2 ReadVector2(int idx, VertexField field) => Checked(idx).ReadVector2(field);

    /// <summary>Reads a field of a vertex as two singles.</summary>
    /// <param name="idx">The index of the vertex.</param>
    /// <param name="field">A field of the declaration.</param>
    public FVector2 ReadFVector2(int idx, VertexField field) => Checked(idx).ReadFVector2(field);

    /// <summary>Reads the first component of a field of a vertex.</summary>
    /// <param name="idx">The index of the vertex.</param>
    /// <param name="field">A field of the declaration.</param>
    public double ReadDouble(int idx, VertexField field) => Checked(idx).ReadDouble(field);

    /// <summary>Reads the first component of a field of a vertex.</summary>
    /// <param name="idx">The index of the vertex.</param>
    /// <param name="field">A field of the declaration.</param>
    public float ReadFloat(int idx, VertexField field) => Checked(idx).ReadFloat(field);

    /// <inheritdoc/>
    public override EntityRendererKey GetEntityRendererKey() => RendererKey;

    /// <summary>The box around the positions; empty without vertices or positions.</summary>
    public override BoundingBox GetBoundingBox()
    {
        BoundingBox box = BoundingBox.Null;
        if (VertexDeclaration.Find(VertexFieldSemantic.Position, 0) is VertexField position)
        {
            for (int i = 0; i < VerticesCount; ++i)
                box = box.Merge(VertexAt(i).ReadVector3(position));
        }
        return box;
    }

    IEnumerator<Vertex> IEnumerable<Vertex>.GetEnumerator()
    {
        for (int i = 0; i < VerticesCount; ++i)
            yield return VertexAt(i);
    }

    IEnumerator IEnumerable.GetEnumerator() => ((IEnumerable<Vertex>)this).GetEnumerator();

    /// <summary>Makes room for vertices.</summary>
    internal void Reserve(int vertices)
    {
        long needed = (long)vertices * _size;
        if (needed <= _data.Length)
            return;
        if (needed > Array.MaxLength)
            throw new InvalidOperationException("The mesh has more vertices than there is room for.");
        long grown = Math.Min(Math.Max(needed, _data.Length * 3L / 2), Array.MaxLength);
        Array.Resize(ref _data, (int)(grown / _size * _size));
    }

    private Vertex VertexAt(int index) => new(VertexDeclaration, _data.AsMemory(index * _size, _size));

    private Vertex Checked(int index)
    {
        if (index < 0 || index >= VerticesCount)
            throw new ArgumentOutOfRangeException(nameof(index), $"There is no vertex {index}.");
        return VertexAt(index);
    }

    private void Check16Bits()
    {
        if (VerticesCount > ushort.MaxValue + 1)
            throw new InvalidOperationException($"{VerticesCount} vertices cannot be indexed with 16 bits.");
    }

    // Compares vertices by the bytes that stand at their index, those of the vertex being added included.
    private sealed class ByContent(TriMesh mesh) : IEqualityComparer<int>
    {
        // An odd number with well mixed bits, the golden ratio as a fraction of 2 to the 64.
        private const ulong Multiplier = 0x9E3779B97F4A7C15;

        public bool Equals(int x, int y) => x == y || Bytes(x).SequenceEqual(Bytes(y));

        public int GetHashCode(int obj)
        {
            ReadOnlySpan<byte> bytes = Bytes(obj);
            ulong hash = 0;
            foreach (ulong word in MemoryMarshal.Cast<byte, ulong>(bytes))
                hash = BitOperations.RotateLeft((hash ^ word) * Multiplier, 29);
            for (int i = bytes.Length & ~7; i < bytes.Length; ++i)
                hash = BitOperations.RotateLeft((hash ^ bytes[i]) * Multiplier, 29);
            return (int)(hash ^ hash >> 32);
        }

        private ReadOnlySpan<byte> Bytes(int index) => mesh._data.AsSpan(index * mesh._size, mesh._size);
    }
}
