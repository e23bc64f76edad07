using System;
using System.Collections.Generic;
using System.Linq;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Entities;

public class MeshTests
{
    private static Mesh Quads()
    {
        Mesh mesh = new("m");
        for (int i = 0; i < 6; i++)
            mesh.ControlPoints.Add(new Vector4(i % 3, i / 3, 0, 1));
        mesh.CreatePolygon(0, 1, 4, 3);
        mesh.CreatePolygon([1, 2, 5, 4]);
        return mesh;
    }

    [Fact]
    public void OverloadsAddPolygons()
    {
        Mesh mesh = new();
        mesh.CreatePolygon([9, 0, 1, 2, 3, 9], 1, 4);
        mesh.CreatePolygon([4, 5, 6]);
        mesh.CreatePolygon(1, 2, 3, 4);
        mesh.CreatePolygon(7, 8, 9);
        Assert.Equal(4, mesh.PolygonCount);
        Assert.Equal([[0, 1, 2, 3], [4, 5, 6], [1, 2, 3, 4], [7, 8, 9]], mesh.Polygons);
        Assert.Equal([4, 3, 4, 3], Enumerable.Range(0, 4).Select(mesh.GetPolygonSize));
        Assert.Equal(mesh.Polygons, mesh.ToArray());
    }

    [Fact]
    public void BadPolygonsAreRefused()
    {
        Mesh mesh = new();
        Assert.Throws<ArgumentException>(() => mesh.CreatePolygon([0, 1]));
        Assert.Throws<ArgumentException>(() => mesh.CreatePolygon(0, -1, 2));
        Assert.Throws<ArgumentNullException>(() => mesh.CreatePolygon(null!));
        Assert.Throws<ArgumentException>(() => mesh.CreatePolygon([0, 1, 2], 1, 3));
        Assert.Throws<ArgumentOutOfRangeException>(() => mesh.GetPolygonSize(0));
        Assert.Equal(0, mesh.PolygonCount);
    }

    [Fact]
    public void PolygonsAreAListOfCopies()
    {
        Mesh mesh = Quads();
        IList<int[]> polygons = mesh.Polygons;
        polygons[0][0] = 5;
        Assert.Equal([0, 1, 4, 3], polygons[0]);

        polygons[0] = [0, 1, 4];
        polygons.Insert(1, [0, 4, 3]);
        polygons.Add([3, 4, 5]);
        Assert.Equal([[0, 1, 4], [0, 4, 3], [1, 2, 5, 4], [3, 4, 5]], polygons);
        Assert.Equal(2, polygons.IndexOf([1, 2, 5, 4]));
        Assert.Equal(-1, polygons.IndexOf([2, 5, 4, 1]));
        Assert.True(polygons.Contains([0, 4, 3]));

        Assert.True(polygons.Remove([0, 4, 3]));
        Assert.False(polygons.Remove([0, 4, 3]));
        polygons.RemoveAt(0);
        Assert.Equal([[1, 2, 5, 4], [3, 4, 5]], polygons);
        int[][] copy = new int[3][];
        polygons.CopyTo(copy, 1);
        Assert.Equal([3, 4, 5], copy[2]);
        polygons.Clear();
        Assert.Empty(polygons);
        Assert.Throws<ArgumentOutOfRangeException>(() => polygons[0]);
        Assert.Throws<ArgumentOutOfRangeException>(() => polygons.RemoveAt(0));
        Assert.Throws<ArgumentOutOfRangeException>(() => polygons.Insert(1, [0, 1, 2]));
    }

    [Fact]
    public void RandomEditsAgreeWithAList()
    {
        Random random = new(7);
        Mesh mesh = new();
        List<int[]> expected = new();
        for (int step = 0; step < 2000; step++)
        {
            int[] polygon = Enumerable.Range(0, random.Next(3, 7)).Select(_ => random.Next(50)).ToArray();
            int at = random.Next(expected.Count + 1);
            switch (random.Next(4))
            {
                case 0:
                    mesh.Polygons.Insert(at, polygon);
                    expected.Insert(at, polygon);
                    break;
                case 1 when at < expected.Count:
                    mesh.Polygons.RemoveAt(at);
                    expected.RemoveAt(at);
                    break;
                case 2 when at < expected.Count:
                    mesh.Polygons[at] = polygon;
                    expected[at] = polygon;
                    break;
                default:
                    mesh.CreatePolygon(polygon);
                    expected.Add(polygon);
                    break;
            }
        }
        Assert.Equal(expected, mesh.Polygons);
    }

    [Fact]
    public void ChangingWhileEnumeratingIsFound()
    {
        Mesh mesh = Quads();
        Assert.Throws<InvalidOperationException>(() =>
        {
            foreach (int[] polygon in mesh)
                mesh.CreatePolygon(polygon);
        });
    }

    [Fact]
    public void EdgesAreListedOnce()
    {
        Mesh mesh = Quads();
        Assert.Equal([0, 1, 1, 4, 4, 3, 3, 0, 1, 2, 2, 5, 5, 4], mesh.Edges);
        Assert.Throws<NotSupportedException>(() => mesh.Edges.Add(3));
        mesh.Polygons.RemoveAt(1);
        Assert.Equal(8, mesh.Edges.Count);
    }

    [Fact]
    public void AHundredThousandTrianglesAreSmall()
    {
        long before = GC.GetAllocatedBytesForCurrentThread();
        Mesh mesh = new();
        for (int i = 0; i < 100_000; i++)
            mesh.CreatePolygon(i, i + 1, i + 2);
        long bytes = GC.GetAllocatedBytesForCurrentThread() - before;
        Assert.Equal(100_000, mesh.PolygonCount);
        // 1.6 million bytes of numbers; growing by half each time allocates about three times that.
        Assert.InRange(bytes, 1_600_000, 6_500_000);
    }

    [Fact]
    public void ToMeshIsTheMeshItself()
    {
        Mesh mesh = Quads();
        Assert.Same(mesh, mesh.ToMesh());
    }

    [Fact]
    public void BoundingBoxHoldsTheControlPoints()
    {
        Assert.Equal(BoundingBoxExtent.Null, new Mesh().GetBoundingBox().Extent);
        BoundingBox box = Quads().GetBoundingBox();
        Assert.Equal(new Vector3(0, 0, 0), box.Minimum);
        Assert.Equal(new Vector3(2, 1, 0), box.Maximum);
    }

    [Fact]
    public void HeightMapGivesAPointForEachPixel()
    {
        byte[] pixels = [0, 255, 51, 102, 0, 0];
        TextureData image = new(3, 2, 3, 1, PixelFormat.L8, pixels);
        Mesh quads = new(image, false, Matrix4.Scale(10, 2, 10));
        Assert.Equal(6, quads.ControlPoints.Count);
        Assert.Equal(2, quads.PolygonCount);
        Close.To(new Vector3(-5, 0, -5), new Vector3(quads.ControlPoints[0]));
        Close.To(new Vector3(0, 2, -5), new Vector3(quads.ControlPoints[1]));
        Close.To(new Vector3(-5, 0.8, 5), new Vector3(quads.ControlPoints[3]));
        Mesh triangles = new(image);
        Assert.Equal(4, triangles.PolygonCount);
        foreach (int[] polygon in triangles.Polygons)
            Assert.True(MeshMeasure.AreaVector(triangles, polygon).y > 0);
        Assert.Throws<ArgumentException>(() => new Mesh(new TextureData(1, 5, PixelFormat.L8)));
    }

    [Fact]
    public void PolygonBuilderAddsPolygons()
    {
        Mesh mesh = new();
        PolygonBuilder builder = new(mesh);
        Assert.Throws<InvalidOperationException>(() => builder.AddVertex(0));
        builder.Begin();
        Assert.Throws<InvalidOperationException>(builder.Begin);
        for (int i = 0; i < 5; i++)
            builder.AddVertex(i);
        builder.End();
        Assert.Equal([[0, 1, 2, 3, 4]], mesh.Polygons);
        builder.Begin();
        builder.AddVertex(1);
        Assert.Throws<ArgumentException>(builder.End);
        Assert.Throws<InvalidOperationException>(builder.End);
    }

    [Fact]
    public void DeformersBelongToOneGeometry()
    {
        Mesh first = new();
        Mesh second = new();
        SkinDeformer skin = new("skin");
        Assert.Null(skin.Owner);
        first.Deformers.Add(skin);
        Assert.Same(first, skin.Owner);
        Assert.Throws<ArgumentException>(() => first.Deformers.Add(skin));
        second.Deformers.Add(skin);
        Assert.Same(second, skin.Owner);
        Assert.Empty(first.Deformers);
        second.Deformers.Clear();
        Assert.Null(skin.Owner);
    }

    [Fact]
    public void PointCloudsComeFromGeometries()
    {
        Mesh mesh = Quads();
        mesh.CreateElement(VertexElementType.VertexColor);
        mesh.CreateElement(VertexElementType.PolygonGroup);
        PointCloud cloud = PointCloud.FromGeometry(mesh);
        Assert.Equal(mesh.ControlPoints, cloud.ControlPoints);
        Assert.IsType<VertexElementVertexColor>(Assert.Single(cloud.VertexElements));

        PointCloud dense = PointCloud.FromGeometry(mesh, 500);
        Assert.InRange(dense.ControlPoints.Count, 999, 1001);
        Assert.All(dense.ControlPoints, p =>
            Assert.True(p.x >= 0 && p.x <= 2 && p.y >= 0 && p.y <= 1 && p.z == 0));
        Assert.InRange(dense.ControlPoints.Count(p => p.x < 1), 490, 510);
        Assert.InRange(dense.ControlPoints.Count(p => p.y < 0.5), 480, 520);
    }
}
