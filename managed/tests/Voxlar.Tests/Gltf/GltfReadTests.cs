using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Text;
using Velbor.Voxlar.Animation;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Gltf;

/// <summary>
/// What becomes of each part of a document. Every scene also goes out and back without loss.
/// </summary>
public class GltfReadTests
{
    private const string OneNode = """ "scenes": [{"nodes": [0]}], "nodes": [{"mesh": 0, "name": "n"}] """;

    private static Node First(Scene scene) => scene.RootNode.ChildNodes[0];

    private static Mesh FirstMesh(Scene scene) => Assert.IsType<Mesh>(First(scene).Entity);

    private static void KeepsAll(Scene scene)
    {
        List<string> before = SceneDescription.Of(scene);
        foreach (Scene after in GltfSample.ThroughBothForms(scene))
            Assert.Equal(before, SceneDescription.Of(after));
    }

    private static string MeshOf(string primitives) => $$$$$"""
        "meshes": [{"name": "m", "primitives": [{{{{{primitives}}}}}]}], {{{{{OneNode}}}}}
        """;

    private static string Plain(int position) => "{\"attributes\": {\"POSITION\": " + position + "}}";

    private static string WithMaterial(GltfSample sample) =>
        "{\"attributes\": {\"POSITION\": " + sample.Triangle() + "}, \"material\": 0}";

    [Theory]
    [InlineData(4, "0,1,2 3,4,0")]
    [InlineData(5, "0,1,2 1,3,2 2,3,4 3,0,4")]
    [InlineData(6, "0,1,2 0,2,3 0,3,4 0,4,0")]
    public void Triangles_strips_and_fans_become_triangles(int mode, string expected)
    {
        var sample = new GltfSample();
        int position = sample.Floats("VEC3", 0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0, 2, 2, 0);
        int indices = sample.Bytes("SCALAR", false, 0, 1, 2, 3, 4, 0);
        Scene scene = sample.Open(MeshOf($$$$$"""{"attributes": {"POSITION": {{{{{position}}}}}}, "indices": {{{{{indices}}}}}, "mode": {{{{{mode}}}}}}"""));
        Assert.Equal(expected, string.Join(' ', FirstMesh(scene).Polygons.Select(p => string.Join(',', p))));
        KeepsAll(scene);
    }

    [Fact]
    public void A_primitive_without_indices_uses_its_vertices_in_order()
    {
        var sample = new GltfSample();
        Mesh mesh = FirstMesh(sample.Open(MeshOf($$$$$"""{"attributes": {"POSITION": {{{{{sample.Triangle()}}}}}}}""")));
        Assert.Equal([0, 1, 2], Assert.Single(mesh.Polygons));
        Assert.Equal("m", mesh.Name);
    }

    [Fact]
    public void Points_become_a_point_cloud_with_colours()
    {
        var sample = new GltfSample();
        int position = sample.Triangle();
        int color = sample.Bytes("VEC4", true, 255, 0, 0, 255, 0, 255, 0, 128, 0, 0, 255, 0);
        Scene scene = sample.Open(MeshOf($$$$$"""{"attributes": {"POSITION": {{{{{position}}}}}, "COLOR_0": {{{{{color}}}}}}, "mode": 0}"""));
        var points = Assert.IsType<PointCloud>(First(scene).Entity);
        Assert.Equal(3, points.ControlPoints.Count);
        var colors = Assert.IsType<VertexElementVertexColor>(Assert.Single(points.VertexElements));
        Close.To(128 / 255.0, colors.Data[1].w, 1e-6);
        KeepsAll(scene);
    }

    [Fact]
    public void Points_with_indices_are_the_points_that_they_choose()
    {
        var sample = new GltfSample();
        int position = sample.Triangle();
        int indices = sample.Integers(2, 0);
        int value = sample.Floats("SCALAR", 10, 20, 30);
        Scene scene = sample.Open(MeshOf(
            $$$$$"""{"attributes": {"POSITION": {{{{{position}}}}}, "_VALUE": {{{{{value}}}}}}, "indices": {{{{{indices}}}}}, "mode": 0}"""));
        var points = Assert.IsType<PointCloud>(First(scene).Entity);
        Assert.Equal([new Vector4(0, 1, 0), new Vector4(0, 0, 0)], points.ControlPoints);
        Assert.Equal(new float[] { 30, 10 },
            Assert.IsType<VertexElementUserData>(points.VertexElements[0]).Data);
        KeepsAll(scene);
    }

    [Theory]
    [InlineData(1, "0,1 2,3")]
    [InlineData(2, "0,1,2,3,0")]
    [InlineData(3, "0,1,2,3")]
    public void Lines_loops_and_strips_become_a_line(int mode, string expected)
    {
        var sample = new GltfSample();
        int position = sample.Floats("VEC3", 0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0);
        int color = sample.Bytes("VEC4", false, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
        Scene scene = sample.Open(MeshOf($$$$$"""{"attributes": {"POSITION": {{{{{position}}}}}, "_ID": {{{{{color}}}}}}, "mode": {{{{{mode}}}}}}"""));
        var line = Assert.IsType<Line>(First(scene).Entity);
        Assert.Equal(expected, string.Join(' ', line.Segments.Select(s => string.Join(',', s))));
        Assert.Equal(16, Assert.IsType<byte[]>(line.GetProperty("_ID")).Length);
        KeepsAll(scene);
    }

    [Fact]
    public void All_vertex_attributes_become_vertex_elements()
    {
        var sample = new GltfSample();
        string attributes = $$$$$"""
            "POSITION": {{{{{sample.Triangle()}}}}}, "NORMAL": {{{{{sample.Floats("VEC3", 0, 0, 1, 0, 0, 1, 0, 0, 1)}}}}},
            "TANGENT": {{{{{sample.Floats("VEC4", 1, 0, 0, -1, 1, 0, 0, 1, 0, 1, 0, 1)}}}}},
            "TEXCOORD_0": {{{{{sample.Floats("VEC2", 0, 0, 1, 0.25f, 0, 1)}}}}},
            "TEXCOORD_1": {{{{{sample.Shorts("VEC2", true, 0, 65535, 0, 0, 65535, 65535)}}}}},
            "COLOR_0": {{{{{sample.Floats("VEC3", 1, 0, 0, 0, 1, 0, 0, 0, 1)}}}}},
            "COLOR_1": {{{{{sample.Bytes("VEC4", true, 0, 51, 102, 255, 0, 0, 0, 0, 255, 255, 255, 255)}}}}},
            "_ROW": {{{{{sample.Shorts("VEC2", false, 1, 2, 3, 4, 5, 6)}}}}}
            """;
        Scene scene = sample.Open(MeshOf($$$$$"""{"attributes": { {{{{{attributes}}}}} } }"""));
        Mesh mesh = FirstMesh(scene);
        Assert.Equal(new Vector4(0, 0, 1, 0),
            ((VertexElementNormal)mesh.GetElement(VertexElementType.Normal)!).Data[0]);
        Assert.Equal(-1, ((VertexElementTangent)mesh.GetElement(VertexElementType.Tangent)!).Data[0].w);
        VertexElementUV[] sets = [.. mesh.VertexElements.OfType<VertexElementUV>()];
        Assert.Equal(["TEXCOORD_0", "TEXCOORD_1"], sets.Select(s => s.Name));
        // The origin of the library's coordinates is below, that of the document's above.
        Assert.Equal(0.75, sets[0].Data[1].y);
        Assert.Equal(0, sets[1].Data[0].y);
        Assert.Equal(1, mesh.VertexElements.OfType<VertexElementVertexColor>().First().Data[0].w);
        Assert.Equal(new ushort[] { 1, 2, 3, 4, 5, 6 },
            mesh.VertexElements.OfType<VertexElementUserData>().Single().Data);
        KeepsAll(scene);
    }

    [Fact]
    public void Texture_coordinates_are_left_alone_when_asked()
    {
        var sample = new GltfSample();
        string text = sample.Text(MeshOf(
            $$$$$"""{"attributes": {"POSITION": {{{{{sample.Triangle()}}}}}, "TEXCOORD_0": {{{{{sample.Floats("VEC2", 0, 0, 1, 0.25f, 0, 1)}}}}}}}"""));
        Scene scene = GltfSample.OpenText(text, new GltfLoadOptions { FlipTexCoordV = false });
        Assert.Equal(0.25, ((VertexElementUV)FirstMesh(scene).GetElement(VertexElementType.UV)!).Data[1].y);
    }

    [Fact]
    public void Quantized_positions_are_numbers_like_others()
    {
        var sample = new GltfSample();
        int position = sample.SignedShorts("VEC3", true, -32768, 32767, 0, 0, 0, 0, 16384, 0, 0);
        Scene scene = sample.Open($$$$$"""
            "extensionsUsed": ["KHR_mesh_quantization"], "extensionsRequired": ["KHR_mesh_quantization"],
            {{{{{MeshOf(Plain(position))}}}}}
            """);
        Close.To(-1, FirstMesh(scene).ControlPoints[0].x);
        Close.To(16384 / 32767.0, FirstMesh(scene).ControlPoints[2].x, 1e-6);
        KeepsAll(scene);
    }

    [Fact]
    public void A_sparse_accessor_replaces_values_of_zeros_or_of_a_view()
    {
        var sample = new GltfSample();
        int where = sample.View([1, 2]);
        int values = sample.View(
            System.Runtime.InteropServices.MemoryMarshal.AsBytes(new float[] { 1, 2, 3, 4, 5, 6 }.AsSpan()));
        int position = sample.Accessor($$$$$"""
            {"componentType": 5126, "count": 3, "type": "VEC3", "sparse": {"count": 2,
             "indices": {"bufferView": {{{{{where}}}}}, "componentType": 5121}, "values": {"bufferView": {{{{{values}}}}}}}}
            """);
        Scene scene = sample.Open(MeshOf($$$$$"""{"attributes": {"POSITION": {{{{{position}}}}}}}"""));
        Assert.Equal([new Vector4(0, 0, 0), new Vector4(1, 2, 3), new Vector4(4, 5, 6)],
            FirstMesh(scene).ControlPoints);
    }

    [Fact]
    public void Primitives_that_share_vertices_share_control_points()
    {
        var sample = new GltfSample();
        int position = sample.Floats("VEC3", 0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0);
        int a = sample.Bytes("SCALAR", false, 0, 1, 2);
        int b = sample.Bytes("SCALAR", false, 2, 1, 3);
        Scene scene = sample.Open("\"materials\": [{\"name\": \"red\"}, {\"name\": \"blue\"}], " + MeshOf($$$$$"""
            {"attributes": {"POSITION": {{{{{position}}}}}}, "indices": {{{{{a}}}}}, "material": 1},
            {"attributes": {"POSITION": {{{{{position}}}}}}, "indices": {{{{{b}}}}}, "material": 0},
            {"attributes": {"POSITION": {{{{{position}}}}}}, "indices": {{{{{a}}}}}, "material": 0}
            """));
        Mesh mesh = FirstMesh(scene);
        Assert.Equal(4, mesh.ControlPoints.Count);
        Assert.Equal(3, mesh.PolygonCount);
        Assert.Equal(["blue", "red"], First(scene).Materials.Select(m => m.Name));
        Assert.Equal([0, 1, 1], mesh.GetElement(VertexElementType.Material)!.Indices);
        // Two primitives of one material are told apart by polygon groups.
        Assert.Equal([0, 1, 2],
            ((VertexElementPolygonGroup)mesh.GetElement(VertexElementType.PolygonGroup)!).Data);
        KeepsAll(scene);
        GltfSample.Through(scene, new GltfSaveOptions(FileContentType.Binary), out var document);
        Assert.Equal(3, document["meshes"]![0]!["primitives"]!.AsArray().Count);
        Assert.Single(document["accessors"]!.AsArray(), item => item!["type"]!.GetValue<string>() == "VEC3");
    }

    [Fact]
    public void Primitives_with_vertices_of_their_own_follow_each_other_and_part_again()
    {
        var sample = new GltfSample();
        int a = sample.Triangle();
        int b = sample.Floats("VEC3", 5, 0, 0, 6, 0, 0, 5, 1, 0, 6, 1, 0);
        int indices = sample.Bytes("SCALAR", false, 0, 1, 2, 2, 1, 3);
        Scene scene = sample.Open("\"materials\": [{}, {\"name\": \"blue\"}], " + MeshOf($$$$$"""
            {"attributes": {"POSITION": {{{{{a}}}}}}, "material": 0},
            {"attributes": {"POSITION": {{{{{b}}}}}}, "indices": {{{{{indices}}}}}, "material": 1}
            """));
        Assert.Equal(7, FirstMesh(scene).ControlPoints.Count);
        Assert.Equal([3, 4, 5], FirstMesh(scene).Polygons[1]);
        KeepsAll(scene);
        GltfSample.Through(scene, new GltfSaveOptions(FileContentType.Binary), out var document);
        var counts = document["accessors"]!.AsArray().Where(item =>
            item!["type"]!.GetValue<string>() == "VEC3")
            .Select(item => item!["count"]!.GetValue<int>());
        Assert.Equal([3, 4], counts);
    }

    [Fact]
    public void Primitives_with_other_attributes_or_modes_become_entities_of_their_own_on_the_node()
    {
        var sample = new GltfSample();
        int position = sample.Triangle();
        int normal = sample.Floats("VEC3", 0, 0, 1, 0, 0, 1, 0, 0, 1);
        Scene scene = sample.Open("\"materials\": [{\"name\": \"red\"}, {\"name\": \"blue\"}], " + MeshOf($$$$$"""
            {"attributes": {"POSITION": {{{{{position}}}}}}, "material": 0},
            {"attributes": {"POSITION": {{{{{position}}}}}, "NORMAL": {{{{{normal}}}}}}, "material": 1},
            {"attributes": {"POSITION": {{{{{position}}}}}}, "mode": 0},
            {"attributes": {"POSITION": {{{{{position}}}}}}, "mode": 3, "material": 1}
            """));
        Node node = First(scene);
        Assert.Equal([typeof(Mesh), typeof(Mesh), typeof(PointCloud), typeof(Line)],
            node.Entities.Select(e => e.GetType()));
        // Where some primitives have a material, those without one get the default of the format.
        Assert.Equal(["red", "blue", ""], node.Materials.Select(m => m.Name));
        Assert.Equal(1, node.Entities[3].GetProperty("MaterialIndex"));
        KeepsAll(scene);
        GltfSample.Through(scene, new GltfSaveOptions(FileContentType.Binary), out var document);
        Assert.Single(document["meshes"]!.AsArray());
    }

    [Fact]
    public void A_mesh_of_several_nodes_is_one_entity()
    {
        var sample = new GltfSample();
        Scene scene = sample.Open($$$$$"""
            "scenes": [{"nodes": [0, 1]}], "nodes": [{"mesh": 0}, {"mesh": 0, "translation": [1, 2, 3]}],
            "meshes": [{"primitives": [{"attributes": {"POSITION": {{{{{sample.Triangle()}}}}}}}]}]
            """);
        Assert.Same(scene.RootNode.ChildNodes[0].Entity, scene.RootNode.ChildNodes[1].Entity);
        KeepsAll(scene);
        GltfSample.Through(scene, new GltfSaveOptions(FileContentType.Binary), out var document);
        Assert.Single(document["meshes"]!.AsArray());
    }

    [Fact]
    public void Nodes_keep_their_hierarchy_and_transforms()
    {
        Scene scene = new GltfSample().Open("""
            "scene": 0, "scenes": [{"nodes": [0], "name": "main"}], "nodes": [
            {"name": "a", "children": [2, 1], "translation": [1, 2, 3], "rotation": [0.5, 0.5, 0.5, 0.5], "scale": [2, 3, -4]},
            {"name": "b", "matrix": [0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1]},
            {"name": "c", "matrix": [1, 0, 0, 0, 0.5, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1]}]
            """);
        Node a = First(scene);
        Assert.Equal("main", scene.Name);
        Assert.Equal(["c", "b"], a.ChildNodes.Select(n => n.Name));
        Assert.Equal(new Vector3(2, 3, -4), a.Transform.Scale);
        Assert.Equal(new Quaternion(0.5, 0.5, 0.5, 0.5), a.Transform.Rotation);
        Close.To(new Vector3(7, 8, 9), a.ChildNodes[1].Transform.Translation);
        Close.To(90, a.ChildNodes[1].Transform.EulerAngles.z);
        // Shear is kept in the matrix.
        Assert.Equal(0.5, a.ChildNodes[0].Transform.TransformMatrix.m10);
        KeepsAll(scene);
    }

    [Fact]
    public void Further_scenes_become_sub_scenes_and_what_no_scene_shows_goes_to_the_library()
    {
        var sample = new GltfSample();
        Scene scene = sample.Open($$$$$"""
            "scene": 1, "scenes": [{"nodes": [0], "name": "other"}, {"nodes": [0, 1], "name": "main"}],
            "nodes": [{"name": "shared", "mesh": 0, "children": [3]}, {"name": "own"}, {"name": "loose"}, {"name": "child"}],
            "meshes": [{"primitives": [{"attributes": {"POSITION": {{{{{sample.Triangle()}}}}}}}]}],
            "materials": [{"name": "unused"}]
            """);
        Assert.Equal("main", scene.Name);
        Scene other = Assert.Single(scene.SubScenes);
        Assert.Equal("other", other.Name);
        Assert.Equal("child", other.RootNode.ChildNodes[0].ChildNodes[0].Name);
        Assert.Same(First(scene).Entity, First(other).Entity);
        Assert.Equal(["loose", "unused"], scene.Library.Select(item => item.Name));
        KeepsAll(scene);
    }

    [Fact]
    public void Extras_become_properties()
    {
        Scene scene = new GltfSample().Open("""
            "asset": {"version": "2.0", "generator": "hand", "copyright": "me", "extras": {"title": "T", "other": 5}},
            "scenes": [{"nodes": [0], "extras": {"s": true}}],
            "nodes": [{"extras": {"text": "x", "whole": 3, "big": 5000000000, "real": 2.5, "none": null, "Visible": "taken",
             "numbers": [1, 2.5], "counts": [1, 2], "mixed": [1, "a", null], "deep": {"a": [{"b": 1}]}}, "children": [1]},
             {"extras": [1, 2, 3]}]
            """);
        Node node = First(scene);
        Assert.Equal("T", scene.AssetInfo.Title);
        Assert.Equal("hand", scene.AssetInfo.ApplicationName);
        Assert.Equal(5, scene.AssetInfo.GetProperty("other"));
        Assert.Equal(true, scene.GetProperty("s"));
        Assert.Equal("x", node.GetProperty("text"));
        Assert.Equal(3, node.GetProperty("whole"));
        Assert.Equal(5000000000L, node.GetProperty("big"));
        Assert.Equal(2.5, node.GetProperty("real"));
        Assert.True(node.Visible);
        Assert.Equal("taken", node.GetProperty("extras.Visible"));
        Assert.Equal(new[] { 1, 2.5 }, node.GetProperty("numbers"));
        Assert.Equal(new[] { 1, 2 }, node.GetProperty("counts"));
        Assert.Equal(new[] { 1, 2, 3 }, node.ChildNodes[0].GetProperty("extras"));
        KeepsAll(scene);
    }

    [Fact]
    public void Extras_of_primitives_and_data_of_unknown_extensions_are_carried_on()
    {
        var sample = new GltfSample();
        int position = sample.Triangle();
        Scene scene = sample.Open($$$$$"""
            "extensionsUsed": ["VENDOR_note", "VENDOR_link"], "materials": [{}, {}], "scenes": [{"nodes": [0]}],
            "nodes": [{"mesh": 0, "extensions": {"VENDOR_note": {"text": "x", "share": 0.5}, "VENDOR_link": {"node": 0}}, "extras": {"KHR_like": 1}}],
            "meshes": [{"primitives": [{"attributes": {"POSITION": {{{{{position}}}}}}, "material": 0},
                                       {"attributes": {"POSITION": {{{{{position}}}}}}, "material": 1, "extras": {"part": "two"}}]}]
            """);
        var data = Assert.IsType<Dictionary<string, object?>>(First(scene).GetProperty("VENDOR_note"));
        Assert.Equal("x", data["text"]);
        // Numbers that may be indices would point elsewhere after writing.
        Assert.Null(First(scene).GetProperty("VENDOR_link"));
        Assert.Equal(1, First(scene).GetProperty("extras.KHR_like"));
        var extras = Assert.IsType<List<object?>>(FirstMesh(scene).GetProperty("PrimitiveExtras"));
        Assert.Null(extras[0]);
        KeepsAll(scene);
    }

    [Fact]
    public void Cameras_look_where_their_node_does()
    {
        Scene scene = new GltfSample().Open("""
            "scenes": [{"nodes": [0, 1, 2]}],
            "nodes": [{"camera": 0, "rotation": [0, 0.7071067811865476, 0, 0.7071067811865476]}, {"camera": 1}, {"camera": 2}],
            "cameras": [{"type": "perspective", "name": "eye", "perspective": {"yfov": 1.0, "aspectRatio": 1.5, "znear": 0.5, "zfar": 50}},
             {"type": "orthographic", "orthographic": {"xmag": 4, "ymag": 2, "znear": 0, "zfar": 10}},
             {"type": "perspective", "perspective": {"yfov": 0.5, "znear": 0.1}}]
            """);
        var eye = (Camera)First(scene).Entity!;
        Close.To(new Vector3(-1, 0, 0), eye.Direction);
        Close.To(180 / Math.PI, eye.FieldOfViewY);
        Assert.Equal(1.5, eye.AspectRatio);
        Assert.Equal(50, eye.FarPlane);
        var flat = (Camera)scene.RootNode.ChildNodes[1].Entity!;
        Assert.Equal(ProjectionType.Orthographic, flat.ProjectionType);
        Assert.Equal(4, flat.OrthoHeight);
        Assert.Equal(2, flat.AspectRatio);
        Assert.Equal(double.PositiveInfinity, ((Camera)scene.RootNode.ChildNodes[2].Entity!).FarPlane);
        KeepsAll(scene);
    }

    [Fact]
    public void Lights_become_lights()
    {
        Scene scene = new GltfSample().Open("""
            "extensionsUsed": ["KHR_lights_punctual"],
            "extensions": {"KHR_lights_punctual": {"lights": [
              {"type": "spot", "name": "s", "color": [1, 0.5, 0.25], "intensity": 20, "range": 9, "spot": {"innerConeAngle": 0.1, "outerConeAngle": 0.2}},
              {"type": "directional"}, {"type": "point"}]}},
            "scenes": [{"nodes": [0, 1]}],
            "nodes": [{"extensions": {"KHR_lights_punctual": {"light": 0}}},
                      {"rotation": [0.7071067811865476, 0, 0, 0.7071067811865476], "extensions": {"KHR_lights_punctual": {"light": 1}}}]
            """);
        var spot = (Light)First(scene).Entity!;
        Assert.Equal(LightType.Spot, spot.LightType);
        Assert.Equal(20, spot.Intensity);
        Assert.Equal(9.0, spot.GetProperty("Range"));
        Close.To(0.4 * 180 / Math.PI, spot.Falloff);
        Close.To(new Vector3(0, 1, 0), ((Light)scene.RootNode.ChildNodes[1].Entity!).Direction);
        Assert.Equal(LightType.Point, Assert.IsType<Light>(Assert.Single(scene.Library)).LightType);
        KeepsAll(scene);
    }

    private const string PixelUri =
        "data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg==";

    [Fact]
    public void Materials_keep_factors_textures_and_extensions()
    {
        var sample = new GltfSample();
        Scene scene = sample.Open($$$$$"""
            "extensionsUsed": ["KHR_texture_transform", "KHR_materials_clearcoat", "KHR_materials_emissive_strength", "KHR_materials_unlit",
              "KHR_materials_specular", "VENDOR_thing"],
            "materials": [{"name": "full", "alphaMode": "MASK", "alphaCutoff": 0.25, "doubleSided": true, "emissiveFactor": [0.1, 0.2, 0.3],
              "extras": {"own": 1},
              "pbrMetallicRoughness": {"baseColorFactor": [0.1, 0.2, 0.3, 0.5], "metallicFactor": 0.25, "roughnessFactor": 0.75,
                "baseColorTexture": {"index": 0, "texCoord": 1, "extensions": {"KHR_texture_transform": {"offset": [0.5, 0.25], "rotation": 0.5, "scale": [2, 4]}}},
                "metallicRoughnessTexture": {"index": 1}},
              "normalTexture": {"index": 0, "scale": 0.5}, "occlusionTexture": {"index": 0, "strength": 0.75}, "emissiveTexture": {"index": 1},
              "extensions": {"KHR_materials_clearcoat": {"clearcoatFactor": 0.5, "clearcoatNormalTexture": {"index": 1, "scale": 2}},
                "KHR_materials_emissive_strength": {"emissiveStrength": 5}, "KHR_materials_unlit": {},
                "KHR_materials_specular": {"specularColorTexture": {"index": 0}, "specularColorFactor": [1, 0.5, 0.25]},
                "VENDOR_thing": {"list": [1, 2], "flag": true}} }],
            "textures": [{"source": 0, "sampler": 0, "name": "t"}, {"source": 0}],
            "images": [{"uri": "{{{{{PixelUri}}}}}", "name": "pixel"}],
            "samplers": [{"magFilter": 9728, "minFilter": 9985, "wrapS": 33071, "wrapT": 33648}],
            {{{{{MeshOf(WithMaterial(sample))}}}}}
            """);
        var material = Assert.IsType<PbrMaterial>(First(scene).Material);
        Assert.Equal(0.5, material.Transparency);
        Assert.Equal(0.25, material.MetallicFactor);
        Assert.Equal(0.75, material.OcclusionFactor);
        Assert.Equal("MASK", material.GetProperty("AlphaMode"));
        Assert.Equal(0.25, material.GetProperty("AlphaCutoff"));
        Assert.Equal(true, material.GetProperty("DoubleSided"));
        Assert.Equal(0.5, material.GetProperty("NormalScale"));
        Assert.Equal(0.5, material.GetProperty("KHR_materials_clearcoat.clearcoatFactor"));
        Assert.Equal(2.0, material.GetProperty("KHR_materials_clearcoat.clearcoatNormalTexture.scale"));
        Assert.NotNull(material.GetTexture("KHR_materials_clearcoat.clearcoatNormalTexture"));
        Assert.Equal(true, material.GetProperty("KHR_materials_unlit"));
        Assert.NotNull(material.SpecularTexture);
        var texture = Assert.IsType<Texture>(material.AlbedoTexture);
        Assert.Equal("t", texture.Name);
        Assert.Equal("pixel", texture.GetProperty("ImageName"));
        Assert.Equal("pixel.png", texture.FileName);
        Assert.Equal(1, texture.GetProperty("TexCoord"));
        Assert.Equal(TextureFilter.Point, texture.MagFilter);
        Assert.Equal((TextureFilter.Linear, TextureFilter.Point), (texture.MinFilter, texture.MipFilter));
        Assert.Equal((WrapMode.Clamp, WrapMode.Mirror), (texture.WrapModeU, texture.WrapModeV));
        Assert.Equal(new Vector2(2, 4), texture.UVScale);
        Assert.Equal(-0.5, texture.UVRotation.z);
        Assert.Same(((Texture)material.MetallicRoughness!).Content, texture.Content);
        KeepsAll(scene);
        GltfSample.Through(scene, new GltfSaveOptions(FileContentType.Binary), out var document);
        Assert.Single(document["images"]!.AsArray());
        Assert.Equal(0.5f,
            document["materials"]![0]!["pbrMetallicRoughness"]!["baseColorTexture"]!["extensions"]!
            ["KHR_texture_transform"]!["offset"]![0]!.GetValue<float>(), 5);
    }

    [Fact]
    public void A_texture_transform_moves_the_same_way_when_v_is_turned()
    {
        var sample = new GltfSample();
        string text = sample.Text($$$$$"""
            "extensionsUsed": ["KHR_texture_transform"],
            "materials": [{"pbrMetallicRoughness": {"baseColorTexture": {"index": 0, "extensions": {
              "KHR_texture_transform": {"offset": [0.5, 0.25], "rotation": 0.3, "scale": [2, 4]}} }} }],
            "textures": [{"source": 0}], "images": [{"uri": "{{{{{PixelUri}}}}}"}],
            {{{{{MeshOf(WithMaterial(sample))}}}}}
            """);
        TextureBase turned = ((PbrMaterial)First(GltfSample.OpenText(text)).Material!).AlbedoTexture!;
        TextureBase plain = (
            (PbrMaterial)First(GltfSample.OpenText(text,
            new GltfLoadOptions { FlipTexCoordV = false })).Material!).AlbedoTexture!;
        Assert.Equal(0.25, plain.UVTranslation.y);
        Vector2 point = new(0.125, 0.75);
        Vector2 direct = Apply(plain, point);
        Vector2 around = Apply(turned, new Vector2(point.x, 1 - point.y));
        Close.To(direct.x, around.x);
        Close.To(direct.y, 1 - around.y);

        static Vector2 Apply(TextureBase t, Vector2 p)
        {
            (double sin, double cos) = Math.SinCos(t.UVRotation.z);
            double u = p.x * t.UVScale.x;
            double v = p.y * t.UVScale.y;
            return new Vector2(cos * u - sin * v + t.UVTranslation.x, sin * u + cos * v + t.UVTranslation.y);
        }
    }

    [Fact]
    public void Specular_and_glossiness_materials_have_a_class_of_their_own()
    {
        var sample = new GltfSample();
        Scene scene = sample.Open($$$$$"""
            "extensionsUsed": ["KHR_materials_pbrSpecularGlossiness"],
            "materials": [{"name": "g", "extensions": {"KHR_materials_pbrSpecularGlossiness": {"diffuseFactor": [0.5, 0.25, 0.125, 0.5],
              "specularFactor": [0.1, 0.2, 0.3], "glossinessFactor": 0.4}}}],
            {{{{{MeshOf(WithMaterial(sample))}}}}}
            """);
        var material = Assert.IsType<PbrSpecularMaterial>(First(scene).Material);
        Assert.Equal(0.4, material.GlossinessFactor);
        Assert.Equal(0.5, material.Transparency);
        // What is transparent is written as blended, which the file had left open.
        material.SetProperty("AlphaMode", "BLEND");
        KeepsAll(scene);
    }

    private static string Skinned(GltfSample sample, string weights, string more = "") => $$$$$"""
        "scenes": [{"nodes": [0, 1]}],
        "nodes": [{"mesh": 0, "skin": 0}, {"name": "root", "children": [2]}, {"name": "tip", "translation": [0, 1, 0]}],
        "skins": [{"name": "skin", "joints": [1, 2], "skeleton": 1,
          "inverseBindMatrices": {{{{{sample.Floats("MAT4", [.. Unit(0), .. Unit(-1)])}}}}}}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": {{{{{sample.Triangle()}}}}}, "JOINTS_0": {{{{{sample.Bytes("VEC4", false, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0)}}}}},
          "WEIGHTS_0": {{{{{weights}}}}} } }]}] {{{{{more}}}}}
        """;

    private static float[] Unit(float y) => [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, y, 0, 1];

    [Fact]
    public void A_skin_becomes_a_deformer_with_bones()
    {
        var sample = new GltfSample();
        int weights = sample.Floats("VEC4", 0.25f, 0.75f, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0);
        Scene scene = sample.Open(Skinned(sample, weights.ToString()));
        var skin = Assert.IsType<SkinDeformer>(Assert.Single(FirstMesh(scene).Deformers));
        Assert.Equal(["root", "tip"], skin.Bones.Select(b => b.Node!.Name));
        Assert.Equal(0.25, skin.Bones[0].GetWeight(0));
        Assert.Equal(0.75, skin.Bones[1].GetWeight(0));
        // Where the bone stood when it was bound.
        Assert.Equal(1, skin.Bones[1].BoneTransform.m31);
        Assert.Same(scene.RootNode.ChildNodes[1], skin.GetProperty("SkeletonRoot"));
        KeepsAll(scene);
    }

    [Fact]
    public void Weights_that_do_not_sum_up_to_1_are_scaled_on_the_way_out()
    {
        var sample = new GltfSample();
        int weights = sample.Floats("VEC4", 0.25f, 0.25f, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0);
        Scene scene = sample.Open(Skinned(sample, weights.ToString()));
        foreach (Scene after in GltfSample.ThroughBothForms(scene))
        {
            var skin = (SkinDeformer)FirstMesh(after).Deformers.First();
            Close.To(0.5, skin.Bones[0].GetWeight(0));
            Close.To(1, skin.Bones[1].GetWeight(1));
            Close.To(0, skin.Bones[0].GetWeight(2));
        }
    }

    [Fact]
    public void Morph_targets_become_channels_with_shapes()
    {
        var sample = new GltfSample();
        int position = sample.Triangle();
        int normal = sample.Floats("VEC3", 0, 0, 1, 0, 0, 1, 0, 0, 1);
        int moves = sample.Floats("VEC3", 0, 0, 1, 0, 0, 2, 0, 0, 3);
        int turns = sample.Floats("VEC3", 0, 1, -1, 0, 0, 0, 0, 0, 0);
        Scene scene = sample.Open($$$$$"""
            "scenes": [{"nodes": [0, 1]}], "nodes": [{"mesh": 0}, {"mesh": 0, "weights": [0, 1]}],
            "meshes": [{"weights": [0.5, 0.25], "extras": {"targetNames": ["up", "turn"]}, "primitives": [
              {"attributes": {"POSITION": {{{{{position}}}}}, "NORMAL": {{{{{normal}}}}}},
               "targets": [{"POSITION": {{{{{moves}}}}}}, {"POSITION": {{{{{moves}}}}}, "NORMAL": {{{{{turns}}}}}}]}]}]
            """);
        var morph = Assert.IsType<MorphTargetDeformer>(Assert.Single(FirstMesh(scene).Deformers));
        Assert.Equal(["up", "turn"], morph.Channels.Select(c => c.Name));
        Assert.Equal(0.5, morph.Channels[0].ChannelWeight);
        Assert.Equal(new Vector4(1, 0, 2), morph.Channels[0].Targets[0].ControlPoints[1]);
        var normals = (VertexElementNormal)morph.Channels[1].Targets[0].GetElement(VertexElementType.Normal)!;
        Assert.Equal(new Vector4(0, 1, 0, 0), normals.Data[0]);
        // A node with weights of its own has a mesh of its own.
        Assert.NotSame(First(scene).Entity, scene.RootNode.ChildNodes[1].Entity);
        KeepsAll(scene);
    }

    [Fact]
    public void Animations_keep_their_keys()
    {
        var sample = new GltfSample();
        int times = sample.Floats("SCALAR", 0, 1, 2.5f);
        int moves = sample.Floats("VEC3", 0, 0, 0, 1, 2, 3, 4, 5, 6);
        int turns = sample.Floats("VEC4", 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0);
        int cubic = sample.Floats("VEC3", [.. Enumerable.Range(0, 27).Select(i => (float)i)]);
        int weights = sample.Floats("SCALAR", 0, 1, 0.5f);
        int normalized = sample.Bytes("VEC4", true, 0, 0, 0, 255, 0, 255, 0, 0, 0, 0, 255, 0);
        Scene scene = sample.Open($$$$$"""
            "scenes": [{"nodes": [0, 1]}], "nodes": [{"mesh": 0, "name": "n"}, {"name": "o"}],
            "meshes": [{"primitives": [{"attributes": {"POSITION": {{{{{sample.Triangle()}}}}}}, "targets": [{"POSITION": {{{{{sample.Triangle()}}}}}}]}]}],
            "animations": [{"name": "walk", "samplers": [
                {"input": {{{{{times}}}}}, "output": {{{{{moves}}}}}}, {"input": {{{{{times}}}}}, "output": {{{{{turns}}}}}, "interpolation": "STEP"},
                {"input": {{{{{times}}}}}, "output": {{{{{cubic}}}}}, "interpolation": "CUBICSPLINE"}, {"input": {{{{{times}}}}}, "output": {{{{{weights}}}}}},
                {"input": {{{{{times}}}}}, "output": {{{{{normalized}}}}} }],
              "channels": [{"sampler": 0, "target": {"node": 0, "path": "translation"}}, {"sampler": 1, "target": {"node": 0, "path": "rotation"}},
                {"sampler": 2, "target": {"node": 0, "path": "scale"}}, {"sampler": 3, "target": {"node": 0, "path": "weights"}},
                {"sampler": 4, "target": {"node": 1, "path": "rotation"}}]}]
            """);
        AnimationClip clip = Assert.Single(scene.AnimationClips);
        Assert.Equal(("walk", 0, 2.5), (clip.Name, clip.Start, clip.Stop));
        AnimationNode node = clip.Animations[0];
        KeyframeSequence y = node.GetKeyframeSequence(First(scene).Transform, "Translation", "Y", false)!;
        Assert.Equal([(0, 0), (1, 2), (2.5, 5)], y.KeyFrames.Select(k => (k.Time, (double)k.Value)));
        Assert.All(node.GetKeyframeSequence(First(scene).Transform, "Rotation", "W", false)!.KeyFrames,
                   k => Assert.Equal(Interpolation.Constant, k.Interpolation));
        KeyframeSequence x = node.GetKeyframeSequence(First(scene).Transform, "Scale", "X", false)!;
        // For each key the tangent that arrives, the value, the tangent that leaves.
        Assert.Equal([3, 12, 21], x.KeyFrames.Select(k => (int)k.Value));
        Assert.Equal(6, x.KeyFrames[0].OutTangent.y);
        Assert.Equal(9, x.KeyFrames[0].NextInTangent.y);
        Assert.Equal(4, node.BindPoints.Count);
        KeepsAll(scene);
    }

    [Fact]
    public void Side_files_are_found_by_percent_encoded_names()
    {
        using var folder = new TemporaryFolder();
        byte[] floats = new byte[36];
        BitConverter.TryWriteBytes(floats.AsSpan(12), 1f);
        Directory.CreateDirectory(folder.File("sub dir"));
        File.WriteAllBytes(folder.File("sub dir/data ü.bin"), floats);
        File.WriteAllText(folder.File("a.gltf"), """
            {"asset": {"version": "2.0"}, "buffers": [{"byteLength": 36, "uri": "sub%20dir/data%20%C3%BC.bin"}],
             "bufferViews": [{"buffer": 0, "byteLength": 36}], "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3"}],
             "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}], "nodes": [{"mesh": 0}], "scenes": [{"nodes": [0]}]}
            """);
        Assert.Equal(1, FirstMesh(new Scene(folder.File("a.gltf"))).ControlPoints[1].x);
    }

    [Fact]
    public void An_image_file_that_is_missing_leaves_its_name()
    {
        var sample = new GltfSample();
        Scene scene = sample.Open($$$$$"""
            "materials": [{"pbrMetallicRoughness": {"baseColorTexture": {"index": 0}}}], "textures": [{"source": 0}], "images": [{"uri": "no%20file.png"}],
            {{{{{MeshOf(WithMaterial(sample))}}}}}
            """);
        var texture = (Texture)((PbrMaterial)First(scene).Material!).AlbedoTexture!;
        Assert.Equal("no file.png", texture.FileName);
        Assert.Null(texture.Content);
        KeepsAll(scene);
    }

    [Fact]
    public void A_byte_order_mark_and_a_document_without_scenes_are_taken()
    {
        using var folder = new TemporaryFolder();
        File.WriteAllText(folder.File("a.gltf"), """{"asset": {"version": "2.0"}, "nodes": [{"name": "x", "children": [1]}, {}]}""",
                          new UTF8Encoding(true));
        Assert.Equal("x", First(new Scene(folder.File("a.gltf"))).Name);
    }

    [Fact]
    public void A_hidden_node_stays_hidden()
    {
        Scene scene = new GltfSample().Open("""
            "extensionsUsed": ["KHR_node_visibility"], "scenes": [{"nodes": [0]}],
            "nodes": [{"extensions": {"KHR_node_visibility": {"visible": false}}}]
            """);
        Assert.False(First(scene).Visible);
        KeepsAll(scene);
    }
}
