using System;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Core;

public class TransformTests
{
    [Fact]
    public void NewTransformIsTheIdentity()
    {
        Transform t = new Node().Transform;
        Assert.Equal(Matrix4.Identity, t.TransformMatrix);
        Assert.Equal(Vector3.UnitScale, t.Scale);
        Assert.Equal(Vector3.UnitScale, t.GeometricScaling);
        Assert.Equal(Quaternion.Identity, t.Rotation);
    }

    [Fact]
    public void PartsComposeToScaleRotationTranslation()
    {
        Transform t = new Node().Transform;
        Transform same = t.SetScale(2, 3, 4).SetEulerAngles(30, -40, 50).SetTranslation(5, 6, 7);
        Assert.Same(t, same);
        Matrix4 expected = Matrix4.Scale(2, 3, 4) * Matrix4.RotateFromEuler(MathUtils.ToRadian(30, -40, 50))
            * Matrix4.Translate(5, 6, 7);
        Close.To(expected, t.TransformMatrix);
    }

    [Fact]
    public void PreAndPostRotationSurroundTheRotation()
    {
        Transform t = new Node().Transform;
        t.SetPreRotation(10, 20, 30).SetPostRotation(-5, 15, 25).SetEulerAngles(30, -40, 50).SetScale(1, 2, 3);
        Matrix4 pre = Matrix4.RotateFromEuler(MathUtils.ToRadian(10, 20, 30));
        Matrix4 post = Matrix4.RotateFromEuler(MathUtils.ToRadian(-5, 15, 25));
        Matrix4 rotation = Matrix4.RotateFromEuler(MathUtils.ToRadian(30, -40, 50));
        Close.To(Matrix4.Scale(1, 2, 3) * post.Inverse() * rotation * pre, t.TransformMatrix);
    }

    [Fact]
    public void EulerAnglesAndQuaternionStayInStep()
    {
        Transform t = new Node().Transform;
        t.EulerAngles = new Vector3(30, -40, 50);
        Close.ToRotation(Quaternion.FromEulerAngle(MathUtils.ToRadian(30, -40, 50)), t.Rotation);
        t.Rotation = Quaternion.FromAngleAxis(Math.PI / 2, Vector3.YAxis);
        Close.ToRotation(Quaternion.FromEulerAngle(0, Math.PI / 2, 0), t.Rotation);
        Quaternion again = Quaternion.FromEulerAngle(MathUtils.ToRadian(t.EulerAngles));
        Close.ToRotation(t.Rotation, again);
        t.SetRotation(1, 0, 0, 0);
        Assert.Equal(Vector3.Origin, t.EulerAngles);
    }

    [Theory]
    [InlineData(400, 0, 0)]
    [InlineData(0, 270, 0)]
    [InlineData(-181, 90, 12)]
    public void EulerAnglesAreKeptAsTheyWereSet(double x, double y, double z)
    {
        Transform t = new Node().Transform;
        t.EulerAngles = new Vector3(x, y, z);
        Assert.Equal(new Vector3(x, y, z), t.EulerAngles);
    }

    [Fact]
    public void MatrixSetsTheParts()
    {
        Matrix4 m = Matrix4.Scale(2, 3, 4) * Matrix4.RotateFromEuler(0.5, -0.6, 0.7) * Matrix4.Translate(5, 6, 7);
        Transform t = new Node().Transform;
        t.SetPreRotation(10, 20, 30);
        t.TransformMatrix = m;
        Assert.Equal(m, t.TransformMatrix);
        Close.To(new Vector3(5, 6, 7), t.Translation);
        Close.To(new Vector3(2, 3, 4), t.Scale);
        Close.To(MathUtils.ToDegree(0.5, -0.6, 0.7), t.EulerAngles);
        Assert.Equal(Vector3.Origin, t.PreRotation);
        t.Translation = Vector3.Origin;
        Close.To(m * Matrix4.Translate(-5, -6, -7), t.TransformMatrix);
    }

    [Fact]
    public void ShearedMatrixIsKeptUntilAPartIsSet()
    {
        Matrix4 sheared = Matrix4.Scale(1, 5, 1) * Matrix4.Rotate(0.5, Vector3.ZAxis) * Matrix4.Scale(3, 1, 1);
        Transform t = new Node().Transform;
        t.TransformMatrix = sheared;
        Assert.Equal(sheared, t.TransformMatrix);
        t.SetTranslation(0, 0, 0);
        Assert.True(t.TransformMatrix.Decompose(out _, out _, out _));
    }

    [Fact]
    public void GeometricTransformMovesTheEntitiesAlone()
    {
        Node parent = new("parent");
        Node child = parent.CreateChildNode("child");
        parent.Transform.SetTranslation(1, 0, 0);
        parent.Transform.SetGeometricTranslation(0, 10, 0).SetGeometricScaling(2, 2, 2)
            .SetGeometricRotation(0, 0, 90);
        Close.To(Matrix4.Translate(1, 0, 0), child.EvaluateGlobalTransform(true));
        Close.To(new Vector3(1, 12, 0), Vector3.XAxis * parent.EvaluateGlobalTransform(true));
        Close.To(new Vector3(2, 0, 0), Vector3.XAxis * parent.EvaluateGlobalTransform(false));
    }

    [Fact]
    public void GlobalTransformMultipliesUpToTheRoot()
    {
        Scene scene = new();
        Node a = scene.RootNode.CreateChildNode("a");
        Node b = a.CreateChildNode("b");
        a.Transform.SetTranslation(10, 0, 0).SetEulerAngles(0, 0, 90);
        b.Transform.SetTranslation(1, 0, 0).SetScale(2, 2, 2);
        Close.To(new Vector3(10, 1, 0), b.GlobalTransform.Translation);
        Close.To(new Vector3(2, 2, 2), b.GlobalTransform.Scale);
        Close.To(new Vector3(0, 0, 90), b.GlobalTransform.EulerAngles);
        Close.ToRotation(Quaternion.FromAngleAxis(Math.PI / 2, Vector3.ZAxis), b.GlobalTransform.Rotation);
        a.Transform.SetTranslation(0, 0, 0);
        Close.To(new Vector3(0, 1, 0), b.GlobalTransform.Translation);
    }
}
