using System;
using System.Collections.Generic;
using System.Linq;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Entities;

public class CurveTests
{
    private static double Length(List<Vector3> points) =>
        points.Zip(points.Skip(1), (a, b) => (b - a).Length).Sum();

    [Fact]
    public void LinesHaveSegments()
    {
        Line line = Line.FromPoints([new(0, 0, 0), new(1, 0, 0), new(1, 2, 0)]);
        Assert.Equal([0, 1, 2], Assert.Single(line.Segments));
        Close.To(3, Length(line.Tessellate()));
        Close.To(new Vector3(1, 1, 0), line.PointAt(1.5));
        Assert.Equal(new Vector3(1, 2, 0), line.GetBoundingBox().Maximum);
        line.Segments.Clear();
        line.MakeDefaultIndices();
        Assert.Single(line.Segments);
        Line empty = new("l");
        empty.MakeDefaultIndices();
        Assert.Empty(empty.Segments);
        Assert.Equal(BoundingBoxExtent.Null, empty.GetBoundingBox().Extent);
    }

    [Fact]
    public void CirclesClose()
    {
        List<Vector3> points = new Circle(2).Tessellate();
        Assert.Equal(points[0], points[^1]);
        Assert.Equal(33, points.Count);
        Assert.All(points, p => Close.To(2, p.Length));
        Assert.All(new Ellipse(4, 1).Tessellate(), p => Close.To(1, p.x * p.x / 16 + p.y * p.y));
    }

    [Fact]
    public void TrimmingACircle()
    {
        TrimmedCurve quarter = new()
        {
            BasisCurve = new Circle(2),
            First = EndPoint.FromDegree(0),
            Second = new EndPoint(new Vector3(0, 3, 0)),
        };
        List<Vector3> points = quarter.Tessellate();
        Close.To(new Vector3(2, 0, 0), points[0]);
        Close.To(new Vector3(0, 2, 0), points[^1], 1e-6);
        Close.To(Math.PI, Length(points), 0.01);

        TrimmedCurve around = new()
        {
            BasisCurve = new Circle(2),
            First = EndPoint.FromDegree(270),
            Second = EndPoint.FromRadian(Math.PI / 2),
        };
        Close.To(2 * Math.PI, Length(around.Tessellate()), 0.02);
        Close.To(new Vector3(2, 0, 0), around.PointAt(0.5));
        around.SameDirection = false;
        Close.To(new Vector3(-2, 0, 0), around.PointAt(0.5));

        // Backwards from 0 to 90 degrees is the long way round.
        quarter.SameDirection = false;
        quarter.Second = EndPoint.FromDegree(90);
        Close.To(3 * Math.PI, Length(quarter.Tessellate()), 0.03);
        Close.To(new Vector3(-Math.Sqrt(2), -Math.Sqrt(2), 0), quarter.PointAt(0.5));
    }

    [Fact]
    public void EndPointsAreAPointOrAValue()
    {
        Assert.False(new EndPoint().IsCartesianPoint);
        Assert.Equal(0, new EndPoint().AsValue);
        Close.To(Math.PI, EndPoint.FromDegree(180).AsValue);
        Assert.Throws<InvalidOperationException>(() => new EndPoint(1.0).AsPoint);
        Assert.Throws<InvalidOperationException>(() => new EndPoint(Vector3.Origin).AsValue);
        Assert.Equal(new EndPoint(2.0), EndPoint.FromRadian(2));
    }

    [Fact]
    public void CompositeCurvesJoin()
    {
        CompositeCurve curve = new();
        curve.AddSegment(Line.FromPoints([new(0, 0, 0), new(2, 0, 0)]), true);
        curve.AddSegment(Line.FromPoints([new(2, 3, 0), new(2, 0, 0)]), false);
        Assert.Equal([new(0, 0, 0), new(2, 0, 0), new(2, 3, 0)], curve.Tessellate());
        Close.To(new Vector3(2, 1.5, 0), curve.PointAt(1.5));
        Assert.False(curve.Segments[1].SameDirection);
        curve.Segments.Add(new CompositeCurve.Segment());
        Assert.Throws<InvalidOperationException>(() => curve.Tessellate());
    }

    [Fact]
    public void CurvesThatContainThemselvesAreRefused()
    {
        CompositeCurve composite = new();
        composite.AddSegment(composite, true);
        Assert.Throws<InsufficientExecutionStackException>(() => composite.Tessellate());
        TransformedCurve transformed = new();
        Assert.Throws<ArgumentException>(() => transformed.BasisCurve = transformed);
        TrimmedCurve trimmed = new() { BasisCurve = transformed };
        Assert.Throws<ArgumentException>(() => transformed.BasisCurve = trimmed);
        CompositeCurve around = new();
        around.AddSegment(trimmed, true);
        Assert.Throws<ArgumentException>(() => transformed.BasisCurve = around);
        Assert.Null(transformed.BasisCurve);
    }

    [Fact]
    public void TransformedCurvesMove()
    {
        TransformedCurve curve = new(new Circle(1), Matrix4.Translate(5, 0, 0));
        BoundingBox box = curve.GetBoundingBox();
        Close.To(new Vector3(5, 0, 0), box.Center);
        Close.To(new Vector3(2, 2, 0), box.Size);
        Assert.Throws<InvalidOperationException>(() => new TransformedCurve().GetBoundingBox());
    }

    [Fact]
    public void RationalSplineGivesAnExactCircle()
    {
        NurbsCurve curve = new("quarter") { Order = 3, Rational = true };
        double w = Math.Sqrt(0.5);
        curve.ControlPoints.AddRange([new(1, 0, 0, 1), new(1, 1, 0, w), new(0, 1, 0, 1)]);
        Vector4[] points = curve.Evaluate(16);
        Assert.Equal(17, points.Length);
        Assert.All(points, p => Close.To(1, Math.Sqrt(p.x * p.x + p.y * p.y)));
        Assert.Equal(new Vector4(1, 0, 0, 1), points[0]);
        Assert.Equal(new Vector4(0, 1, 0, 1), points[16]);
        Close.To(new Vector3(curve.EvaluateAt(0.5)), new Vector3(w, w, 0));
    }

    [Fact]
    public void SplineMatchesItsBezierForm()
    {
        NurbsCurve curve = new();
        curve.ControlPoints.AddRange([new(0, 0, 0), new(0, 1, 0), new(1, 1, 2), new(1, 0, 0)]);
        foreach (double u in new[] { 0, 0.25, 0.5, 0.9, 1 })
        {
            double r = 1 - u;
            Vector3 expected = new(3 * r * u * u + u * u * u, 3 * r * r * u + 3 * r * u * u, 6 * r * u * u);
            Close.To(expected, new Vector3(curve.EvaluateAt(u)));
        }
    }

    [Fact]
    public void PeriodicSplineCloses()
    {
        NurbsCurve curve = new() { CurveType = NurbsType.Periodic };
        curve.ControlPoints.AddRange([new(1, 0, 0), new(0, 1, 0), new(-1, 0, 0), new(0, -1, 0)]);
        List<Vector3> points = curve.Tessellate();
        Close.To(points[0], points[^1]);
    }

    [Fact]
    public void SplineWithoutPointsIsRefused()
    {
        Assert.Throws<InvalidOperationException>(() => new NurbsCurve().Evaluate(4));
        NurbsCurve curve = new() { Order = 2 };
        curve.ControlPoints.AddRange([new(0, 0, 0), new(1, 0, 0)]);
        curve.Knots.AddRange([0, 0, 1]);
        Assert.Throws<InvalidOperationException>(() => curve.EvaluateAt(0));
        Assert.Throws<ArgumentOutOfRangeException>(() => curve.Evaluate(0));
    }

    [Fact]
    public void NurbsSurfacesBecomeMeshes()
    {
        NurbsSurface surface = new("s");
        surface.U.Order = surface.V.Order = 2;
        surface.U.Count = surface.V.Count = 2;
        surface.U.Divisions = 3;
        surface.V.Divisions = 2;
        foreach ((int x, int y) in new[] { (0, 0), (4, 0), (0, 2), (4, 2) })
            surface.ControlPoints.Add(new Vector4(x, y, 0, 1));
        Mesh mesh = surface.ToMesh();
        Assert.Equal(12, mesh.ControlPoints.Count);
        Assert.Equal(6, mesh.PolygonCount);
        Close.To(8, MeshMeasure.Area(mesh));
        MeshMeasure.AssertCornerValues(mesh, 0.999);
        surface.U.Count = 3;
        Assert.Throws<InvalidOperationException>(() => surface.ToMesh());
    }

    [Fact]
    public void RevolvedNurbsSurfaceIsACylinder()
    {
        NurbsSurface surface = new();
        surface.U.Order = 3;
        surface.U.Count = 9;
        surface.U.Divisions = 8;
        foreach (double knot in new double[] { 0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4 })
            surface.U.Knots.Add(knot);
        surface.V.Order = 2;
        surface.V.Count = 2;
        double w = Math.Sqrt(0.5);
        (int X, int Y)[] square =
            [(1, 0), (1, 1), (0, 1), (-1, 1), (-1, 0), (-1, -1), (0, -1), (1, -1), (1, 0)];
        for (int z = 0; z < 2; z++)
        {
            for (int i = 0; i < 9; i++)
                surface.ControlPoints.Add(new Vector4(square[i].X, square[i].Y, z * 3, i % 2 == 1 ? w : 1));
        }
        Mesh mesh = surface.ToMesh();
        Assert.All(mesh.ControlPoints, p => Close.To(1, Math.Sqrt(p.x * p.x + p.y * p.y)));
        Close.To(2 * Math.PI * 3, MeshMeasure.Area(mesh), 0.05);
        MeshMeasure.AssertCornerValues(mesh, 0.98);
    }
}
