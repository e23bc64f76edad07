using System;
using System.Linq;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Entities;

public class VertexElementTests
{
    [Fact]
    public void EveryKindCanBeMade()
    {
        foreach (VertexElementType type in Enum.GetValues<VertexElementType>())
        {
            Mesh mesh = new();
            VertexElement element = mesh.CreateElement(type);
            Assert.Equal(type, element.VertexElementType);
            Assert.Same(element, mesh.GetElement(type));
            Assert.Same(element, Assert.Single(mesh.VertexElements));
            element.SetIndices([1, 2]);
            element.Clear();
            Assert.Empty(element.Indices);
        }
    }

    [Fact]
    public void ModesAreTaken()
    {
        Mesh mesh = new();
        VertexElement normal = mesh.CreateElement(
            VertexElementType.Normal, MappingMode.PolygonVertex, ReferenceMode.IndexToDirect);
        Assert.Equal(MappingMode.PolygonVertex, normal.MappingMode);
        Assert.Equal(ReferenceMode.IndexToDirect, normal.ReferenceMode);
        Assert.Throws<ArgumentOutOfRangeException>(() => normal.MappingMode = (MappingMode)9);
        Assert.Throws<ArgumentException>(() => normal.SetIndices([0, -1]));
        Assert.Throws<ArgumentOutOfRangeException>(() => mesh.CreateElement((VertexElementType)99));
    }

    [Fact]
    public void TextureCoordinatesAreFoundByTheirTexture()
    {
        Mesh mesh = new();
        VertexElementUV diffuse = mesh.CreateElementUV(TextureMapping.Diffuse);
        VertexElementUV bump =
            mesh.CreateElementUV(TextureMapping.Bump, MappingMode.AllSame, ReferenceMode.Direct);
        Assert.Same(bump, mesh.GetVertexElementOfUV(TextureMapping.Bump));
        Assert.Same(diffuse, mesh.GetElement(VertexElementType.UV));
        Assert.Null(mesh.GetVertexElementOfUV(TextureMapping.Glow));
        mesh.AddElement(bump);
        Assert.Equal(2, mesh.VertexElements.Count);
        Assert.Throws<ArgumentNullException>(() => mesh.AddElement(null!));

        diffuse.AddData([new Vector2(0.25, 0.5)]);
        diffuse.AddData([new Vector3(1, 2, 3)]);
        Assert.Equal([new Vector4(0.25, 0.5, 0, 1), new Vector4(1, 2, 3, 1)], diffuse.Data);
    }

    [Fact]
    public void CopyingTakesAll()
    {
        VertexElementNormal source = new()
        {
            Name = "n",
            MappingMode = MappingMode.Polygon,
            ReferenceMode = ReferenceMode.IndexToDirect,
        };
        source.SetData([new Vector4(0, 1, 0, 0)]);
        source.SetIndices([0, 0]);
        VertexElementTangent target = new();
        target.SetData([new Vector4(9, 9, 9, 9), default]);
        source.CopyTo(target);
        Assert.Equal(source.Data, target.Data);
        Assert.Equal([0, 0], target.Indices);
        Assert.Equal(("n", MappingMode.Polygon, ReferenceMode.IndexToDirect),
            (target.Name, target.MappingMode, target.ReferenceMode));
        source.CopyTo(source);
        Assert.Single(source.Data);
        source.Data.Clear();
        Assert.Single(target.Data);
    }

    [Fact]
    public void DataIsCopiedIn()
    {
        int[] groups = [1, 2, 3];
        VertexElementPolygonGroup element = new();
        element.SetData(groups);
        groups[0] = 9;
        Assert.Equal([1, 2, 3], element.Data);
        element.SetData([4]);
        Assert.Equal([4], element.Data);
        Assert.Throws<ArgumentNullException>(() => element.SetData(null!));
    }

    [Fact]
    public void ValuesAreFoundByModes()
    {
        VertexElementNormal element = new();
        element.SetData([default, default, default]);
        Assert.Equal(2, element.ValueIndex(2, 7, 8));
        Assert.Equal(-1, element.ValueIndex(3, 0, 0));
        element.MappingMode = MappingMode.PolygonVertex;
        Assert.Equal(1, element.ValueIndex(9, 1, 9));
        element.ReferenceMode = ReferenceMode.IndexToDirect;
        element.SetIndices([2, 5]);
        Assert.Equal(2, element.ValueIndex(9, 0, 9));
        Assert.Equal(-1, element.ValueIndex(9, 1, 9));
        Assert.Equal(-1, element.ValueIndex(9, 2, 9));
        element.MappingMode = MappingMode.AllSame;
        Assert.Equal(2, element.ValueIndex(9, 9, 9));
    }
}
