using System;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Utilities;

public class MatrixTests
{
    private static readonly Matrix4 Sample =
        Matrix4.Scale(2, 3, 4) * Matrix4.RotateFromEuler(0.3, -0.7, 1.9) * Matrix4.Translate(5, -6, 7);

    [Fact]
    public void TranslationStandsInTheLastRow()
    {
        Matrix4 m = Matrix4.Translate(1, 2, 3);
        Assert.Equal((1.0, 2.0, 3.0, 1.0), (m.m30, m.m31, m.m32, m.m33));
        Assert.Equal(new Vector3(11, 22, 33), new Vector3(10, 20, 30) * m);
    }

    [Fact]
    public void ConcatenateAppliesTheFirstOneFirst()
    {
        Matrix4 scaleThenMove = Matrix4.Scale(2).Concatenate(Matrix4.Translate(1, 0, 0));
        Assert.Equal(new Vector3(3, 2, 2), new Vector3(1, 1, 1) * scaleThenMove);
        FMatrix4 single = new FMatrix4(Matrix4.Scale(2)).Concatenate(Matrix4.Translate(1, 0, 0));
        Assert.Equal(new FMatrix4(scaleThenMove), single);
    }

    [Fact]
    public void RotationsAreCounterClockwise()
    {
        Close.To(Vector3.YAxis, Vector3.XAxis * Matrix4.Rotate(Math.PI / 2, Vector3.ZAxis));
        Close.To(Vector3.ZAxis, Vector3.YAxis * Matrix4.RotateFromEuler(Math.PI / 2, 0, 0));
        Close.To(Vector3.XAxis, Vector3.ZAxis * Matrix4.RotateFromEuler(new Vector3(0, Math.PI / 2, 0)));
    }

    [Fact]
    public void EulerAnglesWorkAboutXThenYThenZ()
    {
        Matrix4 expected = Matrix4.Rotate(0.3, Vector3.XAxis) * Matrix4.Rotate(-0.7, Vector3.YAxis)
            * Matrix4.Rotate(1.9, Vector3.ZAxis);
        Close.To(expected, Matrix4.RotateFromEuler(0.3, -0.7, 1.9));
        Close.To(expected, Quaternion.FromEulerAngle(0.3, -0.7, 1.9).ToMatrix());
    }

    [Fact]
    public void InverseTimesMatrixIsIdentity()
    {
        Close.To(Matrix4.Identity, Sample * Sample.Inverse());
        Close.To(Matrix4.Identity, Sample.Inverse() * Sample);
        Matrix4 projective = new(1, 2, 3, 4, 0, 1, 4, 2, 5, 6, 0, 1, 2, 2, 1, 3);
        Close.To(Matrix4.Identity, projective * projective.Inverse());
    }

    [Fact]
    public void SingularMatrixHasNoInverse()
    {
        Assert.Throws<InvalidOperationException>(() => Matrix4.Scale(1, 0, 1).Inverse());
        Assert.Throws<InvalidOperationException>(() => default(Matrix4).Inverse());
    }

    [Fact]
    public void DeterminantIsTheVolume()
    {
        Close.To(24, Sample.Determinant);
        Close.To(-24, (Matrix4.Scale(-1, 1, 1) * Sample).Determinant);
        Close.To(30, new Matrix4(1, 0, 2, -1, 3, 0, 0, 5, 2, 1, 4, -3, 1, 0, 5, 0).Determinant);
    }

    [Fact]
    public void TransposeExchangesRowsAndColumns()
    {
        Matrix4 t = Sample.Transpose();
        Assert.Equal(Sample.m30, t.m03);
        Assert.Equal(Sample.m12, t.m21);
        Assert.Equal(Sample, t.Transpose());
        Assert.Equal(new FMatrix4(Sample).Transpose(), new FMatrix4(t));
    }

    [Theory]
    [InlineData(1, 1, 1)]
    [InlineData(2, 3, 4)]
    [InlineData(-2, 3, 4)]
    [InlineData(-2, -3, -4)]
    [InlineData(0.001, 1000, 1)]
    public void DecomposedPartsGiveTheMatrixAgain(double sx, double sy, double sz)
    {
        foreach (Vector3 angles in new[] { new Vector3(0.3, -0.7, 1.9), new Vector3(3.1, 0, -3.1), Vector3.Origin })
        {
            Matrix4 m = Matrix4.Scale(sx, sy, sz) * Matrix4.RotateFromEuler(angles) * Matrix4.Translate(5, -6, 7);
            Assert.True(m.Decompose(out Vector3 translation, out Vector3 scale, out Quaternion rotation));
            Close.To(m, Matrix4.Scale(scale) * rotation.ToMatrix() * Matrix4.Translate(translation), 1e-8);
            Assert.Equal(new Vector3(5, -6, 7), translation);
        }
    }

    [Fact]
    public void ShearedAndSingularMatricesDoNotDecompose()
    {
        Matrix4 sheared = Matrix4.Scale(1, 5, 1) * Matrix4.Rotate(0.5, Vector3.ZAxis) * Matrix4.Scale(3, 1, 1);
        Assert.False(sheared.Decompose(out _, out _, out Quaternion rotation));
        Close.To(1, rotation.Length);
        Assert.False(Matrix4.Scale(1, 0, 1).Decompose(out _, out _, out rotation));
        Assert.Equal(Quaternion.Identity, rotation);
    }

    [Fact]
    public void SetTrsScalesThenRotatesThenTranslates()
    {
        Matrix4 m = default;
        m.SetTRS(new Vector3(5, -6, 7), new Vector3(0.3, -0.7, 1.9), new Vector3(2, 3, 4));
        Close.To(Sample, m);
    }

    [Fact]
    public void NormalizeTakesTheScaleAway()
    {
        Close.To(Matrix4.RotateFromEuler(0.3, -0.7, 1.9) * Matrix4.Translate(5, -6, 7), Sample.Normalize());
    }

    [Fact]
    public void ArraysHoldRowAfterRow()
    {
        double[] elements = [0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15];
        Matrix4 m = new(elements);
        Assert.Equal(elements, m.ToArray());
        Assert.Equal(6, m.m12);
        Assert.Equal(m, new Matrix4(
            new Vector4(0, 1, 2, 3), new Vector4(4, 5, 6, 7), new Vector4(8, 9, 10, 11), new Vector4(12, 13, 14, 15)));
        Assert.Throws<ArgumentException>(() => new Matrix4(new double[15]));
        Assert.Throws<ArgumentNullException>(() => new Matrix4((double[])null!));
    }

    [Fact]
    public void EqualityLooksAtEveryElement()
    {
        double[] zero = new double[16];
        for (int i = 0; i < 16; i++)
        {
            double[] changed = (double[])zero.Clone();
            changed[i] = 1;
            Assert.NotEqual(new Matrix4(zero), new Matrix4(changed));
            Assert.NotEqual(new FMatrix4(new Matrix4(zero)), new FMatrix4(new Matrix4(changed)));
        }
        Assert.Equal(new Matrix4(zero).GetHashCode(), default(Matrix4).GetHashCode());
    }
}
