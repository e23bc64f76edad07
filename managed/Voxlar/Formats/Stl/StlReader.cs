using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats.Text;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Stl;

/// <summary>
/// Reads STL, text and binary, which the content tells apart.
/// </summary>
/// <remarks>
/// Each solid becomes a node below the root with a mesh of its name. Its polygons are the facets in their
/// order, its control points the vertices as stored, three for each facet, none merged; the normals of the
/// facets are a normal element by polygon. Colours in the attribute words of a binary file become a colour
/// element by polygon; the words themselves and the header are kept as the properties "stl.attributes" and
/// "stl.header".
/// </remarks>
internal sealed class StlReader : ISceneReader
{
    private const int HeaderSize = 80;
    private const int FacetSize = 50;

    private ReadContext _context = null!;
    private StlLoadOptions _options = null!;
    private Scene _scene = null!;

    public void Read(Stream stream, Scene scene, ReadContext context)
    {
        _context = context;
        _scene = scene;
        _options = context.OptionsAs<StlLoadOptions>();
        byte[] data = context.ReadAll(stream);
        if (IsText(data))
            ReadText(TextBytes.ToUtf8(data, context));
        else
            ReadBinary(data);
    }

    // Binary files may start with "solid" too; the number of facets then fits the length.
    private static bool IsText(byte[] data)
    {
        if (data.Length >= HeaderSize + 4
            && data.Length == HeaderSize + 4 + FacetSize * (long)BitConverter.ToUInt32(data, HeaderSize))
            return false;
        if (data is [0xff, 0xfe, ..] or [0xfe, 0xff, ..])
            return true;
        ReadOnlySpan<byte> head = data.AsSpan(0, Math.Min(data.Length, 512));
        if (head.StartsWith((ReadOnlySpan<byte>)[0xef, 0xbb, 0xbf]))
            head = head[3..];
        while (head.Length > 0 && head[0] is (byte)' ' or (byte)'\t' or (byte)'\r' or (byte)'\n')
            head = head[1..];
        return head.Length >= 5 && Ascii.EqualsIgnoreCase(head[..5], "solid"u8) && !head.Contains((byte)0);
    }

    private void ReadBinary(byte[] data)
    {
        BoundedReader reader = new(data, _context);
        ReadOnlySpan<byte> header = reader.Take(HeaderSize, "the header").Span;
        long announced = reader.ReadUInt32();
        int count = reader.Count(announced, FacetSize, "facets");
        if (count > int.MaxValue / 3)
            throw reader.Error($"{count} facets are more than can be held");
        ReadOnlySpan<byte> facets = data.AsSpan(HeaderSize + 4, count * FacetSize);
        Mesh mesh = new();
        Vector4[] normals = new Vector4[count];
        int[] words = new int[count];
        bool anyWord = false;
        CollectionsMarshal.SetCount(mesh.ControlPointList, count * 3);
        Span<Vector4> points = CollectionsMarshal.AsSpan(mesh.ControlPointList);
        for (int i = 0; i < count; i++)
        {
            ReadOnlySpan<byte> facet = facets.Slice(i * FacetSize, FacetSize);
            normals[i] = VectorAt(facet, 0, 0);
            for (int k = 0; k < 3; k++)
                points[i * 3 + k] = VectorAt(facet, 12 + k * 12, 1);
            words[i] = BitConverter.ToUInt16(facet[48..]);
            anyWord |= words[i] != 0;
        }
        FillTriangles(mesh, count);
        AddNormals(mesh, normals);
        if (anyWord)
        {
            mesh.SetProperty(StlNames.Attributes, words);
            AddColors(mesh, words, StlColors.OfHeader(header));
        }
        if (header.ContainsAnyExcept((byte)0))
            mesh.SetProperty(StlNames.Header, header.ToArray());
        _scene.RootNode.CreateChildNode("", mesh);
    }

    private static Vector4 VectorAt(ReadOnlySpan<byte> facet, int at, double w) => new(
        BitConverter.ToSingle(facet[at..]), BitConverter.ToSingle(facet[(at + 4)..]),
        BitConverter.ToSingle(facet[(at + 8)..]), w);

    private static void FillTriangles(Mesh mesh, int count)
    {
        mesh.PolygonStore.EnsureCapacity(count, count * 3);
        Span<int> corners = stackalloc int[3];
        for (int i = 0; i < count; i++)
        {
            corners[0] = i * 3;
            corners[1] = i * 3 + 1;
            corners[2] = i * 3 + 2;
            mesh.PolygonStore.Add(corners);
        }
    }

    private static void AddColors(Mesh mesh, int[] words, Vector4? ofHeader)
    {
        if (!Array.Exists(words, word => StlColors.HasColor(word, ofHeader is not null)))
            return;
        Vector4 otherwise = ofHeader ?? new Vector4(1, 1, 1, 1);
        VertexElementVertexColor colors = new() { MappingMode = MappingMode.Polygon };
        colors.SetData(Array.ConvertAll(words, word => StlColors.HasColor(word, ofHeader is not null)
            ? StlColors.Decode(word, ofHeader is not null) : otherwise));
        mesh.VertexElements.Add(colors);
    }

    private void AddNormals(Mesh mesh, Vector4[] normals)
    {
        if (_options.RecalculateNormal)
        {
            List<Vector4> points = mesh.ControlPointList;
            for (int i = 0; i < normals.Length; i++)
                normals[i] = new Vector4(StlGeometry.Normal(mesh.PolygonStore.Polygon(i), points), 0);
        }
        if (_options.FlipCoordinateSystem)
            Flip(mesh, normals);
        if (normals.Length == 0)
            return;
        VertexElementNormal element = new() { MappingMode = MappingMode.Polygon };
        element.SetData(normals);
        mesh.VertexElements.Add(element);
    }

    // Exchanging two axes turns the space inside out; the corners then run the other way round, from the same
    // first one.
    private static void Flip(Mesh mesh, Vector4[] normals)
    {
        Span<Vector4> points = CollectionsMarshal.AsSpan(mesh.ControlPointList);
        foreach (ref Vector4 point in points)
            (point.y, point.z) = (point.z, point.y);
        foreach (ref Vector4 normal in normals.AsSpan())
            (normal.y, normal.z) = (normal.z, normal.y);
        for (int i = 0; i < mesh.PolygonCount; i++)
        {
            int start = mesh.PolygonStore.Start(i);
            points.Slice(start + 1, mesh.PolygonStore.Size(i) - 1).Reverse();
        }
    }

    private void ReadText(byte[] data)
    {
        TextScanner text = new(_context, data);
        text.SkipSpace();
        while (!text.AtEnd)
        {
            Expect(text, "solid"u8);
            ReadSolid(text);
            text.SkipSpace();
        }
    }

    private void ReadSolid(TextScanner text)
    {
        Mesh mesh = new(text.RestOfLine());
        List<Vector4> points = mesh.ControlPointList;
        List<Vector4> normals = [];
        IntBuffer corners = new();
        while (true)
        {
            text.SkipSpace();
            if (text.AtEnd)
                throw text.Error("the file ends before the end of a solid ('endsolid')");
            int start = text.Position;
            ReadOnlySpan<byte> word = text.Word();
            if (Ascii.EqualsIgnoreCase(word, "endsolid"u8))
                break;
            if (!Ascii.EqualsIgnoreCase(word, "facet"u8))
            {
                text.Position = start;
                throw text.Malformed("'facet' or 'endsolid'");
            }
            Expect(text, "normal"u8);
            normals.Add(Vector(text, "a coordinate of a normal", 0));
            Expect(text, "outer"u8);
            Expect(text, "loop"u8);
            corners.Count = 0;
            while (NextIs(text, "vertex"u8))
            {
                corners.Add(points.Count);
                points.Add(Vector(text, "a coordinate of a vertex", 1));
            }
            if (corners.Count < 3)
                throw text.Error($"a facet has {corners.Count} vertices; it needs 3");
            mesh.PolygonStore.Add(corners.Span);
            Expect(text, "endloop"u8);
            Expect(text, "endfacet"u8);
        }
        text.NextLine();
        AddNormals(mesh, [.. normals]);
        _scene.RootNode.CreateChildNode(mesh.Name, mesh);
    }

    private static Vector4 Vector(TextScanner text, string what, double w) =>
        new(text.Number(what), text.Number(what), text.Number(what), w);

    private static bool NextIs(TextScanner text, ReadOnlySpan<byte> expected)
    {
        text.SkipSpace();
        int start = text.Position;
        if (Ascii.EqualsIgnoreCase(text.Word(), expected))
            return true;
        text.Position = start;
        return false;
    }

    private static void Expect(TextScanner text, ReadOnlySpan<byte> expected)
    {
        if (!NextIs(text, expected))
            throw text.Malformed($"'{Encoding.ASCII.GetString(expected)}'");
    }
}
