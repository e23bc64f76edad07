using System;
using System.Collections.Generic;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Entities;

public class PrimitiveTests
{
    private const double Turn = 2 * Math.PI;

    /// <summary>
    /// Closed bodies: the body, its Euler characteristic, the exact volume, and how much the mesh may lack.
    /// </summary>
    public static TheoryData<string, int, double, double> ClosedBodies => new()
    {
        { "box", 2, 24, 1e-12 },
        { "box with segments", 2, 24, 1e-12 },
        { "sphere", 2, 4.0 / 3 * Math.PI * 8, 0.01 },
        { "coarsest sphere", 2, 4.0 / 3 * Math.PI, 1 },
        { "cylinder", 2, Math.PI * 4 * 3, 0.01 },
        { "cone", 2, Math.PI * 4 * 3 / 3, 0.01 },
        { "inverted cone", 2, Math.PI * 4 * 3 / 3, 0.01 },
        { "frustum of a cone", 2, Math.PI * 3 / 3 * (4 + 2 + 1), 0.01 },
        { "sheared cylinder", 2, Math.PI * 4 * 3, 0.01 },
        { "moved cylinder", 2, Math.PI * 4 * 4, 0.01 },
        { "slice of a cylinder", 2, Math.PI * 4 * 3 / 4, 0.01 },
        { "dish", 2, 2.0 / 3 * Math.PI * 4 * 1, 0.01 },
        { "pyramid", 2, 4 * 3 * 2 / 3.0, 1e-12 },
        { "frustum of a pyramid", 2, (4 * 4 + 2 * 2 + 3 * 3 * 4) * 3 / 6.0, 1e-12 },
        { "wedge", 2, 4 * 3 * 2 / 2.0, 1e-12 },
        { "torus", 0, 2 * Math.PI * Math.PI * 3 * 1, 0.01 },
        { "part of a torus", 2, Math.PI * Math.PI * 3 * 1, 0.01 },
        { "backward part of a torus", 2, Math.PI * Math.PI * 3 * 1, 0.01 },
        { "rectangular torus", 0, Math.PI * (400 - 100) * 20, 0.01 },
        { "part of a rectangular torus", 2, Math.PI * (400 - 100) * 20 / 4, 0.01 },
    };

    private static Primitive Body(string which) => which switch
    {
        "box" => new Box(2, 3, 4),
        "box with segments" => new Box("b", 2, 3, 4, 3, 4, 5),
        "sphere" => new Sphere(2, 64, 48),
        "coarsest sphere" => new Sphere(1, 1, 1),
        "cylinder" => new Cylinder(2, 2, 3, 64, 2, false),
        "cone" => new Cylinder(0, 2, 3, 64, 3, false),
        "inverted cone" => new Cylinder(2, 0, 3, 64, 3, false),
        "frustum of a cone" => new Cylinder(1, 2, 3, 64, 4, false),
        "sheared cylinder" =>
            new Cylinder(2, 2, 3, 64, 2, false) { ShearTop = new(0.3, -0.2), ShearBottom = new(0.1, 0.2) },
        "moved cylinder" => new Cylinder(2, 2, 3, 64, 2, false) { OffsetTop = new(0.5, 1, 0.25) },
        "slice of a cylinder" =>
            new Cylinder("s", 2, 2, 3, 32, 2, false, 1, Turn / 4) { GenerateFanCylinder = true },
        "dish" => new Dish("d", 2, 1, 64, 24),
        "pyramid" => new Pyramid(4, 3, 2),
        "frustum of a pyramid" => new Pyramid(4, 4, 2, 2, 3),
        "wedge" => new Pyramid(4, 3, 4, 0, 2) { BottomOffset = new(1, 0, 2) },
        "torus" => new Torus("t", 3, 1, 48, 64, Turn),
        "part of a torus" => new Torus("t", 3, 1, 48, 48, Turn / 2),
        "backward part of a torus" => new Torus("t", 3, 1, 48, 48, -Turn / 2),
        "rectangular torus" => new RectangularTorus { RadialSegments = 64 },
        "part of a rectangular torus" =>
            new RectangularTorus { RadialSegments = 32, AngleStart = 0.7, Arc = Turn / 4 },
        _ => throw new ArgumentException(which),
    };

    [Theory]
    [MemberData(nameof(ClosedBodies))]
    public void BodiesAreClosedAndOfTheirVolume(string which, int euler, double volume, double tolerance)
    {
        Mesh mesh = Body(which).ToMesh();
        MeshMeasure.AssertClosed(mesh);
        Assert.Equal(euler, MeshMeasure.Euler(mesh));
        double found = MeshMeasure.Volume(mesh);
        Assert.InRange(found, volume * (1 - tolerance), volume * (1 + 1e-9));
    }

    [Theory]
    [MemberData(nameof(ClosedBodies))]
    public void NormalsPointOutward(string which, int euler, double volume, double tolerance)
    {
        _ = (euler, volume, tolerance);
        MeshMeasure.AssertCornerValues(Body(which).ToMesh(), which == "coarsest sphere" ? 0.1 : 0.95);
    }

    [Fact]
    public void FinerMeshesComeCloserToTheSphere()
    {
        double exact = 4 * Math.PI;
        double last = double.PositiveInfinity;
        foreach (int n in new[] { 8, 16, 32, 64 })
        {
            double error = exact - MeshMeasure.Area(new Sphere(1, 2 * n, n).ToMesh());
            Assert.InRange(error, 0, last / 3);
            last = error;
        }
        Assert.InRange(last / exact, 0, 0.002);
    }

    [Fact]
    public void CountsFollowTheSegments()
    {
        Mesh box = new Box("b", 1, 1, 1, 2, 3, 4).ToMesh();
        Assert.Equal(2 * (2 * 3 + 2 * 4 + 3 * 4), box.PolygonCount);
        Assert.Equal(8, new Box().ToMesh().ControlPoints.Count);

        Mesh sphere = new Sphere(1, 8, 4).ToMesh();
        Assert.Equal(2 + 8 * 3, sphere.ControlPoints.Count);
        Assert.Equal(8 * 4, sphere.PolygonCount);

        Mesh cylinder = new Cylinder(1, 1, 1, 12, 2, true).ToMesh();
        Assert.Equal(12 * 3, cylinder.ControlPoints.Count);
        Assert.Equal(24, cylinder.PolygonCount);

        Mesh plane = new Plane("p", 4, 2, 4, 2).ToMesh();
        Assert.Equal(15, plane.ControlPoints.Count);
        Assert.Equal(8, plane.PolygonCount);
        Close.To(8, MeshMeasure.Area(plane));
    }

    [Fact]
    public void PartOfASphereIsOpen()
    {
        Sphere half = new("s", 1, 64, 32, 0, Turn, 0, Math.PI / 2);
        Mesh mesh = half.ToMesh();
        Assert.Equal(1, MeshMeasure.Euler(mesh));
        Close.To(2 * Math.PI, MeshMeasure.Area(mesh), 0.02);
        BoundingBox box = half.GetBoundingBox();
        Close.To(new Vector3(-1, 0, -1), box.Minimum, 1e-9);
        Close.To(new Vector3(1, 1, 1), box.Maximum, 1e-9);
    }

    [Theory]
    [InlineData(0, 1, 0)]
    [InlineData(0, -1, 0)]
    [InlineData(1, 0, 0)]
    [InlineData(0, 0, -2)]
    [InlineData(1, 2, 3)]
    public void PlaneFacesUp(double x, double y, double z)
    {
        Plane plane = new(3, 2) { Up = new Vector3(x, y, z) };
        Mesh mesh = plane.ToMesh();
        Close.To(plane.Up.Normalize(), MeshMeasure.AreaVector(mesh, mesh.Polygons[0]).Normalize());
        MeshMeasure.AssertCornerValues(mesh, 0.999);
        Close.To(6, MeshMeasure.Area(mesh));
    }

    [Fact]
    public void PlaneWithoutDirectionIsRefused()
    {
        Assert.Throws<InvalidOperationException>(() => new Plane { Up = Vector3.Origin }.ToMesh());
    }

    [Fact]
    public void SegmentsBelowOneAreRefused()
    {
        Assert.Throws<ArgumentOutOfRangeException>(() => new Box { LengthSegments = 0 });
        Assert.Throws<ArgumentOutOfRangeException>(() => new Sphere(1, 0, 4));
        Assert.Throws<ArgumentOutOfRangeException>(() => new Torus { TubularSegments = -1 });
    }

    [Fact]
    public void DefaultsAreKept()
    {
        Box box = new();
        Assert.Equal((2.0, 2.0, 2.0), (box.Length, box.Width, box.Height));
        Assert.True(box.CastShadows && box.ReceiveShadows);
        Close.To(new Vector3(1, 1, 1), box.GetBoundingBox().Maximum);
        Box named = new("crate", 1, 2, 3, 1, 1, 1);
        Assert.Equal("crate", named.ToMesh().Name);
        Close.To(new Vector3(1, 3, 2), named.GetBoundingBox().Size);
    }
}
