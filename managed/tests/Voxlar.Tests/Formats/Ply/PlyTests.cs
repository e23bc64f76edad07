using System;
using System.IO;
using System.Linq;
using System.Text;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Formats.Ply;

public class PlyTests
{
    private const string Everything = """
        ply
        format ascii 1.0
        comment made by hand
        obj_info a b
        element vertex 5
        property double x
        property float32 y
        property int z
        property uchar red
        property uchar green
        property uchar blue
        property uchar alpha
        property float nx
        property float ny
        property float nz
        property float s
        property float t
        property ushort flags
        property list uchar short neighbours
        element face 2
        property list uchar int vertex_indices
        property char kind
        element edge 2
        property int vertex1
        property int vertex2
        property float weight
        element camera 1
        property float view_px
        property list int double matrix
        end_header
        0.1 0.5 1 255 0 51 255 0 0 1 0.25 0.5 65535 2 -1 2
        1 0 0 0 255 0 128 0 0 1 0 0 1 0
        1 1 0 0 0 255 255 0 0 1 1 0 2 1 7
        0 1 0 9 8 7 255 0 0 1 1 1 3 0
        0.5 1.5 0 9 8 7 0 0 0 1 1 1 3 0
        4 0 1 2 3 -5
        3 2 3 4 100
        0 1 0.5
        1 2 1.5
        0.25 3 0.1 0.2 0.3
        """;

    [Fact]
    public void Every_property_has_its_place()
    {
        Scene scene = Read(Everything);

        Node node = Assert.Single(scene.RootNode.ChildNodes);
        var mesh = (Mesh)node.Entities[0];
        Assert.Equal([[0, 1, 2, 3], [2, 3, 4]], mesh.Polygons);
        Assert.Equal(new Vector4(0.1, 0.5, 1, 1), mesh.ControlPoints[0]);
        var colors = (VertexElementVertexColor)mesh.GetElement(VertexElementType.VertexColor)!;
        Assert.Equal(new Vector4(1, 0, 0.2, 1), colors.Data[0]);
        var uv = (VertexElementUV)mesh.GetElement(VertexElementType.UV)!;
        Assert.Equal(new Vector4(0.25, 0.5, 0, 1), uv.Data[0]);
        Assert.Equal(MappingMode.ControlPoint, mesh.GetElement(VertexElementType.Normal)!.MappingMode);
        Assert.Equal([65535, 1, 2, 3, 3], (ushort[])mesh.GetProperty("ply.vertex.flags")!);
        Assert.Equal([-1, 2], ((short[][])mesh.GetProperty("ply.vertex.neighbours")!)[0]);
        Assert.Equal([-5, 100], (sbyte[])mesh.GetProperty("ply.face.kind")!);
        Assert.Equal([[0.1, 0.2, 0.3]], (double[][])mesh.GetProperty("ply.camera.matrix")!);
        Assert.Equal(["made by hand"], (string[])mesh.GetProperty("ply:comments")!);
        var line = (Line)node.Entities[1];
        Assert.Equal([[0, 1], [1, 2]], line.Segments);
        Assert.Equal(3, line.ControlPoints.Count);
        Assert.Equal([0.5f, 1.5f], (float[])line.GetProperty("ply.edge.weight")!);
    }

    [Theory]
    [InlineData(FileContentType.ASCII)]
    [InlineData(FileContentType.Binary)]
    public void What_is_written_is_read_back_the_same(FileContentType contentType)
    {
        Scene scene = Read(Everything);
        Scene back = SceneContent.SaveAndRead(scene, FileFormat.PLY, new PlySaveOptions(contentType));
        Assert.Equal(SceneContent.Of(scene, SceneContent.Parts.All), SceneContent.Of(back, SceneContent.Parts.All));
    }

    [Fact]
    public void Values_by_corner_and_polygon_come_back_by_corner_and_polygon()
    {
        Mesh mesh = new();
        foreach (double x in new[] { 0, 1, 2, 3.0 })
            mesh.ControlPoints.Add(new Vector4(x, x * x, 0));
        mesh.CreatePolygon(0, 1, 2);
        mesh.CreatePolygon(0, 2, 3);
        var uv = mesh.CreateElementUV(TextureMapping.Diffuse, MappingMode.PolygonVertex, ReferenceMode.Direct);
        uv.SetData([.. Enumerable.Range(0, 6).Select(i => new Vector4(i / 8.0, 0.1, 0))]);
        VertexElementNormal normals = new() { MappingMode = MappingMode.PolygonVertex };
        normals.SetData([.. Enumerable.Range(0, 6).Select(i => new Vector4(0, i % 2, 1 - i % 2, 0))]);
        mesh.VertexElements.Add(normals);
        VertexElementVertexColor colors = new() { MappingMode = MappingMode.Polygon };
        colors.SetData([new Vector4(1, 0, 0), new Vector4(0, 0.1, 1)]);
        mesh.VertexElements.Add(colors);
        Scene scene = new(mesh);

        Scene back = SceneContent.SaveAndRead(scene, FileFormat.PLY);

        SceneContent.Parts parts = SceneContent.Parts.Values;
        Assert.Equal(SceneContent.Of(scene, parts), SceneContent.Of(back, parts));
    }

    [Fact]
    public void Big_endian_data_is_read()
    {
        byte[] head = Encoding.ASCII.GetBytes(
            "ply\r\nformat binary_big_endian 1.0\r\nelement vertex 1\r\nproperty float x\r\nproperty double y\r\n"
            + "property short z\r\nend_header\r\n");
        byte[] data = [.. head, 0x3f, 0x80, 0, 0, 0x40, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xfe];

        var cloud = (PointCloud)Read(data).RootNode.ChildNodes[0].Entity!;

        Assert.Equal([new Vector4(1, 2, -2)], cloud.ControlPoints);
    }

    [Fact]
    public void Triangle_strips_become_triangles()
    {
        var mesh = (Mesh)Read("""
            ply
            format ascii 1.0
            element vertex 6
            property float x
            property float y
            property float z
            element tristrips 1
            property list int int vertex_indices
            end_header
            0 0 0
            1 0 0
            0 1 0
            1 1 0
            0 2 0
            1 2 0
            8 0 1 2 3 -1 3 4 5
            """).RootNode.ChildNodes[0].Entity!;

        Assert.Equal([[0, 1, 2], [2, 1, 3], [3, 4, 5]], mesh.Polygons);
    }

    [Fact]
    public void Several_meshes_become_one()
    {
        Scene scene = new();
        scene.RootNode.CreateChildNode("a", new Box(2, 2, 2)).Transform.Translation = new Vector3(10, 0, 0);
        scene.RootNode.CreateChildNode("b", new Box(2, 2, 2));

        var mesh = (Mesh)SceneContent.SaveAndRead(scene, FileFormat.PLY).RootNode.ChildNodes[0].Entity!;

        Mesh box = new Box(2, 2, 2).ToMesh();
        Assert.Equal(box.ControlPoints.Count * 2, mesh.ControlPoints.Count);
        Assert.Equal(box.PolygonCount * 2, mesh.PolygonCount);
        Assert.Equal(new Vector3(11, 1, 1), mesh.GetBoundingBox().Maximum);
        Assert.Equal(new Vector3(-1, -1, -1), mesh.GetBoundingBox().Minimum);
    }

    [Fact]
    public void Single_geometries_go_through_encode_and_decode()
    {
        Mesh mesh = new Box().ToMesh();
        using MemoryStream stream = new();
        FileFormat.PLY.Encode(mesh, stream, new PlySaveOptions(FileContentType.ASCII));
        stream.Position = 0;
        var back = (Mesh)FileFormat.PLY.Decode(stream);
        Assert.Equal(mesh.Polygons, back.Polygons);
        Assert.Equal(mesh.ControlPoints, back.ControlPoints);
    }

    [Fact]
    public void The_options_do_what_they_say()
    {
        Scene scene = Read(Everything);
        string text = Written(scene, new PlySaveOptions(FileContentType.ASCII)
        {
            VertexElement = "point", FaceElement = "polygon", FaceProperty = "corners", FlipCoordinate = true,
        });
        Assert.Contains("element point 5\n", text);
        Assert.Contains("element polygon 2\nproperty list uchar int corners\n", text);
        Assert.Contains("\n 0.1 1 0.5 ", text);
        Assert.Contains("\n 4 0 3 2 1 ", text);
        string cloud = Written(scene, new PlySaveOptions(FileContentType.ASCII) { PointCloud = true });
        Assert.DoesNotContain("face", cloud);
        Assert.DoesNotContain("edge", cloud);
        var mesh = (Mesh)Read(Everything, new PlyLoadOptions { FlipCoordinateSystem = true }).RootNode.ChildNodes[0].Entity!;
        Assert.Equal(new Vector4(0.1, 1, 0.5), mesh.ControlPoints[0]);
        Assert.Equal([0, 3, 2, 1], mesh.Polygons[0]);
    }

    [Theory]
    [InlineData("ply\nformat ascii 1.0\nelement vertex -1\n", "line 3: the number of 'vertex' is negative")]
    [InlineData("ply\nformat ascii 1.0\nelement vertex 1\nproperty real x\n", "line 4: there is no type 'real'")]
    [InlineData("ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\n", "before the end of the header")]
    [InlineData("ply\nformat ascii 1.0\nelement vertex 9000000000\nproperty float x\nend_header\n1\n", "9000000000 'vertex' are announced, but only 2 bytes are left")]
    [InlineData("ply\nformat ascii 1.0\nelement v 1\nproperty list int int x\nend_header\n2147483647 1\n", "line 6: a list 'x' of 2147483647 values")]
    [InlineData("ply\nformat ascii 1.0\nelement v 1\nproperty int x\nend_header\na\n", "line 6: 'a' stands where x is expected")]
    [InlineData("ply\nformat ascii 1.0\nelement v 1\nproperty int x\nend_header\n1 2\n", "line 6: a row of 'v' has more values")]
    [InlineData("ply\nformat ascii 1.0\nelement face 1\nproperty list int int vertex_index\nend_header\n3 0 1 2\n", "line 6: face 0 uses vertex 0")]
    [InlineData("ply\nformat ascii 1.0\nelement face 1\nproperty list int int vertex_index\nend_header\n2 0 1\n", "line 6: face 0 has 2 corners")]
    public void What_is_malformed_is_refused_with_place_and_reason(string text, string reason)
    {
        var e = Assert.Throws<ImportException>(() => Read(text));
        Assert.Contains(reason, e.Message);
    }

    private static string Written(Scene scene, PlySaveOptions options)
    {
        using MemoryStream stream = new();
        scene.Save(stream, options);
        return Encoding.ASCII.GetString(stream.ToArray());
    }

    private static Scene Read(string text, PlyLoadOptions? options = null) =>
        Read(Encoding.ASCII.GetBytes(text), options);

    private static Scene Read(byte[] data, PlyLoadOptions? options = null)
    {
        Scene scene = new();
        using MemoryStream stream = new(data);
        SceneLoader.Load(scene, stream, "a.ply", options);
        return scene;
    }
}
