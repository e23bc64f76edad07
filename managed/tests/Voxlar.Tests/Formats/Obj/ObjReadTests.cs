using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Text;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Formats.Obj;

public class ObjReadTests
{
    private const string Square = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n";

    [Fact]
    public void A_face_keeps_its_corners_and_the_mesh_all_vertices()
    {
        Mesh mesh = ObjText.OnlyMesh(ObjText.Read(Square + "v 9 9 9\nf 1 2 3 4\n"));

        Assert.Equal([0, 1, 2, 3], Assert.Single(mesh.Polygons));
        Assert.Equal(5, mesh.ControlPoints.Count);
        Assert.Equal(new Vector4(9, 9, 9, 1), mesh.ControlPoints[4]);
    }

    [Fact]
    public void Groups_without_common_vertices_are_meshes_of_their_own()
    {
        Scene scene = ObjText.Read(
            "v 0 0 0\nv 1 0 0\nv 0 1 0\ng first\nf 1 2 3\nv 0 0 1\nv 1 0 1\nv 0 1 1\ng second part\nf -3 -2 -1\ng first\nf 3 2 1\n");

        Assert.Equal(["first", "second part"], scene.RootNode.ChildNodes.Select(node => node.Name));
        Assert.Equal(["first", "second part"], scene.RootNode.ChildNodes.Select(node => node.Entity!.Name));
        Assert.Equal([2, 1], scene.RootNode.ChildNodes.Select(node => ObjText.MeshOf(node).PolygonCount));
        Assert.Equal([0, 1, 2], ObjText.MeshOf(scene.RootNode.ChildNodes[1]).Polygons[0]);
    }

    [Fact]
    public void Groups_with_common_vertices_stay_one_mesh_that_tells_them_apart()
    {
        Mesh mesh = ObjText.OnlyMesh(ObjText.Read(
            Square + "o plate\ng left\nf 1 2 3\ng right\nf 1 3 4\ng left\nf 3 2 1\n"));

        Assert.Equal("plate", mesh.Name);
        Assert.Equal(4, mesh.ControlPoints.Count);
        var groups = (VertexElementPolygonGroup)mesh.GetElement(VertexElementType.PolygonGroup)!;
        Assert.Equal([0, 1, 0], groups.Data);
        Assert.Equal(["left", "right"], (string[])mesh.GetProperty("obj.groups")!);
    }

    [Fact]
    public void Texture_coordinates_and_normals_are_found_by_corner()
    {
        Mesh mesh = ObjText.OnlyMesh(ObjText.Read(
            Square + "vt 0 0\nvt 1 0.5 0.25\nvn 0 0 2\nf 1/1/1 2/2/1 3//1\nf 1/1 3 4\n"));

        var uv = mesh.GetVertexElementOfUV(TextureMapping.Diffuse)!;
        Assert.Equal(MappingMode.PolygonVertex, uv.MappingMode);
        Assert.Equal(ReferenceMode.IndexToDirect, uv.ReferenceMode);
        Assert.Equal(new Vector4(1, 0.5, 0.25, 1), uv.Data[1]);
        Assert.Equal([0, 1, -1, 0, -1, -1], ValuesOf(uv, 6));
        var normals = (VertexElementNormal)mesh.GetElement(VertexElementType.Normal)!;
        Assert.Equal(new Vector4(0, 0, 1, 0), Assert.Single(normals.Data));
        Assert.Equal([0, 0, 0, -1, -1, -1], ValuesOf(normals, 6));
    }

    [Fact]
    public void Values_that_meshes_share_go_to_each_and_unused_ones_are_kept()
    {
        Scene scene = ObjText.Read(
            "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nv 1 0 1\nv 0 1 1\nvt 0.1 0\nvt 0.2 0\nvt 0.3 0\n"
            + "g a\nf 1/1 2/1 3/1\ng b\nf 4/3 5/1 6/3\n");

        Assert.Equal([0.1, 0.2], UOf(scene.RootNode.ChildNodes[0]));
        Assert.Equal([0.1, 0.3], UOf(scene.RootNode.ChildNodes[1]));
        var uv = (VertexElementUV)ObjText.MeshOf(scene.RootNode.ChildNodes[1]).GetElement(VertexElementType.UV)!;
        Assert.Equal([1, 0, 1], uv.Indices);
    }

    [Theory]
    [InlineData("v 1 2 3", 1, null)]
    [InlineData("v 1 2 3 0.5", 0.5, null)]
    [InlineData("v 1 2 3 0.1 0.2 0.3", 1, "0.1 0.2 0.3 1")]
    [InlineData("v 1 2 3 0.1 0.2 0.3 0.4", 1, "0.1 0.2 0.3 0.4")]
    [InlineData("v 1 2 3 0.5 0.1 0.2 0.3 0.4", 0.5, "0.1 0.2 0.3 0.4")]
    public void A_vertex_may_have_a_weight_and_a_colour(string vertex, double weight, string? color)
    {
        PointCloud cloud = (PointCloud)ObjText.Read(vertex + "\n").RootNode.ChildNodes[0].Entity!;

        Assert.Equal(new Vector4(1, 2, 3, weight), Assert.Single(cloud.ControlPoints));
        var element = (VertexElementVertexColor?)cloud.GetElement(VertexElementType.VertexColor);
        Assert.Equal(color, element is null ? null : FormattableText(element.Data[0]));
    }

    [Theory]
    [InlineData("+1", 1)]
    [InlineData("-.5", -0.5)]
    [InlineData("2.", 2)]
    [InlineData("1e-2", 0.01)]
    [InlineData("1E+02", 100)]
    [InlineData("3.1+e2", 3.1)]
    [InlineData("0.1", 0.1)]
    [InlineData("123456789012345678901234567890", 123456789012345678901234567890.0)]
    [InlineData("2.2250738585072011e-308", 2.2250738585072011e-308)]
    [InlineData("179769313486231580793728971405301e276", 1.7976931348623158e308)]
    [InlineData("9007199254740993", 9007199254740992.0)]
    [InlineData("0.30000000000000004", 0.30000000000000004)]
    [InlineData("-0", -0.0)]
    [InlineData("nan", double.NaN)]
    [InlineData("-1.#IND", double.NaN)]
    [InlineData("-1.#INF00", double.NegativeInfinity)]
    [InlineData("-inf", double.NegativeInfinity)]
    [InlineData("1e999", double.PositiveInfinity)]
    public void Numbers_are_read_to_the_last_bit(string text, double value)
    {
        var cloud = (PointCloud)ObjText.Read($"v {text} 0 0\n").RootNode.ChildNodes[0].Entity!;

        double read = cloud.ControlPoints[0].x;
        Assert.Equal(double.IsNaN(value), double.IsNaN(read));
        Assert.True(double.IsNaN(read)
            || System.BitConverter.DoubleToInt64Bits(value) == System.BitConverter.DoubleToInt64Bits(read));
    }

    [Fact]
    public void Lines_and_points_become_entities_on_the_node_of_their_group()
    {
        Scene scene = ObjText.Read(Square + "g all\nf 1 2 3\nl 1 2 3\nl 3 4\np 2 4\n");

        Node node = Assert.Single(scene.RootNode.ChildNodes);
        var line = node.Entities.OfType<Line>().Single();
        Assert.Equal([[0, 1, 2], [2, 3]], line.Segments);
        Assert.Equal(4, line.ControlPoints.Count);
        var cloud = node.Entities.OfType<PointCloud>().Single();
        Assert.Equal([new Vector4(1, 0, 0, 1), new Vector4(0, 1, 0, 1)], cloud.ControlPoints);
    }

    [Fact]
    public void Smoothing_groups_are_bits()
    {
        Mesh mesh = ObjText.OnlyMesh(ObjText.Read(Square + "f 1 2 3\ns 3\nf 1 2 3\ns off\nf 1 2 3\ns 32\nf 1 2 3\n"));

        var element = (VertexElementSmoothingGroup)mesh.GetElement(VertexElementType.SmoothingGroup)!;
        Assert.Equal([0, 4, 0, int.MinValue], element.Data);
    }

    [Fact]
    public void Lines_that_end_with_a_backslash_go_on_but_comments_do_not()
    {
        Mesh mesh = ObjText.OnlyMesh(ObjText.Read("# C:\\\n" + Square.Replace("v 1 1 0", "v 1 \\\r\n 1 0") + "f 1 2 \\\n3\n"));

        Assert.Equal(4, mesh.ControlPoints.Count);
        Assert.Equal([0, 1, 2], Assert.Single(mesh.Polygons));
    }

    [Fact]
    public void Texts_of_other_encodings_are_understood()
    {
        const string text = "o Würfel\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";
        byte[][] forms =
        [
            [.. Encoding.Unicode.Preamble, .. Encoding.Unicode.GetBytes(text)],
            [.. Encoding.BigEndianUnicode.Preamble, .. Encoding.BigEndianUnicode.GetBytes(text)],
            [.. Encoding.UTF8.Preamble, .. Encoding.UTF8.GetBytes(text)],
            Encoding.Latin1.GetBytes(text),
            Encoding.UTF8.GetBytes(text.Replace('\n', '\r')),
        ];
        foreach (byte[] form in forms)
            Assert.Equal("Würfel", ObjText.OnlyMesh(ObjText.Read(form)).Name);
    }

    [Fact]
    public void Options_scale_exchange_axes_and_leave_normals_alone()
    {
        Mesh mesh = ObjText.OnlyMesh(ObjText.Read(
            "v 1 2 3\nv 4 5 6\nv 7 8 10\nv 0 0 1\nvn 0 2 0\nf 1//1 2//1 3//1 4//1\n",
            new ObjLoadOptions { Scale = 10, FlipCoordinateSystem = true, NormalizeNormal = false }));

        Assert.Equal(new Vector4(10, 30, 20, 1), mesh.ControlPoints[0]);
        Assert.Equal([0, 3, 2, 1], mesh.Polygons[0]);
        Assert.Equal(new Vector4(0, 0, 2, 0), ((VertexElementNormal)mesh.VertexElements[0]).Data[0]);
    }

    [Theory]
    [InlineData("v 1 2\n", "line 1: the z of a vertex is missing")]
    [InlineData("v 1 x 3\n", "line 1: 'x' stands where the y of a vertex is expected")]
    [InlineData("v 1 2,5 3\n", "line 1: '2,5' stands where the y of a vertex is expected")]
    [InlineData("v 0 0 0\nf 1 1 2\n", "line 2: vertex 2 is used, but the file has 1 vertices")]
    [InlineData("v 0 0 0\r\nf 1 1 0\r\n", "line 2: vertex 0 is used; vertices count from 1")]
    [InlineData("v 0 0 0\nf 1 1 -2\n", "line 2: vertex -2 is used, but only 1 vertices were read before it")]
    [InlineData("v 0 0 0 \\\n1\n\nf 1 1/2 1\n", "line 4: texture coordinate 2 is used")]
    [InlineData("v 0 0 0\nf 1 1 999999999999999999999\n", "line 2: vertex 2147483647 is used")]
    [InlineData("v 0 0 0\nf 1 1 1x\n", "line 2: 'x' stands where")]
    [InlineData("v 0 0 0\nsurf 0 1 0 1 1 2 3\n", "line 2: the statement 'surf'")]
    [InlineData("hello world\n", "line 1: 'hello' is no statement of an OBJ file")]
    public void What_is_malformed_is_refused_with_line_and_reason(string text, string reason)
    {
        var e = Assert.Throws<ImportException>(() => ObjText.Read(text));
        Assert.Contains(reason, e.Message);
    }

    [Fact]
    public void Materials_are_read_and_dealt_to_polygons()
    {
        using TemporaryFolder folder = new();
        File.WriteAllBytes(folder.File("a picture.png"), [1, 2, 3]);
        File.WriteAllText(folder.File("my lib.mtl"), """
            newmtl red metal
            Kd 1 0 0
            Ks 0.5
            Ns 12.5
            d 0.75
            Ni 1.45
            map_Kd -s 2 3 -o 0.5 0.25 -clamp on -bm 0.5 a picture.png
            newmtl rough
            Pr 0.25
            Pm 1
            newmtl unused
            """);
        File.WriteAllText(folder.File("a.obj"), "mtllib my lib.mtl\nmtllib none.mtl\n" + Square
            + "usemtl red metal\nf 1 2 3\nusemtl rough\nf 1 2 3\nusemtl unknown\nf 1 2 3\nusemtl rough\nf 3 2 1\n");

        Scene scene = new(folder.File("a.obj"));

        Node node = Assert.Single(scene.RootNode.ChildNodes);
        Assert.Equal(["red metal", "rough", "unknown"], node.Materials.Select(material => material.Name));
        var indices = (VertexElementMaterial)ObjText.MeshOf(node).GetElement(VertexElementType.Material)!;
        Assert.Equal([0, 1, 2, 1], indices.Indices);
        var red = (PhongMaterial)node.Materials[0];
        Assert.Equal(new Vector3(1, 0, 0), red.DiffuseColor);
        Assert.Equal(new Vector3(0.5, 0.5, 0.5), red.SpecularColor);
        Assert.Equal(12.5, red.Shininess);
        Assert.Equal(0.25, red.Transparency);
        Assert.Equal("1.45", red.GetProperty("mtl.Ni"));
        var texture = (Texture)red.GetTexture(Material.MapDiffuse)!;
        Assert.Equal("a picture.png", texture.FileName);
        Assert.Equal([1, 2, 3], texture.Content!);
        Assert.Equal(new Vector2(2, 3), texture.UVScale);
        Assert.Equal(new Vector2(0.5, 0.25), texture.UVTranslation);
        Assert.Equal(WrapMode.Clamp, texture.WrapModeU);
        Assert.Equal("0.5", texture.GetProperty("mtl.-bm"));
        Assert.Equal(0.25, ((PbrMaterial)node.Materials[1]).RoughnessFactor);
        Assert.Equal("unused", Assert.Single(scene.Library).Name);
    }

    [Fact]
    public void A_library_elsewhere_on_the_machine_is_looked_for_beside_the_file()
    {
        using TemporaryFolder folder = new();
        File.WriteAllText(folder.File("m.mtl"), "newmtl a\nKd 0 1 0\n");
        File.WriteAllText(folder.File("a.obj"), "mtllib C:\\models\\m.mtl\n" + Square + "usemtl a\nf 1 2 3\n");

        var material = (PhongMaterial)new Scene(folder.File("a.obj")).RootNode.ChildNodes[0].Material!;

        Assert.Equal(new Vector3(0, 1, 0), material.DiffuseColor);
    }

    private static string FormattableText(Vector4 v) =>
        System.FormattableString.Invariant($"{v.x} {v.y} {v.z} {v.w}");

    private static IEnumerable<double> UOf(Node node) =>
        ((VertexElementUV)ObjText.MeshOf(node).GetElement(VertexElementType.UV)!).Data.Select(uv => uv.x);

    private static List<int> ValuesOf(VertexElement element, int corners)
    {
        List<int> values = [];
        for (int i = 0; i < corners; i++)
            values.Add(element.ValueIndex(0, i, 0));
        return values;
    }
}
