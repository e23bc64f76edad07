using System;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Utilities;

public class TransformBuilderTests
{
    [Fact]
    public void OrderTellsTheSideOfEachStep()
    {
        TransformBuilder after = new(ComposeOrder.Append);
        after.Scale(2).Translate(1, 0, 0);
        Assert.Equal(new Vector3(3, 2, 2), new Vector3(1, 1, 1) * after.Matrix);
        TransformBuilder before = new(ComposeOrder.Prepend);
        before.Scale(2).Translate(1, 0, 0);
        Assert.Equal(new Vector3(4, 2, 2), new Vector3(1, 1, 1) * before.Matrix);
    }

    [Fact]
    public void AppendAndPrependDoNotLookAtTheOrder()
    {
        TransformBuilder builder = new(Matrix4.Scale(2), ComposeOrder.Prepend);
        builder.Append(Matrix4.Translate(1, 0, 0)).Prepend(Matrix4.Translate(0, 5, 0));
        Assert.Equal(new Vector3(1, 10, 0), Vector3.Origin * builder.Matrix);
        builder.Reset();
        Assert.Equal(Matrix4.Identity, builder.Matrix);
    }

    [Theory]
    [InlineData(RotationOrder.XYZ, "xyz")]
    [InlineData(RotationOrder.XZY, "xzy")]
    [InlineData(RotationOrder.YZX, "yzx")]
    [InlineData(RotationOrder.YXZ, "yxz")]
    [InlineData(RotationOrder.ZXY, "zxy")]
    [InlineData(RotationOrder.ZYX, "zyx")]
    public void RotationsFollowTheirOrder(RotationOrder order, string letters)
    {
        TransformBuilder expected = new(ComposeOrder.Append);
        foreach (char letter in letters)
        {
            _ = letter switch
            {
                'x' => expected.RotateDegree(10, Vector3.XAxis),
                'y' => expected.RotateDegree(20, Vector3.YAxis),
                _ => expected.RotateDegree(30, Vector3.ZAxis),
            };
        }
        TransformBuilder builder = new(ComposeOrder.Append);
        builder.RotateDegree(new Vector3(10, 20, 30), order);
        Close.To(expected.Matrix, builder.Matrix);
        if (order == RotationOrder.XYZ)
        {
            builder.Reset();
            Close.To(expected.Matrix, builder.RotateEulerDegree(10, 20, 30).Matrix);
        }
    }

    [Fact]
    public void RearrangeTakesCoordinatesFromTheNamedAxes()
    {
        TransformBuilder builder = new(ComposeOrder.Append);
        builder.Rearrange(Axis.YAxis, Axis.ZAxis, Axis.XAxis);
        Assert.Equal(new Vector3(2, 3, 1), new Vector3(1, 2, 3) * builder.Matrix);
        Assert.Throws<ArgumentOutOfRangeException>(() => builder.Rearrange((Axis)7, Axis.XAxis, Axis.XAxis));
    }
}
