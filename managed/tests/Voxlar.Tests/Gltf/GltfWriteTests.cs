using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Animation;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Gltf;

/// <summary>How what a scene holds is told in a document, and what is refused.</summary>
public class GltfWriteTests
{
    private static GltfSaveOptions Binary => new(FileContentType.Binary);

    private static Node First(Scene scene) => scene.RootNode.ChildNodes[0];

    private static Mesh Square()
    {
        var mesh = new Mesh("square");
        foreach ((double x, double y) in new[] { (0.0, 0.0), (1, 0), (1, 1), (0, 1) })
            mesh.ControlPoints.Add(new Vector4(x, y, 0));
        mesh.CreatePolygon(0, 1, 2, 3);
        return mesh;
    }

    private static Scene Through(Scene scene) => GltfSample.Through(scene, Binary, out _);

    private static JsonObject DocumentOf(Scene scene, Action<GltfSaveOptions>? set = null)
    {
        GltfSaveOptions options = Binary;
        set?.Invoke(options);
        GltfSample.Through(scene, options, out JsonObject document);
        return document;
    }

    private static string Refusal(Scene scene, Action<GltfSaveOptions>? set = null, FileContentType form =
        FileContentType.Binary)
    {
        using var folder = new TemporaryFolder();
        var options = new GltfSaveOptions(form);
        set?.Invoke(options);
        string path = folder.File(form == FileContentType.Binary ? "out.glb" : "out.gltf");
        var e = Assert.Throws<ExportException>(() => scene.Save(path, options));
        Assert.Contains("out.gl", e.Message, StringComparison.Ordinal);
        Assert.Empty(folder.Names());
        return e.Message;
    }

    [Fact]
    public void Polygons_are_cut_into_triangles_that_cover_them()
    {
        var mesh = new Mesh("arrow");
        foreach ((double x, double y) in new[] { (0.0, 0.0), (4, 0), (4, 4), (2, 1), (0, 4) })
            mesh.ControlPoints.Add(new Vector4(x, y, 0));
        mesh.CreatePolygon([0, 1, 2, 3, 4]);
        var after = (Mesh)First(Through(new Scene(mesh))).Entity!;
        Assert.Equal(3, after.PolygonCount);
        Assert.Equal(5, after.ControlPoints.Count);
        double area = 0;
        foreach (int[] polygon in after.Polygons)
        {
            Vector3 a = new(after.ControlPoints[polygon[0]]);
            double part = (new Vector3(after.ControlPoints[polygon[1]]) - a).Cross(
                new Vector3(after.ControlPoints[polygon[2]]) - a).z / 2;
            Assert.True(part > 0);
            area += part;
        }
        Close.To(10, area);
    }

    [Fact]
    public void Corners_with_equal_values_make_one_vertex()
    {
        Mesh mesh = Square();
        mesh.Polygons.Clear();
        mesh.CreatePolygon(0, 1, 2);
        mesh.CreatePolygon(0, 2, 3);
        var normals = new VertexElementNormal { MappingMode = MappingMode.Polygon };
        normals.SetData([new Vector4(0, 0, 1, 0), new Vector4(0, 1, 0, 0)]);
        var uv = new VertexElementUV { MappingMode = MappingMode.PolygonVertex };
        uv.SetData([.. Enumerable.Repeat(new Vector4(0.5, 0.25, 0), 6)]);
        mesh.AddElement(normals);
        mesh.AddElement(uv);
        mesh.ControlPoints.Add(new Vector4(9, 9, 9));
        var after = (Mesh)First(Through(new Scene(mesh))).Entity!;
        // Two corners are shared by both triangles but differ in their normals; the unused point is left out.
        Assert.Equal(6, after.ControlPoints.Count);
        Assert.Equal(new Vector4(0, 1, 0, 0),
            ((VertexElementNormal)after.GetElement(VertexElementType.Normal)!).Data[after.Polygons[1][0]]);

        normals.SetData([new Vector4(0, 0, 1, 0), new Vector4(0, 0, 1, 0)]);
        Assert.Equal(4, ((Mesh)First(Through(new Scene(mesh))).Entity!).ControlPoints.Count);
    }

    [Fact]
    public void Control_points_stay_as_they_are_when_all_values_belong_to_them()
    {
        Mesh mesh = Square();
        mesh.ControlPoints.Add(new Vector4(9, 9, 9));
        var colors = new VertexElementVertexColor { MappingMode = MappingMode.AllSame };
        colors.SetData([new Vector4(1, 0, 0, 1)]);
        mesh.AddElement(colors);
        var after = (Mesh)First(Through(new Scene(mesh))).Entity!;
        Assert.Equal(5, after.ControlPoints.Count);
        Assert.All(((VertexElementVertexColor)after.GetElement(VertexElementType.VertexColor)!).Data,
                   c => Assert.Equal(new Vector4(1, 0, 0, 1), c));
    }

    [Fact]
    public void Materials_of_polygons_make_primitives()
    {
        Mesh mesh = Square();
        mesh.CreatePolygon(0, 2, 1);
        mesh.CreatePolygon(0, 3, 2);
        var element = new VertexElementMaterial();
        element.SetIndices([1, 0, 1]);
        mesh.AddElement(element);
        var scene = new Scene();
        Node node = scene.RootNode.CreateChildNode("n", mesh);
        node.Materials.Add(new LambertMaterial("a"));
        node.Materials.Add(new PhongMaterial("b") { DiffuseColor = new Vector3(1, 0, 0), Transparency =
            0.5 });
        Node after = First(Through(scene));
        Assert.Equal(["b", "a"], after.Materials.Select(m => m.Name));
        Assert.Equal(4, ((Mesh)after.Entity!).PolygonCount);
        Assert.Equal(4, ((Mesh)after.Entity!).ControlPoints.Count);
        var red = Assert.IsType<PbrMaterial>(after.Materials[0]);
        Assert.Equal(new Vector3(1, 0, 0), red.Albedo);
        Assert.Equal("BLEND", red.GetProperty("AlphaMode"));
    }

    [Theory]
    [InlineData(65535, 5123)]
    [InlineData(65536, 5125)]
    public void Indices_are_as_wide_as_they_must_be(int points, int componentType)
    {
        var mesh = new Mesh("big");
        for (int i = 0; i < points; i++)
            mesh.ControlPoints.Add(new Vector4(i, i % 7, 0));
        mesh.CreatePolygon(0, 1, points - 1);
        JsonObject document = DocumentOf(new Scene(mesh));
        int index = document["meshes"]![0]!["primitives"]![0]!["indices"]!.GetValue<int>();
        Assert.Equal(componentType, document["accessors"]![index]!["componentType"]!.GetValue<int>());
    }

    [Fact]
    public void Every_solid_becomes_a_mesh()
    {
        Entity[] solids =
        [
            new Box(1, 2, 3), new Sphere(1), new Cylinder(1, 2), new Torus(2, 0.5), new Plane(1, 1),
                new Pyramid(1, 1, 1), new Dish(1, 0.5),
            new RectangularTorus(),
        ];
        foreach (Entity solid in solids)
        {
            solid.Name = solid.GetType().Name;
            solid.SetProperty("tag", 5);
            foreach (Scene after in GltfSample.ThroughBothForms(new Scene(solid)))
            {
                var mesh = Assert.IsType<Mesh>(First(after).Entity);
                Assert.Equal(solid.Name, mesh.Name);
                Assert.Equal(5, mesh.GetProperty("tag"));
                Assert.Equal(solid.GetBoundingBox().Size.x, mesh.GetBoundingBox().Size.x, 4);
            }
        }
    }

    [Fact]
    public void A_mesh_of_raw_vertices_becomes_a_mesh()
    {
        Mesh mesh = Square();
        var normals = new VertexElementNormal();
        normals.SetData([.. Enumerable.Repeat(new Vector4(0, 0, 1, 0), 4)]);
        mesh.AddElement(normals);
        TriMesh raw = TriMesh.FromMesh(mesh, true);
        raw.Name = "raw";
        var after = Assert.IsType<Mesh>(First(Through(new Scene(raw))).Entity);
        Assert.Equal("raw", after.Name);
        Assert.Equal(2, after.PolygonCount);
        Assert.Equal(4, after.ControlPoints.Count);
        Assert.Equal(new Vector4(0, 0, 1, 0),
            ((VertexElementNormal)after.GetElement(VertexElementType.Normal)!).Data[0]);
    }

    [Fact]
    public void Curves_become_polylines_with_their_colour()
    {
        Scene after = Through(new Scene(new Circle(2) { Name = "round", Color = new Vector3(1, 0.5, 0) }));
        var line = Assert.IsType<Line>(First(after).Entity);
        Assert.Equal("round", line.Name);
        Assert.All(line.ControlPoints, p => Close.To(2, new Vector3(p).Length, 1e-5));
        Assert.Equal(new Vector3(1, 0.5, 0), ((PbrMaterial)First(after).Material!).Albedo);
    }

    [Fact]
    public void Point_clouds_and_meshes_without_polygons_become_points()
    {
        var bare = new Mesh("bare");
        bare.ControlPoints.Add(new Vector4(1, 2, 3));
        Scene after = Through(new Scene(bare));
        Assert.Equal(new Vector4(1, 2, 3),
            Assert.Single(Assert.IsType<PointCloud>(First(after).Entity).ControlPoints));
        Assert.Null(First(Through(new Scene(new Mesh("empty")))).Entity);
    }

    [Fact]
    public void What_has_no_form_is_refused_by_name()
    {
        Assert.Contains("Patch", Refusal(new Scene(new Patch("p"))), StringComparison.Ordinal);
        Assert.Contains("Area", Refusal(new Scene(new Light("l", LightType.Area))), StringComparison.Ordinal);
        var scene = new Scene();
        scene.RootNode.CreateChildNode("n", Square(), new ShaderMaterial("glow"));
        Assert.Contains("ShaderMaterial", Refusal(scene), StringComparison.Ordinal);
        Mesh broken = Square();
        broken.CreatePolygon(0, 1, 77);
        Assert.Contains("control point 77", Refusal(new Scene(broken)), StringComparison.Ordinal);
        Mesh far = Square();
        far.ControlPoints[0] = new Vector4(1e300, 0, 0);
        Assert.Contains("1E+300", Refusal(new Scene(far)), StringComparison.Ordinal);
    }

    [Fact]
    public void Options_for_what_is_not_there_are_refused_by_name()
    {
        Scene scene = new(Square());
        Assert.Contains("DracoCompression", Refusal(scene, o => o.DracoCompression = true),
            StringComparison.Ordinal);
        Assert.Contains("ExternalDracoEncoder", Refusal(scene, o => o.ExternalDracoEncoder = "x"),
            StringComparison.Ordinal);
        Assert.Contains("BufferFile", Refusal(scene, o => o.BufferFile = "x.bin"), StringComparison.Ordinal);
        Assert.Contains("BufferFile",
            Refusal(scene, o => (o.BufferFile, o.EmbedAssets) = ("x.bin", true), FileContentType.ASCII),
            StringComparison.Ordinal);
        Assert.Contains("FallbackNormal", Refusal(scene, o => o.FallbackNormal = Vector3.Origin),
            StringComparison.Ordinal);
        Scene textured = Textured([0xFF, 0xD8, 0xFF, 0xE0]);
        Assert.Contains("ImageFormat", Refusal(textured, o => o.ImageFormat = GltfEmbeddedImageFormat.PNG),
            StringComparison.Ordinal);
        Assert.Contains("climbs", Refusal(scene, o => o.BufferFile = "../climbs.bin", FileContentType.ASCII),
            StringComparison.Ordinal);
    }

    private static Scene Textured(byte[] content, string? fileName = "pic.jpg")
    {
        var scene = new Scene();
        var material = new PbrMaterial { AlbedoTexture =
            new Texture("pic") { Content = content, FileName = fileName } };
        scene.RootNode.CreateChildNode("n", Square(), material);
        return scene;
    }

    [Fact]
    public void Assets_go_into_the_file_or_beside_it()
    {
        byte[] picture = [0xFF, 0xD8, 0xFF, 0xE0, 1, 2, 3];
        Scene scene = Textured(picture);
        using var folder = new TemporaryFolder();
        scene.Save(folder.File("a.gltf"));
        Assert.Equal(["a.bin", "a.gltf", "pic.jpg"], folder.Names());
        Assert.Equal(picture, File.ReadAllBytes(folder.File("pic.jpg")));
        Assert.DoesNotContain('\n', File.ReadAllText(folder.File("a.gltf")));

        scene.Save(folder.File("b.gltf"),
            new GltfSaveOptions(FileContentType.ASCII) { BufferFile = "own name.bin", PrettyPrint = true });
        Assert.True(File.Exists(folder.File("own name.bin")));
        Assert.Contains("own%20name.bin", File.ReadAllText(folder.File("b.gltf")), StringComparison.Ordinal);
        Assert.Contains('\n', File.ReadAllText(folder.File("b.gltf")));
        Assert.Equal(4, ((Mesh)First(new Scene(folder.File("b.gltf"))).Entity!).ControlPoints.Count);

        using var alone = new TemporaryFolder();
        scene.Save(alone.File("c.gltf"), new GltfSaveOptions(FileContentType.ASCII) { EmbedAssets = true });
        scene.Save(alone.File("d.glb"));
        Assert.Equal(["c.gltf", "d.glb"], alone.Names());
        foreach (string name in alone.Names())
        {
            var material = (PbrMaterial)First(new Scene(alone.File(name))).Material!;
            Assert.Equal(picture, ((Texture)material.AlbedoTexture!).Content);
        }
    }

    [Fact]
    public void A_stream_gets_a_document_that_holds_all_itself()
    {
        using var stream = new MemoryStream();
        Textured([0xFF, 0xD8, 0xFF]).Save(stream, FileFormat.GLTF2);
        Assert.Empty(GltfStructure.ProblemsOf(stream.ToArray(), _ => throw new InvalidOperationException()));
        stream.Position = 0;
        var scene = new Scene();
        scene.Open(stream);
        Assert.Equal(3, ((Texture)((PbrMaterial)First(scene).Material!).AlbedoTexture!).Content!.Length);
    }

    [Fact]
    public void Images_of_other_kinds_are_kept()
    {
        Scene after = Through(Textured("BM12"u8.ToArray(), "old.bmp"));
        Assert.Equal("BM12"u8.ToArray(),
            ((Texture)((PbrMaterial)First(after).Material!).AlbedoTexture!).Content);
        Scene webp = Textured([.. "RIFF"u8, 0, 0, 0, 0, .. "WEBP"u8], "new.webp");
        Assert.Contains("EXT_texture_webp", DocumentOf(webp)["extensionsUsed"]!.ToJsonString(),
            StringComparison.Ordinal);
        Assert.Equal(12, (
            (Texture)((PbrMaterial)First(Through(webp)).Material!).AlbedoTexture!).Content!.Length);
    }

    [Fact]
    public void Images_are_converted_when_asked()
    {
        byte[] bitmap = Convert.FromBase64String("Qk06AAAAAAAAADYAAAAoAAAAAQAAAAEAAAABABgAAAAAAAQAAAATCwAAEwsAAAAAAAAAAAAAAAD/AA==");
        GltfSaveOptions options = Binary;
        options.ImageFormat = GltfEmbeddedImageFormat.PNG;
        Scene after = GltfSample.Through(Textured(bitmap, "red.bmp"), options, out _);
        byte[] content = ((Texture)((PbrMaterial)First(after).Material!).AlbedoTexture!).Content!;
        Assert.Equal("PNG", System.Text.Encoding.ASCII.GetString(content, 1, 3));
        using var folder = new TemporaryFolder();
        Textured(bitmap, "red.bmp").Save(folder.File("a.gltf"),
            new GltfSaveOptions(FileContentType.ASCII) { ImageFormat = GltfEmbeddedImageFormat.PNG });
        Assert.Equal(["a.bin", "a.gltf", "red.png"], folder.Names());
    }

    [Fact]
    public void Images_that_cannot_be_found_are_refused_when_they_are_asked_for()
    {
        Scene scene = Textured(null!, "gone.png");
        Assert.Equal("gone.png", DocumentOf(scene)["images"]![0]!["uri"]!.GetValue<string>());
        Assert.Contains("gone.png",
            Assert.Throws<ExportException>(() => DocumentOf(scene, o => o.ExportTextures = true)).Message,
            StringComparison.Ordinal);
        using var folder = new TemporaryFolder();
        File.WriteAllBytes(folder.File("gone.png"), [0x89, (byte)'P', (byte)'N', (byte)'G']);
        Assert.NotNull(DocumentOf(scene, o => (o.ExportTextures, o.LookupPaths) =
            (true, [folder.Path]))["images"]![0]!["bufferView"]);
    }

    [Fact]
    public void Texture_coordinates_and_extras_follow_the_options()
    {
        Mesh mesh = Square();
        var uv = new VertexElementUV();
        uv.SetData([new Vector4(0, 0.25, 0), new Vector4(0, 0.25, 0), new Vector4(0, 0.25, 0),
            new Vector4(0, 0.25, 0)]);
        mesh.AddElement(uv);
        mesh.SetProperty("tag", "x");
        Scene scene = new(mesh);
        Scene plain = GltfSample.Through(scene,
            new GltfSaveOptions(FileContentType.Binary) { FlipTexCoordV = false, SaveExtras = false }, out _);
        Assert.Equal(0.75,
            ((VertexElementUV)((Mesh)First(plain).Entity!).GetElement(VertexElementType.UV)!).Data[0].y);
        Assert.Null(First(plain).Entity!.GetProperty("tag"));
        Assert.Equal("x", First(Through(scene)).Entity!.GetProperty("tag"));
    }

    [Fact]
    public void Normals_without_direction_are_replaced()
    {
        Mesh mesh = Square();
        var normals = new VertexElementNormal();
        normals.SetData([default, new Vector4(0, 0, 5, 0), new Vector4(double.NaN, 0, 0, 0),
            new Vector4(1, 0, 0, 0)]);
        mesh.AddElement(normals);
        Vector4[] after = NormalsOf(Through(new Scene(mesh)));
        Assert.Equal([new Vector4(0, 0, 1, 0), new Vector4(0, 0, 1, 0), new Vector4(0, 0, 1, 0),
            new Vector4(1, 0, 0, 0)], after);
        var options = new GltfSaveOptions(FileContentType.Binary) { FallbackNormal = new Vector3(0, -2, 0) };
        Assert.Equal(new Vector4(0, -1, 0, 0),
            NormalsOf(GltfSample.Through(new Scene(mesh), options, out _))[0]);
        Assert.All(NormalsOf(GltfSample.Through(new Scene(Square()), options, out _)), n =>
            Assert.Equal(new Vector4(0, -1, 0, 0), n));

        static Vector4[] NormalsOf(Scene scene) =>
            [.. ((VertexElementNormal)((Mesh)First(scene).Entity!).GetElement(
                VertexElementType.Normal)!).Data];
    }

    [Fact]
    public void The_unit_of_the_asset_is_applied_when_asked()
    {
        Scene scene = new(Square());
        scene.AssetInfo.UnitScaleFactor = 2.54;
        Assert.Equal(1, First(Through(scene)).GlobalTransform.Scale.x);
        Scene scaled = GltfSample.Through(scene,
            new GltfSaveOptions(FileContentType.Binary) { ApplyUnitScale = true }, out _);
        Close.To(0.0254, First(scaled).ChildNodes[0].GlobalTransform.Scale.x);
    }

    [Fact]
    public void Common_materials_keep_Phong_and_Lambert_when_asked()
    {
        var scene = new Scene();
        var phong = new PhongMaterial("p") { SpecularColor = new Vector3(0.5, 0.25, 1), Shininess = 20,
            DiffuseColor = new Vector3(1, 0.5, 0) };
        scene.RootNode.CreateChildNode("a", Square(), phong);
        scene.RootNode.CreateChildNode("b", Square(),
            new LambertMaterial("l") { AmbientColor = new Vector3(0.25, 0, 0) });
        Scene after = GltfSample.Through(scene,
            new GltfSaveOptions(FileContentType.Binary) { UseCommonMaterials = true }, out _);
        var kept = Assert.IsType<PhongMaterial>(First(after).Material);
        Assert.Equal(20, kept.Shininess);
        Assert.Equal(new Vector3(0.5, 0.25, 1), kept.SpecularColor);
        Assert.Equal(new Vector3(0.25, 0, 0),
            Assert.IsType<LambertMaterial>(after.RootNode.ChildNodes[1].Material).AmbientColor);
        Assert.IsType<PbrMaterial>(First(Through(scene)).Material);
    }

    [Fact]
    public void Emission_above_1_needs_its_strength()
    {
        var scene = new Scene();
        scene.RootNode.CreateChildNode("a", Square(),
            new PbrMaterial { EmissiveColor = new Vector3(4, 2, 0) });
        JsonNode material = DocumentOf(scene)["materials"]![0]!;
        Assert.Equal("[1,0.5,0]", material["emissiveFactor"]!.ToJsonString());
        Assert.Equal(4, material["extensions"]!["KHR_materials_emissive_strength"]!["emissiveStrength"]!.GetValue<double>());
    }

    [Fact]
    public void Rotations_around_the_rotation_and_geometric_transforms_are_kept()
    {
        var scene = new Scene();
        Node node = scene.RootNode.CreateChildNode("n", Square());
        node.Transform.SetPreRotation(90, 0, 0).SetEulerAngles(0, 0, 90).SetPostRotation(0, 45,
            0).SetTranslation(1, 2, 3);
        node.Transform.SetGeometricTranslation(0, 0, 5).SetGeometricScaling(2, 2, 2);
        node.CreateChildNode("child", Square());
        Scene after = Through(scene);
        Close.To(node.Transform.TransformMatrix, First(after).Transform.TransformMatrix);
        Node holder = First(after).ChildNodes.Single(n => n.Entity is not null && n.Name == "n");
        Close.To(node.EvaluateGlobalTransform(true), holder.EvaluateGlobalTransform(false));
        Close.To(node.ChildNodes[0].EvaluateGlobalTransform(true),
            First(after).GetChild("child")!.EvaluateGlobalTransform(false));
    }

    [Fact]
    public void What_a_node_of_a_document_has_no_room_for_gets_nodes_below_it()
    {
        var scene = new Scene();
        Node node = scene.RootNode.CreateChildNode("n", Square());
        node.AddEntity(new Mesh("other") { ControlPoints = { new Vector4(1, 1, 1) } });
        node.AddEntity(new Camera("one"));
        node.AddEntity(new Camera("two"));
        node.AddEntity(new Camera("turned") { Direction = new Vector3(0, 1, 0.5), Up =
            new Vector3(1, 0, 0) });
        node.AddEntity(new Light("lamp", LightType.Spot) { Direction = new Vector3(1, 0, 0), HotSpot = 20,
            Falloff = 40 });
        node.AddEntity(new Skeleton("mark"));
        node.Transform.SetEulerAngles(0, 180, 0);
        foreach (Entity view in node.Entities)
        {
            if (view is Camera { Name: not "turned" } camera)
                camera.Direction = new Vector3(0, 0, 1);
        }
        Node after = First(Through(scene));
        Assert.Equal(["square", "other", "one"], after.Entities.Select(e => e.Name));
        Assert.Equal(["two", "turned", "lamp"], after.ChildNodes.Select(n => n.Name));
        var turned = (Camera)after.GetChild("turned")!.Entity!;
        Close.To(new Vector3(0, 1, 0.5).Normalize(), turned.Direction, 1e-6);
        Close.To(new Vector3(1, 0, 0), turned.Up, 1e-6);
        var lamp = (Light)after.GetChild("lamp")!.Entity!;
        Close.To(new Vector3(1, 0, 0), lamp.Direction, 1e-6);
        Close.To(40, lamp.Falloff, 1e-4);
    }

    [Fact]
    public void Chains_of_a_line_and_names_of_entities_are_kept()
    {
        var line = new Line("ways") { ControlPoints = { default, default, default, default, default } };
        int[][] chains = [[0, 1, 2], [2, 3], [3, 4], [4, 3, 2, 1, 4], [1, 0]];
        foreach (int[] chain in chains)
            line.Segments.Add(chain);
        var scene = new Scene();
        Node node = scene.RootNode.CreateChildNode("n", Square());
        node.AddEntity(line);
        line.SetProperty("own", 1);
        node.Entities[0].SetProperty("first", true);
        node.AddEntity(new Mesh("second") { ControlPoints = { new Vector4(1, 1, 1) } });
        foreach (Scene after in GltfSample.ThroughBothForms(scene))
        {
            Assert.Equal(["square", "ways", "second"], First(after).Entities.Select(e => e.Name));
            Assert.Equal(chains, ((Line)First(after).Entities[1]).Segments);
            Assert.Equal(1, First(after).Entities[1].GetProperty("own"));
            Assert.Equal([true, null, null], First(after).Entities.Select(e => e.GetProperty("first")));
            Assert.Null(First(after).Entities[1].GetProperty("PrimitiveExtras"));
            Assert.Empty(First(after).ChildNodes);
        }
    }

    [Fact]
    public void Excluded_nodes_and_entities_are_left_out()
    {
        var scene = new Scene();
        scene.RootNode.CreateChildNode("kept",
            new Mesh("m") { Excluded = true, ControlPoints = { new Vector4(1, 1, 1) } });
        scene.RootNode.CreateChildNode("dropped").Excluded = true;
        Scene after = Through(scene);
        Assert.Equal(["kept"], after.RootNode.ChildNodes.Select(n => n.Name));
        Assert.Null(First(after).Entity);
    }

    [Fact]
    public void A_root_node_that_is_more_than_a_holder_is_written()
    {
        var scene = new Scene();
        scene.RootNode.Name = "root";
        scene.RootNode.Transform.SetTranslation(1, 0, 0);
        scene.RootNode.CreateChildNode("child");
        Scene after = Through(scene);
        Assert.Equal("root", First(after).Name);
        Assert.Equal(1, First(after).ChildNodes[0].GlobalTransform.Translation.x);
        Assert.Empty(Through(new Scene()).RootNode.ChildNodes);
    }

    [Fact]
    public void More_than_four_bones_on_a_point_make_more_sets()
    {
        var scene = new Scene();
        Mesh mesh = Square();
        var skin = new SkinDeformer("s");
        for (int i = 0; i < 300; i++)
        {
            var bone = new Bone("b") { Node = scene.RootNode.CreateChildNode("j" + i) };
            if (i % 60 == 0)
                bone.SetWeight(1, 0.2);
            bone.SetWeight(i % 4, i % 4 == 1 && i % 60 != 0 ? 0 : bone.GetWeight(i % 4));
            skin.Bones.Add(bone);
        }
        skin.Bones[299].SetWeight(0, 1);
        mesh.Deformers.Add(skin);
        scene.RootNode.CreateChildNode("mesh", mesh);
        JsonObject document = DocumentOf(scene);
        JsonNode attributes = document["meshes"]![0]!["primitives"]![0]!["attributes"]!;
        Assert.NotNull(attributes["JOINTS_1"]);
        Assert.Null(attributes["JOINTS_2"]);
        Assert.Equal(5123,
            document["accessors"]![
            attributes["JOINTS_0"]!.GetValue<int>()]!["componentType"]!.GetValue<int>());
        var after = (SkinDeformer)(
            (Mesh)Through(scene).RootNode.GetChild("mesh")!.Entity!).Deformers.Single();
        Assert.Equal(0.2, after.Bones[240].GetWeight(1), 6);
        Assert.Equal(1, after.Bones[299].GetWeight(0));
    }

    [Fact]
    public void Bones_without_a_node_of_the_scene_are_refused()
    {
        Mesh mesh = Square();
        var skin = new SkinDeformer("s");
        skin.Bones.Add(new Bone("lost"));
        mesh.Deformers.Add(skin);
        Assert.Contains("lost", Refusal(new Scene(mesh)), StringComparison.Ordinal);
        skin.Bones[0].Node = new Node("elsewhere");
        Assert.Contains("elsewhere", Refusal(new Scene(mesh)), StringComparison.Ordinal);
    }

    [Fact]
    public void Morph_weights_are_told_as_shares()
    {
        Mesh mesh = Square();
        var channel = new MorphTargetChannel("c") { ChannelWeight = 25 };
        var shape = new Shape("s") { Indices = { 2 }, ControlPoints = { new Vector4(1, 1, 9) } };
        channel.Targets.Add(shape);
        channel.SetWeight(shape, 100);
        var morph = new MorphTargetDeformer("m");
        morph.Channels.Add(channel);
        mesh.Deformers.Add(morph);
        var scene = new Scene(mesh);
        AnimationClip clip = scene.CreateAnimationClip("clip");
        KeyframeSequence keys =
            clip.CreateAnimationNode("a").GetKeyframeSequence(channel, "ChannelWeight", true)!;
        keys.Add(0, 0);
        keys.Add(1, 100);
        Scene after = Through(scene);
        var back = (MorphTargetDeformer)((Mesh)First(after).Entity!).Deformers.Single();
        Assert.Equal(0.25, back.Channels[0].ChannelWeight);
        Assert.Equal(new Vector4(1, 1, 9), back.Channels[0].Targets[0].ControlPoints[2]);
        Assert.Equal(new Vector4(0, 1, 0), back.Channels[0].Targets[0].ControlPoints[3]);
        KeyframeSequence played =
            after.AnimationClips[0].Animations[0].BindPoints[0].GetKeyframeSequence("ChannelWeight")!;
        Assert.Equal([0f, 1f], played.KeyFrames.Select(k => k.Value));
        channel.Targets.Add(new Shape("between"));
        Assert.Contains("'c' has 2 shapes", Refusal(scene), StringComparison.Ordinal);
    }

    [Fact]
    public void Euler_angles_are_sampled_as_rotations()
    {
        var scene = new Scene();
        Node node = scene.RootNode.CreateChildNode("n");
        node.Transform.SetPreRotation(90, 0, 0);
        AnimationNode animation = scene.CreateAnimationClip("turn").CreateAnimationNode("a");
        KeyframeSequence z = animation.GetKeyframeSequence(node.Transform, "EulerAngles", "Z", true)!;
        z.Add(0, 0);
        z.Add(2, 180);
        Scene after = Through(scene);
        BindPoint point = after.AnimationClips[0].Animations[0].BindPoints[0];
        Assert.Equal("Rotation", point.Name);
        node.Transform.EulerAngles = new Vector3(0, 0, 90);
        Quaternion expected = node.Transform.Rotation.Concat(Quaternion.FromEulerAngle(Math.PI / 2, 0, 0));
        double[] q = [.. "XYZW".Select(c => point.GetKeyframeSequence(c.ToString())!.Evaluate(1))];
        Close.ToRotation(expected, new Quaternion(q[3], q[0], q[1], q[2]), 1e-6);
    }

    [Fact]
    public void Components_with_other_key_times_are_told_at_all_times()
    {
        var scene = new Scene();
        Node node = scene.RootNode.CreateChildNode("n");
        node.Transform.Translation = new Vector3(0, 0, 7);
        AnimationNode animation = scene.CreateAnimationClip("move").CreateAnimationNode("a");
        KeyframeSequence x = animation.GetKeyframeSequence(node.Transform, "Translation", "X", true)!;
        x.Add(0, 0);
        x.Add(2, 2);
        KeyframeSequence y = animation.GetKeyframeSequence(node.Transform, "Translation", "Y", true)!;
        y.Add(1, 5);
        y.Add(3, 6);
        BindPoint point = Through(scene).AnimationClips[0].Animations[0].BindPoints[0];
        Assert.Equal([0.0, 1, 2, 3], point.GetKeyframeSequence("X")!.KeyFrames.Select(k => k.Time));
        Assert.Equal([0f, 1, 2, 2], point.GetKeyframeSequence("X")!.KeyFrames.Select(k => k.Value));
        Assert.Equal([5f, 5, 5.5f, 6], point.GetKeyframeSequence("Y")!.KeyFrames.Select(k => k.Value));
        Assert.All(point.GetKeyframeSequence("Z")!.KeyFrames, k => Assert.Equal(7, k.Value));
    }

    [Fact]
    public void The_check_of_the_structure_finds_what_is_wrong()
    {
        using var folder = new TemporaryFolder();
        new Scene(Square()).Save(folder.File("a.gltf"),
            new GltfSaveOptions(FileContentType.ASCII) { EmbedAssets = true });
        string good = File.ReadAllText(folder.File("a.gltf"));
        (string From, string To)[] damages =
        [
            ("\"mesh\":0", "\"mesh\":9"), ("\"count\":6", "\"count\":5"), ("\"count\":6", "\"count\":600"),
                ("\"max\":[1,", "\"max\":[2,"),
            ("\"version\":\"2.0\"", "\"version\":\"1.0\""), ("\"byteLength\":12", "\"byteLength\":0"),
            ("\"nodes\":[0]", "\"nodes\":[7]"), ("\"nodes\":[0]", "\"nodes\":[]"),
                ("\"componentType\":5123", "\"componentType\":5126"),
        ];
        Assert.Empty(Problems(good));
        foreach ((string from, string to) in damages)
        {
            Assert.Contains(from, good, StringComparison.Ordinal);
            Assert.NotEmpty(Problems(good.Replace(from, to, StringComparison.Ordinal)));
        }

        static List<string> Problems(string text) =>
            GltfStructure.ProblemsOf(System.Text.Encoding.UTF8.GetBytes(text), _ =>
                throw new InvalidOperationException());
    }
}
