using System;
using System.Buffers.Binary;
using System.IO;
using System.Linq;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Entities;

public class TriMeshTests
{
    private static VertexDeclaration Positions(VertexFieldDataType type = VertexFieldDataType.FVector3)
    {
        VertexDeclaration declaration = new();
        declaration.AddField(type, VertexFieldSemantic.Position, 0, "");
        return declaration;
    }

    [Theory]
    [InlineData(true)]
    [InlineData(false)]
    public void MeshIsTakenOver(bool useFloat)
    {
        Mesh box = new Box(2, 4, 6).ToMesh();
        TriMesh mesh = TriMesh.FromMesh(box, useFloat);
        Assert.Equal(24, mesh.VerticesCount);
        Assert.Equal(36, mesh.IndicesCount);
        Assert.Equal(36, mesh.UnmergedVerticesCount);
        Assert.Equal((useFloat ? 4 : 8) * 8, mesh.VertexDeclaration.Size);
        Assert.Equal(24 * mesh.VertexDeclaration.Size, mesh.VerticesSizeInBytes);
        Assert.True(mesh.Capacity >= 24);
        Assert.True(mesh.VertexDeclaration.Sealed);
        Assert.Equal(box.GetBoundingBox(), mesh.GetBoundingBox());

        // The triangles enclose the volume of the box, and every vertex has the normal of its side.
        VertexField position = mesh.VertexDeclaration[0];
        VertexField normal = mesh.VertexDeclaration[1];
        Assert.Equal(VertexFieldSemantic.Normal, normal.Semantic);
        mesh.IndicesToArray(out int[] indices);
        double volume = 0;
        for (int i = 0; i < indices.Length; i += 3)
        {
            Vector3 a = mesh.ReadVector3(indices[i], position);
            Vector3 b = mesh.ReadVector3(indices[i + 1], position);
            Vector3 c = mesh.ReadVector3(indices[i + 2], position);
            volume += a.Dot(b.Cross(c)) / 6;
            Close.To(mesh.ReadVector3(indices[i], normal), (b - a).Cross(c - a).Normalize());
        }
        Close.To(48, volume);
    }

    [Fact]
    public void FieldsWithoutAnElementAreZero()
    {
        VertexDeclaration declaration = Positions();
        VertexField color = declaration.AddField(VertexFieldDataType.FVector4,
            VertexFieldSemantic.VertexColor, 0, "c");
        VertexField second = declaration.AddField(VertexFieldDataType.FVector2, VertexFieldSemantic.UV, 1,
            "");
        TriMesh mesh = TriMesh.FromMesh(declaration, new Box().ToMesh());
        Assert.Equal(8, mesh.VerticesCount);
        Assert.Equal(default, mesh.ReadVector4(3, color));
        Assert.Equal(default, mesh.ReadFVector2(3, second));
        Assert.Equal(mesh.VerticesCount, mesh.Count());
    }

    [Fact]
    public void RawDataRoundTrip()
    {
        TriMesh mesh = TriMesh.FromMesh(new Sphere(1, 12, 6).ToMesh(), true);
        mesh.IndicesToArray(out int[] indices);
        byte[] bytes = mesh.VerticesToArray();
        TriMesh copy = TriMesh.FromRawData(mesh.VertexDeclaration, bytes, indices, true);
        Assert.Equal(mesh.VerticesCount, copy.VerticesCount);
        Assert.Equal(bytes, copy.VerticesToArray());
        Assert.All(mesh.Zip(copy), pair => Assert.Equal(0, pair.First.CompareTo(pair.Second)));

        using MemoryStream vertices = new();
        using MemoryStream narrow = new();
        using MemoryStream wide = new();
        copy.WriteVerticesTo(vertices);
        copy.Write16bIndicesTo(narrow);
        copy.Write32bIndicesTo(wide);
        Assert.Equal(bytes, vertices.ToArray());
        copy.IndicesToArray(out ushort[] shorts);
        Assert.Equal(indices, shorts.Select(i => (int)i));
        for (int i = 0; i < indices.Length; i++)
        {
            Assert.Equal(indices[i], BinaryPrimitives.ReadUInt16LittleEndian(narrow.ToArray().AsSpan(2 * i)));
            Assert.Equal(indices[i], BinaryPrimitives.ReadInt32LittleEndian(wide.ToArray().AsSpan(4 * i)));
        }
    }

    [Fact]
    public void BadRawDataIsRefused()
    {
        VertexDeclaration declaration = Positions();
        Assert.Throws<ArgumentException>(() => TriMesh.FromRawData(declaration, new byte[13], [], false));
        Assert.Throws<ArgumentException>(() =>
            TriMesh.FromRawData(declaration, new byte[24], [0, 1, 2], false));
        Assert.Throws<ArgumentException>(() =>
            TriMesh.FromRawData(declaration, new byte[36], [0, 1, -1], false));
        Assert.Throws<ArgumentException>(() => TriMesh.FromRawData(declaration, new byte[36], [0, 1], false));
        Assert.Throws<ArgumentException>(() => new TriMesh("t", new VertexDeclaration()));
        TriMesh mesh = TriMesh.FromRawData(declaration, new byte[36], [0, 1, 2], false);
        Assert.Throws<ArgumentException>(() => mesh.LoadVerticesFromBytes(new byte[24]));
        mesh.LoadVerticesFromBytes(new byte[48]);
        Assert.Equal(4, mesh.VerticesCount);
        Assert.Throws<ArgumentOutOfRangeException>(() => mesh.ReadFloat(4, declaration[0]));
        Assert.Throws<InvalidOperationException>(() => declaration.Clear());
    }

    [Fact]
    public void EqualVerticesAreMerged()
    {
        VertexDeclaration declaration = Positions(VertexFieldDataType.Vector3);
        TriMesh mesh = new("t", declaration);
        Assert.Throws<InvalidOperationException>(mesh.EndVertex);
        double[] places = [0, 1, 2, 2, 1, 3];
        foreach (double x in places)
        {
            mesh.BeginVertex().Write(declaration[0], new Vector4(x, 0, 0, 1));
            mesh.EndVertex();
        }
        Assert.Equal(4, mesh.VerticesCount);
        Assert.Equal(6, mesh.UnmergedVerticesCount);
        mesh.IndicesToArray(out int[] indices);
        Assert.Equal([0, 1, 2, 2, 1, 3], indices);
        mesh.BeginVertex();
        Assert.Throws<InvalidOperationException>(() => mesh.BeginVertex());

        TriMesh mapped = TriMesh.FromRawData(declaration, mesh.VerticesToArray(), [0, 1, 2], true);
        mapped.BeginVertex().Write(declaration[0], new Vector4(3, 0, 0, 1));
        mapped.EndVertex();
        Assert.Equal(4, mapped.VerticesCount);
        mapped.BeginVertex().Write(declaration[0], new Vector4(4, 0, 0, 1));
        mapped.EndVertex();
        Assert.Equal(5, mapped.VerticesCount);
        Assert.Equal(4, mapped.ReadDouble(4, declaration[0]));
    }

    [Fact]
    public void CopyTakesCommonFields()
    {
        TriMesh mesh = TriMesh.FromMesh(new Box().ToMesh(), false);
        VertexDeclaration declaration = new();
        VertexField color = declaration.AddField(VertexFieldDataType.ByteVector4,
            VertexFieldSemantic.VertexColor, 0, "");
        VertexField normal = declaration.AddField(VertexFieldDataType.FVector3, VertexFieldSemantic.Normal, 0,
            "");
        TriMesh copy = TriMesh.CopyFrom(mesh, declaration);
        Assert.Equal(mesh.VerticesCount, copy.VerticesCount);
        Assert.Equal(mesh.IndicesCount, copy.IndicesCount);
        for (int i = 0; i < copy.VerticesCount; i++)
        {
            Close.To(mesh.ReadVector3(i, mesh.VertexDeclaration[1]), copy.ReadVector3(i, normal));
            Assert.Equal(default, copy.ReadVector4(i, color));
        }
        Assert.Equal(BoundingBoxExtent.Null, copy.GetBoundingBox().Extent);
    }

    [Fact]
    public void TooManyVerticesForSixteenBits()
    {
        VertexDeclaration declaration = Positions();
        TriMesh fits = TriMesh.FromRawData(declaration, new byte[12 * 65536], [0, 1, 65535], false);
        fits.IndicesToArray(out ushort[] indices);
        Assert.Equal(65535, indices[2]);
        TriMesh large = TriMesh.FromRawData(declaration, new byte[12 * 65537], [0, 1, 65536], false);
        Assert.Throws<InvalidOperationException>(() => large.IndicesToArray(out indices));
        Assert.Throws<InvalidOperationException>(() => large.Write16bIndicesTo(Stream.Null));
    }
}
