using System;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Entities;

public class CameraTests
{
    private static void AssertConsistent(Camera camera)
    {
        double x = Math.Tan(camera.FieldOfViewX * Math.PI / 360);
        double y = Math.Tan(camera.FieldOfViewY * Math.PI / 360);
        Close.To(camera.Aspect, x / y);
        Close.To(camera.Aspect, camera.Width / camera.Height);
        Assert.Equal(camera.Aspect, camera.AspectRatio);
    }

    [Theory]
    [InlineData(ApertureMode.HorizAndVert)]
    [InlineData(ApertureMode.Horizontal)]
    [InlineData(ApertureMode.Vertical)]
    [InlineData(ApertureMode.FocalLength)]
    public void FieldsOfViewAndAspectFitEachOther(ApertureMode mode)
    {
        Camera camera = new() { ApertureMode = mode };
        Action[] changes =
        [
            () => camera.AspectRatio = 2, () => camera.FieldOfViewX = 80, () => camera.FieldOfViewY = 30,
            () => camera.Width = 3, () => camera.Height = 1.5, () => camera.FieldOfView = 60,
            () => camera.Aspect = 0.5,
        ];
        foreach (Action change in changes)
        {
            change();
            AssertConsistent(camera);
        }
    }

    [Fact]
    public void TheGivenFieldOfViewStays()
    {
        Camera vertical = new();
        Close.To(45, vertical.FieldOfView);
        vertical.AspectRatio = 2;
        Close.To(45, vertical.FieldOfViewY);

        Camera horizontal = new() { ApertureMode = ApertureMode.Horizontal, FieldOfView = 90 };
        horizontal.AspectRatio = 4;
        Close.To(90, horizontal.FieldOfViewX);
        Close.To(2 * Math.Atan(0.25) * 180 / Math.PI, horizontal.FieldOfViewY);

        Camera both = new() { ApertureMode = ApertureMode.HorizAndVert, FieldOfViewY = 40 };
        both.FieldOfViewX = 70;
        Close.To(40, both.FieldOfViewY);
        Close.To(70, both.FieldOfViewX);
    }

    [Fact]
    public void SizesAndAnglesAreChecked()
    {
        Camera camera = new();
        Assert.Throws<ArgumentOutOfRangeException>(() => camera.FieldOfView = 180);
        Assert.Throws<ArgumentOutOfRangeException>(() => camera.FieldOfViewX = 0);
        Assert.Throws<ArgumentOutOfRangeException>(() => camera.Aspect = 0);
        Assert.Throws<ArgumentOutOfRangeException>(() => camera.Width = double.NaN);
        Assert.Throws<ArgumentException>(() => camera.Direction = Vector3.Origin);
        AssertConsistent(camera);
    }

    [Fact]
    public void DirectionFollowsTheTarget()
    {
        Scene scene = new();
        Camera camera = new("eye");
        Node node = scene.RootNode.CreateChildNode("eye", camera);
        node.Transform.Translation = new Vector3(0, 0, 10);
        Close.To(-Vector3.ZAxis, camera.Direction);
        Assert.Equal(RotationMode.FixedDirection, camera.RotationMode);

        camera.LookAt = new Vector3(10, 0, 10);
        Assert.Equal(RotationMode.FixedTarget, camera.RotationMode);
        Close.To(Vector3.XAxis, camera.Direction);

        Node target = scene.RootNode.CreateChildNode("target");
        target.Transform.Translation = new Vector3(0, 5, 10);
        camera.Target = target;
        Close.To(Vector3.YAxis, camera.Direction);
        Close.To(new Vector3(0, 5, 10), camera.LookAt);
        camera.Target = null;
        target.Transform.Translation = new Vector3(7, 7, 7);
        Close.To(new Vector3(0, 5, 10), camera.LookAt);

        camera.Direction = new Vector3(0, 0, 2);
        Close.To(new Vector3(0, 0, 11), camera.LookAt);
        Assert.Equal(RotationMode.FixedDirection, camera.RotationMode);
    }

    [Fact]
    public void MovingForward()
    {
        Assert.Throws<InvalidOperationException>(() => new Camera().MoveForward(1));
        Scene scene = new();
        Node parent = scene.RootNode.CreateChildNode("rig");
        parent.Transform.Translation = new Vector3(1, 2, 3);
        parent.Transform.Scale = new Vector3(2, 2, 2);
        Camera camera = new(ProjectionType.Orthographic) { Direction = new Vector3(0, 3, 0) };
        Node node = parent.CreateChildNode("eye", camera);
        camera.MoveForward(4);
        Close.To(new Vector3(1, 6, 3), node.GlobalTransform.Translation);
        Close.To(new Vector3(0, 2, 0), node.Transform.Translation);
    }

    [Fact]
    public void LightsHaveTheirKind()
    {
        Assert.Equal(LightType.Point, new Light().LightType);
        Light spot = new("spot", LightType.Spot);
        Assert.Equal("spot", spot.Name);
        Assert.Equal(new Vector3(1, 1, 1), spot.Color);
        Assert.True(spot.CastLight);
    }
}
