using System;
using System.IO;
using System.Linq;
using System.Text;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Formats.Stl;

public class StlTests
{
    private const string TwoSolids = """
        solid First part
          facet normal 0 0 1
            outer loop
              vertex 0 0 0
              vertex 1 0 0
              vertex 0.1 1e-300 0
            endloop
          endfacet
        endsolid First part
        SOLID second
          FACET NORMAL 0 0 -1
            OUTER LOOP
              VERTEX 0 0 0
              VERTEX 0 1 0
              VERTEX 1 0 0
            ENDLOOP
          ENDFACET
        ENDSOLID
        """;

    [Fact]
    public void Each_solid_is_a_mesh_with_its_facets_as_stored()
    {
        Scene scene = Read(Encoding.ASCII.GetBytes(TwoSolids));

        Assert.Equal(["First part", "second"], scene.RootNode.ChildNodes.Select(node => node.Name));
        var mesh = (Mesh)scene.RootNode.ChildNodes[1].Entity!;
        Assert.Equal("second", mesh.Name);
        Assert.Equal([0, 1, 2], Assert.Single(mesh.Polygons));
        Assert.Equal(3, mesh.ControlPoints.Count);
        var normals = (VertexElementNormal)Assert.Single(mesh.VertexElements);
        Assert.Equal(MappingMode.Polygon, normals.MappingMode);
        Assert.Equal(new Vector4(0, 0, -1, 0), Assert.Single(normals.Data));
    }

    [Fact]
    public void Text_comes_back_the_same()
    {
        Scene scene = Read(Encoding.ASCII.GetBytes(TwoSolids));
        Scene back = SceneContent.SaveAndRead(scene, FileFormat.STLASCII);
        Assert.Equal(SceneContent.Of(scene, SceneContent.Parts.All), SceneContent.Of(back, SceneContent.Parts.All));
    }

    [Fact]
    public void A_binary_file_that_starts_with_solid_keeps_header_and_words()
    {
        byte[] file = Binary("solid but binary", (0, 0), (0, 0x8000 | 31 << 10 | 1));
        Scene scene = Read(file);

        var mesh = (Mesh)Assert.Single(scene.RootNode.ChildNodes).Entity!;
        Assert.Equal(2, mesh.PolygonCount);
        Assert.Equal(6, mesh.ControlPoints.Count);
        var colors = (VertexElementVertexColor)mesh.GetElement(VertexElementType.VertexColor)!;
        Assert.Equal(MappingMode.Polygon, colors.MappingMode);
        Assert.Equal([new Vector4(1, 1, 1, 1), new Vector4(1, 0, 1 / 31.0, 1)], colors.Data);
        Assert.Equal(file, Saved(scene, FileFormat.STLBinary));
    }

    [Fact]
    public void Words_with_a_colour_in_the_header_are_read_the_other_way()
    {
        byte[] file = Binary("COLOR=\u0033\u0033\u0033\u0033", (0, 31), (0, 0x8000));
        Scene scene = Read(file);

        var mesh = (Mesh)scene.RootNode.ChildNodes[0].Entity!;
        var colors = (VertexElementVertexColor)mesh.GetElement(VertexElementType.VertexColor)!;
        Assert.Equal([new Vector4(1, 0, 0, 1), new Vector4(0.2, 0.2, 0.2, 0.2)], colors.Data);
        Assert.Equal(file, Saved(scene, FileFormat.STLBinary));
    }

    [Fact]
    public void Polygons_are_cut_and_bodies_brought_to_their_places()
    {
        Scene scene = new();
        Node node = scene.RootNode.CreateChildNode("box", new Box(2, 2, 2));
        node.Transform.Translation = new Vector3(10, 0, 0);
        node.Transform.Scale = new Vector3(-1, 1, 1);
        foreach (FileFormat format in new[] { FileFormat.STLASCII, FileFormat.STLBinary })
        {
            var mesh = (Mesh)SceneContent.SaveAndRead(scene, format).RootNode.ChildNodes[0].Entity!;
            Assert.True(mesh.PolygonCount >= 12);
            BoundingBox box = mesh.GetBoundingBox();
            Assert.Equal(new Vector3(9, -1, -1), box.Minimum);
            Assert.Equal(new Vector3(11, 1, 1), box.Maximum);
            var normals = (VertexElementNormal)mesh.GetElement(VertexElementType.Normal)!;
            for (int i = 0; i < mesh.PolygonCount; i++)
            {
                Vector4 corner = mesh.ControlPoints[mesh.Polygons[i][0]];
                Vector4 normal = normals.Data[i];
                // Seen from the middle of the box, a face lies where its normal points.
                Assert.True((corner.x - 10) * normal.x + corner.y * normal.y + corner.z * normal.z > 0);
            }
        }
    }

    [Fact]
    public void The_options_exchange_axes_and_compute_normals()
    {
        byte[] file = Binary("", (1, 0));
        var mesh = (Mesh)Read(file, new StlLoadOptions { FlipCoordinateSystem = true, RecalculateNormal = true })
            .RootNode.ChildNodes[0].Entity!;

        Assert.Equal([new Vector4(0, 1, 0), new Vector4(0, 1, 1), new Vector4(1, 1, 0)], mesh.ControlPoints);
        Assert.Equal(new Vector4(0, 1, 0, 0), ((VertexElementNormal)mesh.VertexElements[0]).Data[0]);
    }

    [Theory]
    [InlineData("solid a\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 0 0\n", "line 5: a coordinate of a vertex is missing")]
    [InlineData("solid a\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nendloop\n", "line 5: a facet has 1 vertices")]
    [InlineData("solid a\nfacet normal 0 0 1\nloop\n", "line 3: 'loop' stands where 'outer' is expected")]
    [InlineData("solid a\n", "the file ends before the end of a solid")]
    public void Malformed_text_is_refused_with_line_and_reason(string text, string reason)
    {
        var e = Assert.Throws<ImportException>(() => Read(Encoding.ASCII.GetBytes(text)));
        Assert.Contains(reason, e.Message);
    }

    [Fact]
    public void More_facets_than_there_are_bytes_are_refused()
    {
        byte[] file = Binary("", (0, 0));
        BitConverter.TryWriteBytes(file.AsSpan(80), uint.MaxValue);
        var e = Assert.Throws<ImportException>(() => Read(file));
        Assert.Contains("byte 84: 4294967295 facets are announced, but only 50 bytes are left", e.Message);
        e = Assert.Throws<ImportException>(() => Read(file[..20]));
        Assert.Contains("the header of 80 bytes", e.Message);
    }

    [Fact]
    public void Lines_are_refused_by_their_type()
    {
        Scene scene = new();
        scene.RootNode.CreateChildNode("edge", Line.FromPoints([new Vector3(0, 0, 0), new Vector3(1, 0, 0)]));
        using MemoryStream stream = new();
        var e = Assert.Throws<ExportException>(() => scene.Save(stream, FileFormat.STLBinary));
        Assert.Contains("Line", e.Message);
        Assert.Equal(0, stream.Length);
    }

    private static Scene Read(byte[] data, StlLoadOptions? options = null)
    {
        Scene scene = new();
        using MemoryStream stream = new(data);
        SceneLoader.Load(scene, stream, "a.stl", options);
        return scene;
    }

    private static byte[] Saved(Scene scene, FileFormat format)
    {
        using MemoryStream stream = new();
        scene.Save(stream, format);
        return stream.ToArray();
    }

    // Facets over the corner of the unit square, at a height and with an attribute word.
    private static byte[] Binary(string header, params (float Height, int Word)[] facets)
    {
        using MemoryStream stream = new();
        using BinaryWriter writer = new(stream);
        byte[] head = new byte[80];
        Encoding.Latin1.GetBytes(header).CopyTo(head, 0);
        writer.Write(head);
        writer.Write(facets.Length);
        foreach ((float height, int word) in facets)
        {
            foreach (float value in new[] { 0, 0, 1, 0, 0, height, 1, 0, height, 0, 1, height })
                writer.Write(value);
            writer.Write((ushort)word);
        }
        return stream.ToArray();
    }
}
