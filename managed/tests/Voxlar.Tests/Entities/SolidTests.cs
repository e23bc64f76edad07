using System;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Profiles;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Entities;

public class SolidTests
{
    private static ArbitraryProfile Rectangle(double x0, double y0, double x1, double y1) => new(
        Line.FromPoints([new(x0, y0, 0), new(x1, y0, 0), new(x1, y1, 0), new(x0, y1, 0)]));

    [Fact]
    public void ExtrusionOfARectangle()
    {
        LinearExtrusion solid = new(new RectangleShape { XDim = 2, YDim = 3 }, 4);
        Mesh mesh = solid.ToMesh();
        MeshMeasure.AssertClosed(mesh);
        MeshMeasure.AssertCornerValues(mesh, 0.999);
        Assert.Equal(2, MeshMeasure.Euler(mesh));
        Close.To(24, MeshMeasure.Volume(mesh));
        Close.To(new Vector3(-1, -1.5, 0), solid.GetBoundingBox().Minimum);
        solid.Center = true;
        Close.To(new Vector3(-1, -1.5, -2), solid.GetBoundingBox().Minimum);
        solid.Direction = new Vector3(0, 0, -5);
        mesh = solid.ToMesh();
        MeshMeasure.AssertClosed(mesh);
        MeshMeasure.AssertCornerValues(mesh, 0.999);
        Close.To(24, MeshMeasure.Volume(mesh));
    }

    [Fact]
    public void SlantedAndTwistedExtrusionsKeepTheirVolume()
    {
        LinearExtrusion solid = new(new HShape(), 5) { Direction = new Vector3(1, 0, 1), Slices = 3 };
        Mesh mesh = solid.ToMesh();
        MeshMeasure.AssertClosed(mesh);
        MeshMeasure.AssertCornerValues(mesh, 0.999);
        Close.To(20 * 5 / Math.Sqrt(2), MeshMeasure.Volume(mesh), 1e-6);

        LinearExtrusion twisted = new(new RectangleShape(), 2)
        {
            Twist = Math.PI / 2,
            Slices = 256,
            TwistOffset = new Vector3(1, 0, 0),
        };
        mesh = twisted.ToMesh();
        MeshMeasure.AssertClosed(mesh);
        MeshMeasure.AssertCornerValues(mesh, 0.9);
        Close.To(8, MeshMeasure.Volume(mesh), 0.02);
        // At the top the square has turned a quarter about (1, 0).
        Close.To(2, mesh.GetBoundingBox().Maximum.z);
    }

    [Fact]
    public void HollowProfilesGiveTunnels()
    {
        Mesh tube = new LinearExtrusion(new HollowRectangleShape(), 3).ToMesh();
        MeshMeasure.AssertClosed(tube);
        MeshMeasure.AssertCornerValues(tube, 0.999);
        Assert.Equal(0, MeshMeasure.Euler(tube));
        Close.To((4 - 1.6 * 1.6) * 3, MeshMeasure.Volume(tube));

        Mesh pipe = new LinearExtrusion(new HollowCircleShape(), 1).ToMesh();
        MeshMeasure.AssertClosed(pipe);
        MeshMeasure.AssertCornerValues(pipe, 0.9);
        Close.To(Math.PI * (25 - 4), MeshMeasure.Volume(pipe), 0.5);
    }

    [Fact]
    public void RevolvedRectangleIsARing()
    {
        RevolvedAreaSolid solid = new() { Shape = Rectangle(2, -1, 3, 1) };
        Mesh mesh = solid.ToMesh();
        MeshMeasure.AssertClosed(mesh);
        Assert.Equal(0, MeshMeasure.Euler(mesh));
        MeshMeasure.AssertCornerValues(mesh, 0.95);
        Close.To(Math.PI * (9 - 4) * 2, MeshMeasure.Volume(mesh), 0.3);

        solid.AngleEnd = -Math.PI / 2;
        mesh = solid.ToMesh();
        MeshMeasure.AssertClosed(mesh);
        Assert.Equal(2, MeshMeasure.Euler(mesh));
        MeshMeasure.AssertCornerValues(mesh, 0.95);
        Close.To(Math.PI * (9 - 4) * 2 / 4, MeshMeasure.Volume(mesh), 0.1);
    }

    [Fact]
    public void RevolvedProfileMayTouchTheAxis()
    {
        RevolvedAreaSolid solid = new() { Shape = Rectangle(0, 0, 2, 3) };
        Mesh mesh = solid.ToMesh();
        MeshMeasure.AssertClosed(mesh);
        Assert.Equal(2, MeshMeasure.Euler(mesh));
        MeshMeasure.AssertCornerValues(mesh, 0.95);
        Close.To(Math.PI * 4 * 3, MeshMeasure.Volume(mesh), 0.3);

        RevolvedAreaSolid moved = new()
        {
            Shape = Rectangle(0, 0, 2, 3),
            Axis = new Vector3(2, 0, 0),
            Origin = new Vector3(7, -1, 0),
        };
        mesh = moved.ToMesh();
        MeshMeasure.AssertClosed(mesh);
        Close.To(Math.PI * (16 - 1) * 2, MeshMeasure.Volume(mesh), 0.7);
    }

    [Fact]
    public void SweepAlongALineIsAnExtrusion()
    {
        SweptAreaSolid solid = new()
        {
            Shape = new RectangleShape(),
            Directrix = Line.FromPoints([new(1, 0, 0), new(1, 5, 0)]),
        };
        Mesh mesh = solid.ToMesh();
        MeshMeasure.AssertClosed(mesh);
        MeshMeasure.AssertCornerValues(mesh, 0.999);
        Close.To(20, MeshMeasure.Volume(mesh));
        Close.To(new Vector3(0, 0, -1), solid.GetBoundingBox().Minimum);
        Close.To(new Vector3(2, 5, 1), solid.GetBoundingBox().Maximum);
    }

    [Fact]
    public void CornersAreMitred()
    {
        SweptAreaSolid solid = new()
        {
            Shape = new RectangleShape(),
            Directrix = Line.FromPoints([new(0, 0, 0), new(0, 0, 10), new(10, 0, 10)]),
        };
        Mesh mesh = solid.ToMesh();
        MeshMeasure.AssertClosed(mesh);
        MeshMeasure.AssertCornerValues(mesh, 0.999);
        Close.To(80, MeshMeasure.Volume(mesh));
        Close.To(new Vector3(10, 1, 11), solid.GetBoundingBox().Maximum);
    }

    [Fact]
    public void SweepRoundACircleIsARing()
    {
        SweptAreaSolid solid = new() { Shape = new CircleShape(1), Directrix = new Circle(4) };
        Mesh mesh = solid.ToMesh();
        MeshMeasure.AssertClosed(mesh);
        Assert.Equal(0, MeshMeasure.Euler(mesh));
        MeshMeasure.AssertCornerValues(mesh, 0.9);
        Close.To(2 * Math.PI * Math.PI * 4, MeshMeasure.Volume(mesh), 2);

        solid.StartPoint = EndPoint.FromDegree(90);
        solid.EndPoint = EndPoint.FromDegree(180);
        mesh = solid.ToMesh();
        MeshMeasure.AssertClosed(mesh);
        Assert.Equal(2, MeshMeasure.Euler(mesh));
        Close.To(2 * Math.PI * Math.PI, MeshMeasure.Volume(mesh), 0.5);
        Assert.InRange(solid.GetBoundingBox().Maximum.x, -1e-6, 0.2);
    }

    [Fact]
    public void WhatIsMissingIsToldOf()
    {
        Assert.Throws<InvalidOperationException>(() => new LinearExtrusion().ToMesh());
        Assert.Throws<InvalidOperationException>(
            () => new LinearExtrusion(new CircleShape(), 1) { Direction = Vector3.XAxis }.ToMesh());
        Assert.Throws<InvalidOperationException>(
            () => new RevolvedAreaSolid { Shape = new CircleShape(), AngleEnd = 0 }.ToMesh());
        Assert.Throws<InvalidOperationException>(() =>
            new SweptAreaSolid { Shape = new CircleShape() }.ToMesh());
        Assert.Throws<NotSupportedException>(() =>
            new LinearExtrusion(new Text { Content = "a" }, 1).ToMesh());
        Assert.Equal(BoundingBoxExtent.Null, new LinearExtrusion().GetBoundingBox().Extent);
    }
}
