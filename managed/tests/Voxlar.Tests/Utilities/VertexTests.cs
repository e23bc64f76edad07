using System;
using System.Linq;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Utilities;

public class VertexTests
{
    [Fact]
    public void FieldsFollowEachOtherWithoutGaps()
    {
        VertexDeclaration declaration = new();
        VertexField position = declaration.AddField(VertexFieldDataType.FVector3, VertexFieldSemantic.Position, 0, "");
        VertexField color = declaration.AddField(
            VertexFieldDataType.ByteVector4, VertexFieldSemantic.VertexColor, 0, "color");
        VertexField weight = declaration.AddField(VertexFieldDataType.Double, VertexFieldSemantic.Weight, 0, null);
        Assert.Equal((0, 12), (position.Offset, position.Size));
        Assert.Equal((12, 4), (color.Offset, color.Size));
        Assert.Equal((16, 8), (weight.Offset, weight.Size));
        Assert.Equal(24, declaration.Size);
        Assert.Equal(3, declaration.Count);
        Assert.Equal("color", color.Alias);
        Assert.Equal("", weight.Alias);
        Assert.Same(color, declaration[1]);
        Assert.Equal(new[] { position, color, weight }, declaration.ToArray());
        declaration.Clear();
        Assert.Equal((0, 0), (declaration.Count, declaration.Size));
    }

    [Theory]
    [InlineData(VertexFieldDataType.Float, 4)]
    [InlineData(VertexFieldDataType.FVector4, 16)]
    [InlineData(VertexFieldDataType.Vector2, 16)]
    [InlineData(VertexFieldDataType.Vector4, 32)]
    [InlineData(VertexFieldDataType.Int8, 1)]
    [InlineData(VertexFieldDataType.Int16, 2)]
    [InlineData(VertexFieldDataType.Int32, 4)]
    [InlineData(VertexFieldDataType.Int64, 8)]
    public void EachTypeHasItsSizeAndHoldsValues(VertexFieldDataType type, int size)
    {
        VertexDeclaration declaration = new();
        VertexField field = declaration.AddField(type, VertexFieldSemantic.UserData, 3, "");
        Assert.Equal(size, field.Size);
        Vertex vertex = new(declaration, new byte[size]);
        vertex.Write(field, new Vector4(-5, 6, 7, 8));
        Assert.Equal(-5, vertex.ReadDouble(field));
        Assert.Equal(-5f, vertex.ReadFloat(field));
    }

    [Fact]
    public void MissingComponentsAreZeroAndW1()
    {
        VertexDeclaration declaration = new();
        VertexField field = declaration.AddField(VertexFieldDataType.Vector2, VertexFieldSemantic.UV, 0, "");
        Vertex vertex = new(declaration, new byte[16]);
        vertex.Write(field, new Vector4(0.25, 0.5, 9, 9));
        Assert.Equal(new Vector4(0.25, 0.5, 0, 1), vertex.ReadVector4(field));
        Assert.Equal(new Vector3(0.25, 0.5, 0), vertex.ReadVector3(field));
        Assert.Equal(new FVector2(0.25f, 0.5f), vertex.ReadFVector2(field));
        Assert.Equal(new FVector3(0.25f, 0.5f, 0), vertex.ReadFVector3(field));
        Assert.Equal(new FVector4(0.25f, 0.5f, 0, 1), vertex.ReadFVector4(field));
        Assert.Equal(new Vector2(0.25, 0.5), vertex.ReadVector2(field));
    }

    [Fact]
    public void ByteColoursRunFromZeroToOne()
    {
        VertexDeclaration declaration = new();
        VertexField field = declaration.AddField(
            VertexFieldDataType.ByteVector4, VertexFieldSemantic.VertexColor, 0, "");
        Vertex vertex = new(declaration, new byte[4]);
        vertex.Write(field, new Vector4(1, 0, 2, 0.2));
        Assert.Equal(new byte[] { 255, 0, 255, 51 }, vertex.Data.ToArray());
        Assert.Equal(new Vector4(1, 0, 1, 0.2), vertex.ReadVector4(field));
    }

    [Fact]
    public void VerticesCompareByTheirFields()
    {
        VertexDeclaration declaration = new();
        VertexField field = declaration.AddField(VertexFieldDataType.Vector3, VertexFieldSemantic.Position, 0, "");
        Vertex a = new(declaration, new byte[24]);
        Vertex b = new(declaration, new byte[24]);
        Assert.Equal(0, a.CompareTo(b));
        b.Write(field, new Vector4(0, 0, -1, 0));
        Assert.True(a.CompareTo(b) > 0);
        Assert.True(a.CompareTo(null) > 0);
    }

    [Fact]
    public void SealedDeclarationStaysAsItIs()
    {
        VertexDeclaration declaration = new();
        declaration.AddField(VertexFieldDataType.Float, VertexFieldSemantic.Weight, 0, "");
        Assert.False(declaration.Sealed);
        declaration.Seal();
        Assert.True(declaration.Sealed);
        Assert.Throws<InvalidOperationException>(declaration.Clear);
        Assert.Throws<InvalidOperationException>(
            () => declaration.AddField(VertexFieldDataType.Float, VertexFieldSemantic.Weight, 1, ""));
    }

    [Fact]
    public void BadFieldsAreRefused()
    {
        VertexDeclaration declaration = new();
        declaration.AddField(VertexFieldDataType.Float, VertexFieldSemantic.Weight, 0, "");
        Assert.Throws<ArgumentException>(
            () => declaration.AddField((VertexFieldDataType)1, VertexFieldSemantic.Weight, 1, ""));
        Assert.Throws<ArgumentException>(
            () => declaration.AddField(VertexFieldDataType.Float, (VertexFieldSemantic)99, 1, ""));
        Assert.Throws<ArgumentException>(
            () => declaration.AddField(VertexFieldDataType.Float, VertexFieldSemantic.Weight, 0, ""));
        Assert.Throws<ArgumentOutOfRangeException>(
            () => declaration.AddField(VertexFieldDataType.Float, VertexFieldSemantic.Weight, -1, ""));
        Assert.Throws<ArgumentOutOfRangeException>(() => declaration[1]);
        Assert.Throws<ArgumentOutOfRangeException>(() => declaration[-1]);
    }

    [Fact]
    public void DeclarationsCompareByTheirFields()
    {
        VertexDeclaration a = new();
        VertexDeclaration b = new();
        Assert.Equal(0, a.CompareTo(b));
        b.AddField(VertexFieldDataType.Float, VertexFieldSemantic.Weight, 0, "");
        Assert.True(a.CompareTo(b) < 0);
        VertexField first = a.AddField(VertexFieldDataType.Float, VertexFieldSemantic.Weight, 0, "");
        Assert.Equal(0, a.CompareTo(b));
        Assert.Equal(0, first.CompareTo(b[0]));
        Assert.Equal(1, first.CompareTo(null));
    }
}
