using System.IO;
using System.Linq;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Formats.Obj;

public class ObjWriteTests
{
    [Theory]
    [InlineData("v 0 0 0\nv 1 0 0\nv 0 1 0\no a\ng left\nf 1 2 3\ng right\nf 3 2 1\no b\nf 1 3 2\n")]
    [InlineData("o a\nv 0.1 1e-300 1e300\nv 1 0 0.5\nv 0 1 0\nf 1 2 3\no b\nv 0 0 1\nv 1 0 1\nv 0 1 1\nf 4 5 6\n")]
    [InlineData("g a b\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\no c\nv 0 0 1\nv 1 0 1\nv 0 1 1\ng d\nf 4 5 6\n")]
    [InlineData("v 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nvt 1 0 0.5\nvn 0 0 1\nf 1/1/1 2/2 3//1\nf 1 2 3\n")]
    [InlineData("v 0 0 0 0.5 0.5 0.5\nv 1 0 0 0.25\nv 0 1 0 0.5 0.1 0.2 0.3 1\ns 1\nf 1 2 3\ns 40\nf 1 2 3\ns off\nf 1 2 3\n")]
    [InlineData("v 0 0 0\nv 1 0 0\nv 0 1 0\nl 1 2\nl 2 3 1\n")]
    [InlineData("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 5 5 5\ng x\nf 1 2 3\nl 1 2\nl 2 4\np 1 2\np 3\n")]
    [InlineData("v 0 0 0\nv 1 0 0\nv 0 1 0\nvn 0 0 1\nvn 1 0 0\nvn 0 1 0\n")]
    [InlineData("v 0 0 0\nv 1 0 0\nvt 0 0\nvt 0.5 1\nl 1/1 2/2\n")]
    [InlineData("v 0 0 0\nv 1 0 0\nv 0 1 0\no a\nusemtl m\nf 1 2 3\nusemtl n\nf 1 2 3\nv 0 0 1\nv 1 0 1\nv 0 1 1\no b\nusemtl (null)\nf 4 5 6\n")]
    public void What_is_written_is_read_back_the_same(string text)
    {
        Scene scene = ObjText.Read(text);
        Scene back = SceneContent.SaveAndRead(scene, FileFormat.WavefrontOBJ);

        Assert.Equal(SceneContent.Of(scene, SceneContent.Parts.All), SceneContent.Of(back, SceneContent.Parts.All));
    }

    [Fact]
    public void Materials_with_unknown_keys_and_textures_come_back()
    {
        using TemporaryFolder folder = new();
        Directory.CreateDirectory(folder.File("in"));
        File.WriteAllBytes(folder.File("in/a picture.png"), [1, 2, 3]);
        File.WriteAllText(folder.File("in/a.mtl"), """
            newmtl one
            Ka 0.1 0.2 0.3
            Kd 1 0 0
            Ns 12.5
            d 0.1
            Tf 1 1 0.5
            Ni 1.45
            illum 2
            map_Kd -s 2 3 4 -o 0.5 0.25 -clamp on -bm 0.5 a picture.png
            refl -type cube_top top.png
            newmtl two
            Pr 0.25
            Pm 1
            Pc 0.5
            map_Pr rough.png
            map_Strange x.png
            """);
        File.WriteAllText(folder.File("in/a.obj"),
            "mtllib a.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl one\nf 1 2 3\nusemtl two\nf 3 2 1\n");
        Scene scene = new(folder.File("in/a.obj"));
        Directory.CreateDirectory(folder.File("out"));

        scene.Save(folder.File("out/b.obj"), new ObjSaveOptions { ExportTextures = true });

        Assert.Equal([1, 2, 3], File.ReadAllBytes(folder.File("out/a picture.png")));
        Scene back = new(folder.File("out/b.obj"));
        Assert.Equal(SceneContent.Of(scene, SceneContent.Parts.All), SceneContent.Of(back, SceneContent.Parts.All));
        Assert.Equal("1.45", back.RootNode.ChildNodes[0].Materials[0].GetProperty("mtl.Ni"));
        Assert.NotNull(back.RootNode.ChildNodes[0].Materials[1].GetTexture("Strange"));
    }

    [Fact]
    public void Bodies_are_brought_to_their_places()
    {
        Scene scene = new();
        Node node = scene.RootNode.CreateChildNode("box", new Box(2, 2, 2));
        node.Transform.Translation = new Vector3(10, 0, 0);

        Scene back = SceneContent.SaveAndRead(scene, FileFormat.WavefrontOBJ);

        Node found = Assert.Single(back.RootNode.ChildNodes);
        Assert.Equal("box", found.Name);
        BoundingBox box = found.Entity!.GetBoundingBox();
        Assert.Equal(new Vector3(9, -1, -1), box.Minimum);
        Assert.Equal(new Vector3(11, 1, 1), box.Maximum);
    }

    [Fact]
    public void A_mirroring_transform_keeps_the_outside_of_the_surface()
    {
        Scene scene = ObjText.Read("v 0 0 0\nv 1 0 0\nv 0 1 0\nvn 0 0 1\nf 1//1 2//1 3//1\n");
        scene.RootNode.ChildNodes[0].Transform.Scale = new Vector3(1, 1, -1);

        Mesh mesh = ObjText.OnlyMesh(SceneContent.SaveAndRead(scene, FileFormat.WavefrontOBJ));

        Assert.Equal([0, 2, 1], mesh.Polygons[0]);
        Assert.Equal(new Vector4(0, 0, -1, 0), ((VertexElementNormal)mesh.VertexElements[0]).Data[0]);
    }

    [Fact]
    public void Equal_names_do_not_become_one_mesh()
    {
        Scene scene = new();
        scene.RootNode.CreateChildNode("a", new Box());
        scene.RootNode.CreateChildNode("a", new Box());
        scene.RootNode.CreateChildNode(new Box());
        scene.RootNode.CreateChildNode(new Box());

        Scene back = SceneContent.SaveAndRead(scene, FileFormat.WavefrontOBJ);

        Assert.Equal(["a", "a_2", "", "Mesh_2"], back.RootNode.ChildNodes.Select(node => node.Name));
    }

    [Fact]
    public void The_options_do_what_they_say()
    {
        Scene scene = ObjText.Read("v 1 2 3\nv 4 5 6\nv 7 8 10\nusemtl m\nf 1 2 3\n");
        scene.AssetInfo.UnitScaleFactor = 10;

        Assert.Contains("v 10 20 30\n", Written(scene, new ObjSaveOptions { ApplyUnitScale = true }));
        Assert.Contains("v 1 3 2\n", Written(scene, new ObjSaveOptions { FlipCoordinateSystem = true }));
        Assert.Contains("f 1 3 2\n", Written(scene, new ObjSaveOptions { FlipCoordinateSystem = true }));
        Assert.Contains("v 1 2 3 1\n", Written(scene, new ObjSaveOptions { SerializeW = true }));
        Assert.Equal("v 1 2 3\nv 4 5 6\nv 7 8 10\n", Written(scene, new ObjSaveOptions { PointCloud = true }));
        Assert.DoesNotContain("mtllib", Written(scene, new ObjSaveOptions { EnableMaterials = false }));
        Assert.Contains("mtllib", Written(scene, new ObjSaveOptions()));
        Assert.DoesNotContain("#", Written(scene, new ObjSaveOptions()));
        Assert.Contains("# Mesh", Written(scene, new ObjSaveOptions { Verbose = true }));
    }

    [Fact]
    public void What_has_no_form_is_refused_by_its_type()
    {
        Scene scene = new();
        scene.RootNode.CreateChildNode("p", new Patch());

        var e = Assert.Throws<ExportException>(() => SceneContent.Text(scene, FileFormat.WavefrontOBJ));
        Assert.Contains("Patch", e.Message);
    }

    private static string Written(Scene scene, ObjSaveOptions options)
    {
        using TemporaryFolder folder = new();
        scene.Save(folder.File("a.obj"), options);
        return File.ReadAllText(folder.File("a.obj"));
    }
}
