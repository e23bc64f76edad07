using System;
using System.Collections.Generic;
using System.Linq;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Entities;

public class PolygonModifierTests
{
    private static readonly Vector4[] Arrow = [new(0, 0, 0), new(4, 4, 0), new(0, 8, 0), new(1, 4, 0)];

    private static double Area(IReadOnlyList<Vector4> points, IEnumerable<int[]> polygons, Vector3 direction)
    {
        double sum = 0;
        foreach (int[] polygon in polygons)
        {
            Vector3 origin = new(points[polygon[0]]);
            for (int k = 1; k + 1 < polygon.Length; k++)
            {
                Vector3 a = new Vector3(points[polygon[k]]) - origin;
                sum += a.Cross(new Vector3(points[polygon[k + 1]]) - origin).Dot(direction) / 2;
            }
        }
        return sum;
    }

    /// <summary>A star-shaped polygon has no crossings, whatever its radii are.</summary>
    private static Vector4[] Star(Random random, int corners)
    {
        Vector4[] points = new Vector4[corners];
        for (int i = 0; i < corners; i++)
        {
            (double sin, double cos) = Math.SinCos(2 * Math.PI * i / corners);
            double radius = 0.1 + random.NextDouble();
            points[i] = new Vector4(radius * cos, radius * sin, 0, 1);
        }
        return points;
    }

    [Fact]
    public void ConcaveQuadIsCutAcrossItsDent()
    {
        int[][] triangles = PolygonModifier.Triangulate(Arrow);
        Assert.Equal(2, triangles.Length);
        Assert.All(triangles, t => Assert.True(t.Contains(1) && t.Contains(3)));
        Close.To(Area(Arrow, [[0, 1, 2, 3]], Vector3.ZAxis),
            triangles.Sum(t => Area(Arrow, [t], Vector3.ZAxis)));
    }

    [Theory]
    [InlineData(5)]
    [InlineData(17)]
    [InlineData(100)]
    public void TrianglesCoverThePolygon(int corners)
    {
        Random random = new(corners);
        for (int round = 0; round < 20; round++)
        {
            Vector4[] points = Star(random, corners);
            Matrix4 turn = Matrix4.RotateFromEuler(random.NextDouble() * 6, random.NextDouble() * 6,
                random.NextDouble() * 6);
            Vector3 normal = Vector3.ZAxis * turn;
            for (int i = 0; i < corners; i++)
                points[i] = new Vector4(new Vector3(points[i]) * turn, 1);
            int[] polygon = Enumerable.Range(0, corners).ToArray();
            int[][] triangles = PolygonModifier.Triangulate(points, polygon);
            Assert.Equal(corners - 2, triangles.Length);
            Assert.All(triangles, t => Assert.True(Area(points, [t], normal) > -1e-12));
            Close.To(Area(points, [polygon], normal), Area(points, triangles, normal), 1e-9);
            Assert.Equal(polygon, triangles.SelectMany(t => t).Distinct().Order());
        }
    }

    /// <summary>A comb with pointed teeth: most of its convex corners hold others in their triangle.</summary>
    private static Vector4[] Comb(int teeth)
    {
        List<Vector4> points = [new(0, 0, 0), new(2 * teeth, 0, 0)];
        for (int i = teeth - 1; i >= 0; i--)
        {
            points.Add(new Vector4(2 * i + 1.9, 10 + i % 3, 0));
            points.Add(new Vector4(2 * i, 0.5 + 0.1 * (i % 2), 0));
        }
        return points.ToArray();
    }

    /// <summary>A spiral band: an outer way inwards and an inner way back.</summary>
    private static Vector4[] Spiral(int corners)
    {
        List<Vector4> points = new();
        foreach ((int from, int step, double width) in new[] { (0, 1, 0.4), (corners - 1, -1, 0.0) })
        {
            for (int k = 0, i = from; k < corners; k++, i += step)
            {
                (double sin, double cos) = Math.SinCos(-0.5 * i);
                double radius = 10 - 0.08 * i + width;
                points.Add(new Vector4(radius * cos, radius * sin, 0));
            }
        }
        return points.ToArray();
    }

    [Fact]
    public void WindingPolygonsAreCovered()
    {
        foreach (Vector4[] points in new[] { Comb(3), Comb(20), Spiral(20), Spiral(60) })
        {
            int[] polygon = Enumerable.Range(0, points.Length).ToArray();
            double area = Area(points, [polygon], Vector3.ZAxis);
            int[][] triangles = PolygonModifier.Triangulate(points);
            Assert.Equal(points.Length - 2, triangles.Length);
            // Triangles that all run the way of the polygon cover every place as often as the polygon goes round it.
            Assert.All(triangles, t => Assert.True(Area(points, [t], Vector3.ZAxis) * Math.Sign(area) > -1e-12));
            Close.To(area, triangles.Sum(t => Area(points, [t], Vector3.ZAxis)), 1e-9);
        }
    }

    [Fact]
    public void PolygonsWithStraightAndRepeatedCornersAreCut()
    {
        Vector4[] points = [new(0, 0, 0), new(1, 0, 0), new(2, 0, 0), new(2, 2, 0), new(0, 2, 0),
            new(0, 1, 0)];
        int[][] triangles = PolygonModifier.Triangulate(points);
        Assert.Equal(4, triangles.Length);
        Close.To(4, Area(points, triangles, Vector3.ZAxis));
        Assert.Equal(2, PolygonModifier.Triangulate(
            [new(0, 0, 0), new(0, 0, 0), new(0, 0, 0), new(0, 0, 0)]).Length);
        Assert.Empty(PolygonModifier.Triangulate([new(0, 0, 0), new(1, 0, 0)]));
    }

    [Fact]
    public void NormalsAreGivenOnRequest()
    {
        IList<int[]> polygons = [[0, 1, 2, 3], [3, 2, 1]];
        int[][] triangles = PolygonModifier.Triangulate(Arrow, polygons, true, out Vector3[] normals);
        Assert.Equal(3, triangles.Length);
        Assert.Equal([Vector3.ZAxis, Vector3.ZAxis, -Vector3.ZAxis], normals);
        PolygonModifier.Triangulate(Arrow, polygons, false, out normals);
        Assert.Empty(normals);
        Assert.Throws<ArgumentException>(() => PolygonModifier.Triangulate(Arrow, new[] { 0, 1, 9 }));
    }

    [Fact]
    public void TriangulatedMeshKeepsItsElements()
    {
        Mesh box = new Box("b", 2, 2, 2, 1, 2, 3).ToMesh();
        VertexElementPolygonGroup groups =
            (VertexElementPolygonGroup)box.CreateElement(VertexElementType.PolygonGroup);
        groups.SetData(Enumerable.Range(0, box.PolygonCount).ToArray());
        VertexElementEdgeCrease creases =
            (VertexElementEdgeCrease)box.CreateElement(VertexElementType.EdgeCrease);
        creases.SetData(Enumerable.Repeat(0.5, box.Edges.Count / 2).ToArray());
        int polygons = box.PolygonCount;
        Mesh mesh = PolygonModifier.Triangulate(box);
        Assert.Equal(polygons, box.PolygonCount);
        Assert.Equal(2 * polygons, mesh.PolygonCount);
        Assert.All(mesh.Polygons, p => Assert.Equal(3, p.Length));
        MeshMeasure.AssertClosed(mesh);
        MeshMeasure.AssertCornerValues(mesh, 0.999);
        Close.To(8, MeshMeasure.Volume(mesh));
        IList<int> data = ((VertexElementPolygonGroup)mesh.GetElement(VertexElementType.PolygonGroup)!).Data;
        Assert.Equal(Enumerable.Range(0, 2 * polygons).Select(i => i / 2), data);
        List<double> carried =
            ((VertexElementEdgeCrease)mesh.GetElement(VertexElementType.EdgeCrease)!).DataList;
        Assert.Equal(mesh.Edges.Count / 2, carried.Count);
        Assert.Equal(box.Edges.Count / 2, carried.Count(c => c == 0.5));
    }

    [Fact]
    public void SceneIsTriangulatedInPlace()
    {
        Scene scene = new();
        Mesh shared = new Box().ToMesh();
        scene.RootNode.CreateChildNode("a", shared).CreateChildNode("b", shared);
        PolygonModifier.Triangulate(scene);
        Assert.Equal(12, shared.PolygonCount);
        MeshMeasure.AssertCornerValues(shared, 0.999);
        Assert.Same(shared, scene.RootNode.ChildNodes[0].Entity);
    }

    [Fact]
    public void MissingControlPointsAreToldOf()
    {
        Mesh mesh = new();
        mesh.CreatePolygon(0, 1, 2);
        Assert.Throws<InvalidOperationException>(() => PolygonModifier.Triangulate(mesh));
        Assert.Throws<InvalidOperationException>(() => PolygonModifier.GenerateNormal(mesh));
    }

    [Fact]
    public void MergingPutsMeshesInTheirPlace()
    {
        Scene scene = new();
        Node a = scene.RootNode.CreateChildNode("a", new Box(2, 2, 2));
        a.Transform.Translation = new Vector3(10, 0, 0);
        Node b = a.CreateChildNode("b", new Box(2, 2, 2));
        b.Transform.Scale = new Vector3(-1, 3, 1);
        Node hidden = scene.RootNode.CreateChildNode("c", new Box());
        hidden.Excluded = true;
        Mesh merged = PolygonModifier.MergeMesh(scene);
        Assert.Equal(12, merged.PolygonCount);
        Assert.Equal(16, merged.ControlPoints.Count);
        Close.To(8 + 24, MeshMeasure.Volume(merged));
        MeshMeasure.AssertClosed(merged);
        MeshMeasure.AssertCornerValues(merged, 0.999);
        BoundingBox box = merged.GetBoundingBox();
        Close.To(new Vector3(9, -3, -1), box.Minimum);
        Close.To(new Vector3(11, 3, 1), box.Maximum);
        Assert.Equal(6, PolygonModifier.MergeMesh(b).PolygonCount);
        Assert.Equal(12, PolygonModifier.MergeMesh([b, a, b]).PolygonCount);
    }

    [Fact]
    public void MergingNumbersMaterials()
    {
        Scene scene = new();
        LambertMaterial red = new("red");
        LambertMaterial blue = new("blue");
        scene.RootNode.CreateChildNode("a", new Box(), red);
        scene.RootNode.CreateChildNode("b", new Box(), blue);
        scene.RootNode.CreateChildNode("c", new Box(), red);
        Mesh merged = PolygonModifier.MergeMesh(scene);
        VertexElement materials = merged.GetElement(VertexElementType.Material)!;
        Assert.Equal(Enumerable.Repeat(0, 6).Concat(Enumerable.Repeat(1, 6)).Concat(Enumerable.Repeat(0, 6)),
            materials.Indices);
    }

    [Fact]
    public void MergingFillsMissingNormals()
    {
        Scene scene = new();
        scene.RootNode.CreateChildNode("a", new Box());
        Mesh bare = new();
        foreach (Vector4 point in Arrow)
            bare.ControlPoints.Add(point);
        bare.CreatePolygon(0, 1, 2, 3);
        scene.RootNode.CreateChildNode("b", bare);
        Mesh merged = PolygonModifier.MergeMesh(scene);
        VertexElementNormal normals = (VertexElementNormal)merged.GetElement(VertexElementType.Normal)!;
        Assert.Equal(28, normals.Indices.Count);
        Assert.All(normals.Indices.Skip(24), i => Assert.Equal(default, normals.Data[i]));
    }

    [Theory]
    [InlineData(SplitMeshPolicy.CloneData, 8)]
    [InlineData(SplitMeshPolicy.CompactData, 4)]
    public void SplittingByMaterial(SplitMeshPolicy policy, int points)
    {
        Mesh box = new Box().ToMesh();
        VertexElement materials = box.CreateElement(VertexElementType.Material);
        materials.SetIndices([0, 1, 1, 1, 1, 2]);
        VertexElementVertexColor colors = (VertexElementVertexColor)box.CreateElement(VertexElementType.VertexColor);
        colors.SetData(box.ControlPoints.ToArray());
        Mesh[] parts = PolygonModifier.SplitMesh(box, policy);
        foreach (Mesh part in parts)
        {
            VertexElement carried = part.GetElement(VertexElementType.VertexColor)!;
            Assert.Equal(part.ControlPoints, ((VertexElementVertexColor)carried).Data);
        }
        Assert.Equal([1, 4, 1], parts.Select(p => p.PolygonCount));
        Assert.Equal(points, parts[0].ControlPoints.Count);
        Assert.Equal(policy == SplitMeshPolicy.CompactData ? 1 : 6,
            ((VertexElementNormal)parts[0].GetElement(VertexElementType.Normal)!).Data.Count);
        Close.To(24, parts.Sum(MeshMeasure.Area));
        foreach (Mesh part in parts)
            MeshMeasure.AssertCornerValues(part, 0.999);

        Scene scene = new();
        LambertMaterial[] paints = [new("0"), new("1"), new("2")];
        Node node = scene.RootNode.CreateChildNode("box", box);
        foreach (LambertMaterial paint in paints)
            node.Materials.Add(paint);
        PolygonModifier.SplitMesh(scene, policy, true);
        Assert.Empty(node.Entities);
        Assert.Equal(paints, node.ChildNodes.Select(n => n.Material));

        Node flat = scene.RootNode.CreateChildNode("flat", box);
        PolygonModifier.SplitMesh(flat, policy, false, false);
        Assert.Equal(4, flat.Entities.Count);
        Assert.Equal([2], ((Mesh)flat.Entities[3]).GetElement(VertexElementType.Material)!.Indices);
    }

    [Fact]
    public void DeepTreesAreWalked()
    {
        Scene scene = new();
        Node node = scene.RootNode;
        for (int i = 0; i < 2_000; i++)
            node = node.CreateChildNode();
        node.AddEntity(new Box());
        Assert.Equal(6, PolygonModifier.MergeMesh(scene).PolygonCount);
        PolygonModifier.Scale(scene, new Vector3(2, 2, 2));
        PolygonModifier.Triangulate(scene);
        Assert.Equal(12, PolygonModifier.MergeMesh(scene).PolygonCount);
    }

    [Fact]
    public void ScalingKeepsTransformScales()
    {
        Scene scene = new();
        Node a = scene.RootNode.CreateChildNode("a", new Sphere(1, 16, 8));
        a.Transform.Translation = new Vector3(1, 2, 3);
        Mesh mesh = new Box(2, 2, 2).ToMesh();
        Node b = a.CreateChildNode("b", mesh);
        b.Transform.Translation = new Vector3(0, 1, 0);
        BoundingBox before = PolygonModifier.MergeMesh(scene).GetBoundingBox();
        Assert.Same(scene, PolygonModifier.Scale(scene, new Vector3(2, 3, 4)));
        BoundingBox after = PolygonModifier.MergeMesh(scene).GetBoundingBox();
        Close.To(before.Minimum * new Vector3(2, 3, 4), after.Minimum);
        Close.To(before.Maximum * new Vector3(2, 3, 4), after.Maximum);
        Assert.Equal(Vector3.UnitScale, a.Transform.Scale);
        Close.To(8 * 24, MeshMeasure.Volume(mesh));
        Mesh ball = Assert.IsType<Mesh>(a.Entity);
        MeshMeasure.AssertCornerValues(ball, 0.7);

        PolygonModifier.Scale(a, new Vector3(0.5, 0.5, 0.5));
        Close.To(new Vector3(2, 6, 12), a.Transform.Translation);
        Close.To(new Vector3(0, 1.5, 0), b.Transform.Translation);
        Assert.Throws<ArgumentException>(() => PolygonModifier.Scale(scene, new Vector3(1, 0, 1)));
    }

    [Fact]
    public void NormalsAreSmoothWithoutGroups()
    {
        Mesh box = new Box(2, 2, 2).ToMesh();
        VertexElementNormal normals = PolygonModifier.GenerateNormal(box);
        Assert.Equal(MappingMode.ControlPoint, normals.MappingMode);
        for (int i = 0; i < 8; i++)
            Close.To(new Vector3(box.ControlPoints[i]).Normalize(), new Vector3(normals.Data[i]));
        // Weighted by angles, normals do not depend on how the sides are cut.
        Mesh cut = PolygonModifier.Triangulate(box);
        for (int i = 0; i < 8; i++)
            Close.To(new Vector3(normals.Data[i]), new Vector3(PolygonModifier.GenerateNormal(cut).Data[i]));
        Assert.Same(box.GetElement(VertexElementType.Normal), box.VertexElements[0]);
    }

    [Fact]
    public void SmoothingGroupsKeepEdgesSharp()
    {
        Mesh box = new Box(2, 2, 2).ToMesh();
        VertexElementSmoothingGroup groups =
            (VertexElementSmoothingGroup)box.CreateElement(VertexElementType.SmoothingGroup);
        groups.SetData([1, 2, 4, 8, 16, 0]);
        VertexElementNormal flat = PolygonModifier.GenerateNormal(box);
        Assert.Equal(MappingMode.PolygonVertex, flat.MappingMode);
        for (int i = 0; i < 24; i++)
            Close.To(MeshMeasure.AreaVector(box, box.Polygons[i / 4]).Normalize(), new Vector3(flat.Data[i]));
    }

    [Fact]
    public void GeneratedTextureCoordinatesFillTheSides()
    {
        Mesh box = new Box(2, 4, 8).ToMesh();
        VertexElementUV uv = PolygonModifier.GenerateUV(box);
        Assert.Equal(24, uv.Data.Count);
        for (int i = 0; i < 24; i += 4)
        {
            // Each side is laid out over the whole square, as seen from outside: its corners run
            // counter-clockwise.
            double area = 0;
            for (int k = 0; k < 4; k++)
            {
                Vector4 a = uv.Data[i + k];
                Vector4 b = uv.Data[i + (k + 1) % 4];
                area += (a.x * b.y - a.y * b.x) / 2;
            }
            Close.To(1, area);
        }
        Assert.Single(box.VertexElements, e => e.VertexElementType == VertexElementType.UV);
    }

    [Fact]
    public void TangentsFollowTheTexture()
    {
        Mesh plane = new Plane("p", 3, 2, 2, 2).ToMesh();
        PolygonModifier.BuildTangentBinormal(plane);
        PolygonModifier.BuildTangentBinormal(plane);
        VertexElementTangent tangents = (VertexElementTangent)plane.GetElement(VertexElementType.Tangent)!;
        VertexElementBinormal binormals =
            (VertexElementBinormal)plane.GetElement(VertexElementType.Binormal)!;
        Assert.Equal(4, plane.VertexElements.Count);
        Assert.All(tangents.Data, t => Close.To(0, (t - new Vector4(1, 0, 0, 1)).z));
        Assert.All(tangents.Data, t => Assert.Equal(new Vector4(1, 0, 0, 1), t));
        Assert.All(binormals.Data, b => Close.To(new Vector3(0, 0, -1), new Vector3(b)));
        Assert.Equal(16, tangents.Indices.Count);

        // A mirrored texture turns the tangent round, and the handedness with it.
        VertexElementUV uv = (VertexElementUV)plane.GetElement(VertexElementType.UV)!;
        for (int i = 0; i < uv.Data.Count; i++)
            uv.Data[i] = new Vector4(1 - uv.Data[i].x, uv.Data[i].y, 0, 1);
        PolygonModifier.BuildTangentBinormal(plane);
        tangents = (VertexElementTangent)plane.GetElement(VertexElementType.Tangent)!;
        Assert.All(tangents.Data, t => Assert.Equal(new Vector4(-1, 0, 0, -1), t));

        Mesh bare = new();
        Assert.Throws<InvalidOperationException>(() => PolygonModifier.BuildTangentBinormal(bare));
        Scene scene = new(bare);
        PolygonModifier.BuildTangentBinormal(scene);
        Assert.Empty(bare.VertexElements);
    }
}
