using System;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Utilities;

public class QuaternionTests
{
    private static readonly Quaternion A = Quaternion.FromEulerAngle(0.4, 1.1, -2.3);
    private static readonly Quaternion B = Quaternion.FromAngleAxis(1.3, new Vector3(1, 2, -3));

    [Theory]
    [InlineData(0, 0, 0)]
    [InlineData(0.4, 1.1, -2.3)]
    [InlineData(-3, -1.5, 3)]
    [InlineData(1, Math.PI / 2, 0.5)]
    [InlineData(1, -Math.PI / 2, 0.5)]
    [InlineData(0, 1.5707963, 0)]
    public void EulerAnglesGiveTheRotationAgain(double x, double y, double z)
    {
        Quaternion q = Quaternion.FromEulerAngle(x, y, z);
        Close.ToRotation(q, Quaternion.FromEulerAngle(q.EulerAngles()));
    }

    [Fact]
    public void EulerAnglesInsideTheRangeComeBackAsTheyWere() =>
        Close.To(new Vector3(0.4, 1.1, -2.3), A.EulerAngles());

    [Fact]
    public void ConcatMatchesTheConcatenationOfMatrices()
    {
        Close.To(A.ToMatrix().Concatenate(B.ToMatrix()), A.Concat(B).ToMatrix());
        Close.To(A.Concat(B).ToMatrix(), (B * A).ToMatrix());
    }

    [Fact]
    public void RotateMatchesTheMatrix()
    {
        Vector3 v = new(1, -2, 3);
        Close.To(v * A.ToMatrix(), A.Rotate(v));
    }

    [Fact]
    public void InverseUndoesTheRotation()
    {
        Close.ToRotation(Quaternion.Identity, A.Concat(A.Inverse()));
        Quaternion doubled = new(A.w * 2, A.x * 2, A.y * 2, A.z * 2);
        Quaternion unit = doubled * doubled.Inverse();
        Close.To(1, unit.w);
        Close.ToRotation(A.Conjugate(), A.Inverse());
        Assert.Throws<InvalidOperationException>(() => default(Quaternion).Inverse());
    }

    [Fact]
    public void AngleAndAxisGiveTheRotationAgain()
    {
        B.ToAngleAxis(out double angle, out Vector3 axis);
        Close.To(1.3, angle);
        Close.To(new Vector3(1, 2, -3).Normalize(), axis);
        Quaternion.Identity.ToAngleAxis(out angle, out axis);
        Assert.Equal(0, angle);
        Assert.Equal(Vector3.XAxis, axis);
    }

    [Theory]
    [InlineData(1, 0, 0, 0, 1, 0)]
    [InlineData(1, 0, 0, -1, 0, 0)]
    [InlineData(0, 1, 0, 0, -1, 0)]
    [InlineData(1, 2, 3, 1, 2, 3)]
    [InlineData(1, 2, 3, -4, 1, 9)]
    public void FromRotationTurnsOneDirectionIntoTheOther(
        double ax, double ay, double az, double bx, double by, double bz)
    {
        Vector3 from = new(ax, ay, az);
        Vector3 to = new(bx, by, bz);
        Quaternion q = Quaternion.FromRotation(from, to);
        Close.To(1, q.Length);
        Close.To(to.Normalize(), q.Rotate(from.Normalize()));
    }

    [Fact]
    public void InterpolationRunsAlongTheShorterWay()
    {
        Quaternion end = Quaternion.FromAngleAxis(1, Vector3.ZAxis);
        Close.ToRotation(
            Quaternion.FromAngleAxis(0.25, Vector3.ZAxis), Quaternion.Interpolate(0.25f, Quaternion.Identity, end));
        Quaternion opposite = new(-end.w, -end.x, -end.y, -end.z);
        Close.ToRotation(
            Quaternion.FromAngleAxis(0.25, Vector3.ZAxis),
            Quaternion.Interpolate(0.25f, Quaternion.Identity, opposite));
        Close.ToRotation(Quaternion.Identity, Quaternion.Interpolate(0, Quaternion.Identity, end));
        Close.ToRotation(end, Quaternion.Interpolate(1, Quaternion.Identity, end));
        Close.ToRotation(end, Quaternion.Interpolate(0.5f, end, end));
    }

    [Fact]
    public void MatrixGivesTheRotationAgainInAllBranches()
    {
        Vector3[] axes = [Vector3.XAxis, Vector3.YAxis, Vector3.ZAxis, new(1, 1, 1), new(-3, 0.1, 2)];
        foreach (Vector3 axis in axes)
        {
            foreach (double angle in new[] { 0, 0.01, 1, 2, 3, Math.PI, 4, 6 })
            {
                Quaternion q = Quaternion.FromAngleAxis(angle, axis);
                Assert.True(q.ToMatrix().Decompose(out _, out _, out Quaternion rotation));
                Close.ToRotation(q, rotation);
            }
        }
    }
}
