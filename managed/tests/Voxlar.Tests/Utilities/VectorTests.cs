using System;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Utilities;

public class VectorTests
{
    [Fact]
    public void ConstructorsFillAllCoordinates()
    {
        Assert.Equal(new Vector2(2, 2), new Vector2(2.0));
        Assert.Equal(new Vector3(2, 2, 2), new Vector3(2.0));
        Assert.Equal(new Vector3(1, 2, 3), new Vector3(new Vector4(1, 2, 3, 4)));
        Assert.Equal(new Vector3(0, 0, 0), default);
        Assert.Equal(new Vector4(1, 2, 3, 1), new Vector4(1, 2, 3));
        Assert.Equal(new Vector4(1, 2, 3, 1), new Vector4(new Vector3(1, 2, 3)));
        Assert.Equal(new FVector4(1, 2, 3, 0.5f), new FVector4(new Vector3(1, 2, 3), 0.5f));
    }

    [Fact]
    public void SingleAndDoubleConvert()
    {
        FVector3 single = new(1.5f, -2, 3);
        Vector3 wide = single;
        Assert.Equal(new Vector3(1.5, -2, 3), wide);
        Assert.Equal(single, (FVector3)wide);
        Assert.Equal(new Vector4(1.5, -2, 3, 1), (Vector4)wide);
        Assert.Equal(wide, (Vector3)new Vector4(1.5, -2, 3, 9));
        Assert.Equal(0.1f, new FVector2(new Vector2(0.1, 0.2)).x);
        FMatrix4 matrix = (FMatrix4)Matrix4.Translate(1, 2, 3);
        Assert.Equal(Matrix4.Translate(1, 2, 3), (Matrix4)matrix);
    }

    [Fact]
    public void ProductsFollowTheRightHandRule()
    {
        Assert.Equal(Vector3.ZAxis, Vector3.XAxis.Cross(Vector3.YAxis));
        Assert.Equal(1, new Vector2(1, 0).Cross(new Vector2(0, 1)));
        Assert.Equal(32, new Vector3(1, 2, 3).Dot(new Vector3(4, 5, 6)));
        Assert.Equal(new FVector3(0, 0, 1), new FVector3(1, 0, 0).Cross(new FVector3(0, 1, 0)));
    }

    [Fact]
    public void NormalizeGivesLengthOneAndLeavesZero()
    {
        Close.To(1, new Vector3(3, -4, 12).Normalize().Length);
        Assert.Equal(new Vector3(0.6, 0.8, 0), new Vector3(3, 4, 0).Normalize());
        Assert.Equal(Vector3.Origin, Vector3.Origin.Normalize());
        Assert.Equal(FVector3.Zero, FVector3.Zero.Normalize());
        Assert.Equal(169, new Vector3(3, -4, 12).Length2);
    }

    [Fact]
    public void AngleBetweenIsSignedWithAnUpDirection()
    {
        Close.To(Math.PI / 2, Vector3.XAxis.AngleBetween(Vector3.YAxis));
        Close.To(Math.PI / 2, Vector3.XAxis.AngleBetween(Vector3.YAxis, Vector3.ZAxis));
        Close.To(-Math.PI / 2, Vector3.XAxis.AngleBetween(Vector3.YAxis, -Vector3.ZAxis));
        Close.To(Math.PI, Vector3.XAxis.AngleBetween(-Vector3.XAxis));
    }

    [Fact]
    public void SetChangesInPlace()
    {
        Vector3 v = new(1, 2, 3);
        v.Set(4, 5, 6);
        Assert.Equal(new Vector3(4, 5, 6), v);
        Vector4 w = new(1, 2, 3, 4);
        w.Set(5, 6, 7);
        Assert.Equal(new Vector4(5, 6, 7, 1), w);
        w.Set(5, 6, 7, 8);
        Assert.Equal(new Vector4(5, 6, 7, 8), w);
        Vector2 t = default;
        t.U = 3;
        t.V = 4;
        Assert.Equal(new Vector2(3, 4), t);
        Assert.Equal(5, t.Length);
    }

    [Fact]
    public void CompareToIsLexicographic()
    {
        Assert.True(new Vector3(1, 9, 9).CompareTo(new Vector3(2, 0, 0)) < 0);
        Assert.True(new Vector3(1, 2, 4).CompareTo(new Vector3(1, 2, 3)) > 0);
        Assert.Equal(0, new Vector4(1, 2, 3, 4).CompareTo(new Vector4(1, 2, 3, 4)));
        Assert.True(new Vector4(1, 2, 3, 4).CompareTo(new Vector4(1, 2, 3, 5)) < 0);
        Assert.True(new Vector2(1, 2).CompareTo(new Vector2(1, 3)) < 0);
    }

    [Fact]
    public void EqualValuesHaveEqualHashCodes()
    {
        Assert.Equal(new Vector3(1, 2, 3).GetHashCode(), new Vector3(1, 2, 3).GetHashCode());
        Assert.Equal(new Vector3(0.0, 0, 0).GetHashCode(), new Vector3(-0.0, 0, 0).GetHashCode());
        Assert.True(new Vector3(0.0, 0, 0).Equals(new Vector3(-0.0, 0, 0)));
        Assert.False(new Vector3(1, 2, 3).Equals((object)new FVector3(1, 2, 3)));
        Assert.True(new FVector2(1, 2).Equals(new FVector2(1, 2)));
    }

    [Fact]
    public void TextDoesNotDependOnTheCulture()
    {
        Assert.Equal("(1.5, -2, 1E+20)", new Vector3(1.5, -2, 1e20).ToString());
        Assert.Equal("(0.1, 2)", new FVector2(0.1f, 2).ToString());
    }
}
