using System;
using System.Collections.Generic;
using System.Linq;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Gltf;

/// <summary>Views that are compressed with EXT_meshopt_compression, made by hand bit by bit.</summary>
public class GltfMeshoptTests
{
    private const string Head = """
        "extensionsUsed": ["EXT_meshopt_compression"], "extensionsRequired": ["EXT_meshopt_compression"],
        "scenes": [{"nodes": [0]}], "nodes": [{"mesh": 0}],
        """;

    private static Geometry Open(GltfSample sample, string primitive) => (Geometry)sample.Open(
        Head + "\"meshes\": [{\"primitives\": [" + primitive + "]}]").RootNode.ChildNodes[0].Entity!;

    private static string Accessor(int view, int type, int count, string shape, bool normalized = false) =>
        "{\"bufferView\": " + view + ", \"componentType\": " + type + ", \"count\": " + count
            + ", \"type\": \"" + shape
        + "\", \"normalized\": " + (normalized ? "true" : "false") + "}";

    /// <summary>
    /// Sixteen elements of four bytes, one way of packing for each byte; the element before has the tail.
    /// </summary>
    private static byte[] Elements()
    {
        var stream = new List<byte> { 0xA0 };
        // No differences: all as in the tail.
        stream.Add(0);
        // Two bits: +1, -1, nothing, then a byte of its own (+2), twelve times nothing.
        stream.AddRange([1, 0b10_01_00_11, 0, 0, 0, 4]);
        // Four bits: -7 (13) and a byte of its own (-100), then nothing.
        stream.AddRange([2, 0xDF, 0, 0, 0, 0, 0, 0, 0, 199]);
        // Whole bytes: +3 each time.
        stream.Add(3);
        stream.AddRange(Enumerable.Repeat((byte)6, 16));
        stream.AddRange(new byte[28]);
        stream.AddRange([7, 10, 200, 0]);
        return [.. stream];
    }

    [Fact]
    public void Attributes_are_differences_to_the_element_before()
    {
        var sample = new GltfSample();
        int view = sample.Compressed(Elements(), 4, 16, "ATTRIBUTES");
        int values = sample.Accessor(Accessor(view, 5121, 16, "VEC4"));
        int position = sample.Floats("VEC3", new float[48]);
        Geometry points = Open(sample, $$$"""{"mode": 0, "attributes": {"POSITION": {{{position}}}, "_V": {{{values}}} } }""");
        var bytes = (byte[])((VertexElementUserData)points.VertexElements[0]).Data!;
        Assert.Equal([7, 11, 193, 3], bytes[..4]);
        Assert.Equal([7, 10, 93, 6], bytes[4..8]);
        Assert.Equal([7, 10, 93, 9], bytes[8..12]);
        Assert.Equal([7, 12, 93, 12], bytes[12..16]);
        Assert.Equal([7, 12, 93, 48], bytes[60..]);
    }

    [Fact]
    public void Triangles_come_by_edges_and_vertices_before()
    {
        var sample = new GltfSample();
        // A triangle of new vertices by the table, one more over its last edge, and one with a vertex of its
        // own.
        byte[] stream = [0xE1, 0xF0, 0x00, 0x0F, 4 * 2, .. new byte[16]];
        int indices = sample.Accessor(Accessor(sample.Compressed(stream, 4, 9, "TRIANGLES"), 5125, 9,
            "SCALAR"));
        int position = sample.Floats("VEC3", new float[15]);
        var mesh = (Mesh)Open(sample, $$$"""{"attributes": {"POSITION": {{{position}}} }, "indices": {{{indices}}} }""");
        Assert.Equal([[0, 1, 2], [0, 2, 3], [0, 3, 4]], mesh.Polygons);
    }

    [Fact]
    public void Indices_are_differences_to_one_of_two_before()
    {
        var sample = new GltfSample();
        byte[] stream = [0xD1, 2 << 1 << 1, 1 << 1, 1 << 1 << 1 | 1, .. new byte[4]];
        int indices = sample.Accessor(Accessor(sample.Compressed(stream, 2, 3, "INDICES"), 5123, 3,
            "SCALAR"));
        int position = sample.Floats("VEC3", new float[9]);
        var mesh = (Mesh)Open(sample, $$$"""{"attributes": {"POSITION": {{{position}}} }, "indices": {{{indices}}} }""");
        Assert.Equal([[2, 1, 1]], mesh.Polygons);
    }

    [Fact]
    public void Filters_give_unit_vectors_rotations_and_floats()
    {
        Assert.Equal([0, 0, 1, 0], Filtered("OCTAHEDRAL", 4, 5120, "VEC4", true, [0, 0, 127, 0]));
        float[] folded = Filtered("OCTAHEDRAL", 8, 5122, "VEC4", true, Shorts(16384, 16384, 16384, 0));
        Assert.True(Math.Abs(folded[0] * folded[0] + folded[1] * folded[1]
            + folded[2] * folded[2] - 1) < 1e-3);
        Assert.True(folded[2] < 0);
        float[] turn = Filtered("QUATERNION", 8, 5122, "VEC4", true, Shorts(0, 0, 0, 2047));
        Assert.Equal([0f, 0, 0, 1], turn.Select(v => MathF.Round(v, 3)));
        Assert.Equal([1.5f], Filtered("EXPONENTIAL", 4, 5126, "SCALAR", false, [3, 0, 0, 0xFF]));

        static byte[] Shorts(params short[] values) =>
            System.Runtime.InteropServices.MemoryMarshal.AsBytes(values.AsSpan()).ToArray();
    }

    /// <summary>One element that is the one of the tail, so that only the filter works.</summary>
    private static float[] Filtered(string filter, int stride, int type, string shape, bool normalized,
        byte[] element)
    {
        var sample = new GltfSample();
        byte[] stream = [0xA0, .. new byte[stride], .. new byte[32 - stride], .. element];
        int view = sample.Compressed(stream, stride, 1, "ATTRIBUTES", filter);
        int values = sample.Accessor(Accessor(view, type, 1, shape, normalized));
        int position = sample.Floats("VEC3", 0, 0, 0);
        Geometry points = Open(sample, $$$"""{"mode": 0, "attributes": {"POSITION": {{{position}}}, "_V": {{{values}}} } }""");
        return (float[])((VertexElementUserData)points.VertexElements[0]).Data!;
    }

    [Theory]
    [InlineData("ATTRIBUTES", "NONE", 4, 16, "A1", "no known version")]
    [InlineData("ATTRIBUTES", "NONE", 4, 16, "A0", "no tail")]
    [InlineData("ATTRIBUTES", "NONE", 4, 2000000000, "A000", "cannot come out")]
    [InlineData("ATTRIBUTES", "WHAT", 4, 1,
        "A000000000000000000000000000000000000000000000000000000000000000000000000000", "WHAT")]
    [InlineData("ATTRIBUTES", "NONE", 0, 16, "A0", "stride")]
    [InlineData("TRIANGLES", "NONE", 4, 9, "E1F0", "ends too early")]
    [InlineData("TRIANGLES", "NONE", 4, 4, "E1F0", "does not fit")]
    [InlineData("TRIANGLES", "NONE", 4, 3, "E20000000000000000000000000000000000000000", "no known version")]
    [InlineData("INDICES", "NONE", 2, 3, "D1FFFFFFFFFFFFFFFF", "too long")]
    [InlineData("PICTURES", "NONE", 4, 3, "00", "PICTURES")]
    public void Damaged_streams_are_refused(string mode, string filter, int stride, int count, string bytes,
        string reason)
    {
        var sample = new GltfSample();
        int view = sample.Compressed(Convert.FromHexString(bytes), stride, count, mode, filter);
        int position = sample.Accessor(Accessor(view, 5126, 1, "VEC3"));
        var e = Assert.Throws<ImportException>(() => Open(sample, $$$"""{"attributes": {"POSITION": {{{position}}} } }"""));
        Assert.Contains("bufferViews[0].extensions.EXT_meshopt_compression", e.Message,
            StringComparison.Ordinal);
        Assert.Contains(reason, e.Message, StringComparison.Ordinal);
    }
}
