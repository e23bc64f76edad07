using System;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Utilities;

public class BoxTests
{
    [Fact]
    public void NewBoxIsEmpty()
    {
        BoundingBox box = new();
        Assert.Equal(BoundingBoxExtent.Null, box.Extent);
        Assert.Equal(BoundingBox.Null, box);
        Assert.Equal(Vector3.Origin, box.Size);
        Assert.Equal(Vector3.Origin, box.Center);
    }

    [Fact]
    public void CornersAreOrdered()
    {
        BoundingBox box = new(4, -1, 9, 0, 1, 3);
        Assert.Equal(BoundingBoxExtent.Finite, box.Extent);
        Assert.Equal(new Vector3(0, -1, 3), box.Minimum);
        Assert.Equal(new Vector3(4, 1, 9), box.Maximum);
        Assert.Equal(new Vector3(4, 2, 6), box.Size);
        Assert.Equal(new Vector3(2, 0, 6), box.Center);
    }

    [Fact]
    public void MergeKnowsTheEmptyAndTheInfiniteBox()
    {
        BoundingBox box = new(0, 0, 0, 1, 1, 1);
        Assert.Equal(box, BoundingBox.Null.Merge(box));
        Assert.Equal(box, box.Merge(BoundingBox.Null));
        Assert.Equal(BoundingBox.Infinite, box.Merge(BoundingBox.Infinite));
        Assert.Equal(BoundingBox.Infinite, BoundingBox.Infinite.Merge(box));
        Assert.Equal(new BoundingBox(0, 0, 0, 5, 1, 1), box.Merge(new Vector3(5, 0.5, 0.5)));
    }

    [Fact]
    public void TransformedBoxHoldsAllCorners()
    {
        BoundingBox box = new(-1, -1, -1, 1, 1, 1);
        BoundingBox turned = box.Transform(Matrix4.Rotate(Math.PI / 4, Vector3.ZAxis));
        Close.To(new Vector3(Math.Sqrt(2), Math.Sqrt(2), 1), turned.Maximum);
        Assert.Equal(BoundingBox.Infinite, BoundingBox.Infinite.Transform(Matrix4.Scale(2)));
    }

    [Fact]
    public void FlatBoxGrowsInPlace()
    {
        BoundingBox2D box = new();
        box.Merge(new Vector2(1, 2));
        Assert.Equal(new BoundingBox2D(new Vector2(1, 2), new Vector2(1, 2)), box);
        box.Merge(new BoundingBox2D(new Vector2(-1, 5), new Vector2(0, 0)));
        Assert.Equal(new Vector2(-1, 0), box.Minimum);
        Assert.Equal(new Vector2(1, 5), box.Maximum);
        box.Merge(BoundingBox2D.Infinite);
        Assert.Equal(BoundingBoxExtent.Infinite, box.Extent);
    }

    [Fact]
    public void RectHoldsItsPixelsWithoutTheFarEdges()
    {
        Rect rect = new(10, 20, 3, 4);
        Assert.Equal((10, 13, 20, 24), (rect.Left, rect.Right, rect.Top, rect.Bottom));
        Assert.True(rect.Contains(10, 20));
        Assert.True(rect.Contains(12, 23));
        Assert.False(rect.Contains(13, 20));
        Assert.False(rect.Contains(10, 24));
        Assert.False(rect.Contains(9, 20));
    }

    [Fact]
    public void RelativeRectangleAddsShareAndOffset()
    {
        RelativeRectangle half = RelativeRectangle.FromScale(0.5f, 0, 0.5f, 1);
        half.OffsetX = 3;
        Assert.Equal(new Rect(10 + 50 + 3, 20, 50, 80), half.ToAbsolute(10, 20, 100, 80));
        Assert.Equal(new Rect(11, 22, 3, 4), new RelativeRectangle(1, 2, 3, 4).ToAbsolute(10, 20, 100, 80));
    }

    [Fact]
    public void MathUtilsConvertAngles()
    {
        Close.To(180, MathUtils.ToDegree(Math.PI));
        Close.To(Math.PI / 2, MathUtils.ToRadian(90.0));
        Assert.Equal(180f, MathUtils.ToDegree((float)Math.PI));
        Close.To(new Vector3(90, 180, 45), MathUtils.ToDegree(MathUtils.ToRadian(90, 180, 45)));
        Assert.Equal(1, MathUtils.Clamp(7, 0, 1));
        Assert.Throws<ArgumentException>(() => MathUtils.Clamp(7, 1, 0));
    }
}
