using System;
using System.Globalization;

namespace Velbor.Voxlar.Utilities;

/// <summary>A 4 by 4 matrix of single precision, laid out as <see cref="Matrix4"/> is.</summary>
/// <remarks>Products and inverses are computed in double precision and rounded once.</remarks>
public struct FMatrix4 : IEquatable<FMatrix4>
{
    /// <summary>The matrix that changes nothing.</summary>
    public static readonly FMatrix4 Identity = new(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);

    /// <summary>Row 0, column 0.</summary>
    public float m00;

    /// <summary>Row 0, column 1.</summary>
    public float m01;

    /// <summary>Row 0, column 2.</summary>
    public float m02;

    /// <summary>Row 0, column 3.</summary>
    public float m03;

    /// <summary>Row 1, column 0.</summary>
    public float m10;

    /// <summary>Row 1, column 1.</summary>
    public float m11;

    /// <summary>Row 1, column 2.</summary>
    public float m12;

    /// <summary>Row 1, column 3.</summary>
    public float m13;

    /// <summary>Row 2, column 0.</summary>
    public float m20;

    /// <summary>Row 2, column 1.</summary>
    public float m21;

    /// <summary>Row 2, column 2.</summary>
    public float m22;

    /// <summary>Row 2, column 3.</summary>
    public float m23;

    /// <summary>Row 3, column 0.</summary>
    public float m30;

    /// <summary>Row 3, column 1.</summary>
    public float m31;

    /// <summary>Row 3, column 2.</summary>
    public float m32;

    /// <summary>Row 3, column 3.</summary>
    public float m33;

    /// <summary>Makes a matrix out of its elements, row after row.</summary>
    public FMatrix4(
        float m00, float m01, float m02, float m03,
        float m10, float m11, float m12, float m13,
        float m20, float m21, float m22, float m23,
        float m30, float m31, float m32, float m33)
    {
        this.m00 = m00;
        this.m01 = m01;
        this.m02 = m02;
        this.m03 = m03;
        this.m10 = m10;
        this.m11 = m11;
        this.m12 = m12;
        this.m13 = m13;
        this.m20 = m20;
        this.m21 = m21;
        this.m22 = m22;
        this.m23 = m23;
        this.m30 = m30;
        this.m31 = m31;
        this.m32 = m32;
        this.m33 = m33;
    }

    /// <summary>Rounds a matrix of double precision.</summary>
    public FMatrix4(Matrix4 mat)
    {
        m00 = (float)mat.m00;
        m01 = (float)mat.m01;
        m02 = (float)mat.m02;
        m03 = (float)mat.m03;
        m10 = (float)mat.m10;
        m11 = (float)mat.m11;
        m12 = (float)mat.m12;
        m13 = (float)mat.m13;
        m20 = (float)mat.m20;
        m21 = (float)mat.m21;
        m22 = (float)mat.m22;
        m23 = (float)mat.m23;
        m30 = (float)mat.m30;
        m31 = (float)mat.m31;
        m32 = (float)mat.m32;
        m33 = (float)mat.m33;
    }

    /// <summary>Makes a matrix out of its rows.</summary>
    public FMatrix4(FVector4 r0, FVector4 r1, FVector4 r2, FVector4 r3)
    {
        m00 = r0.x;
        m01 = r0.y;
        m02 = r0.z;
        m03 = r0.w;
        m10 = r1.x;
        m11 = r1.y;
        m12 = r1.z;
        m13 = r1.w;
        m20 = r2.x;
        m21 = r2.y;
        m22 = r2.z;
        m23 = r2.w;
        m30 = r3.x;
        m31 = r3.y;
        m32 = r3.z;
        m33 = r3.w;
    }

    /// <summary>The transform that does this one first and then <paramref name="m2"/>.</summary>
    public readonly FMatrix4 Concatenate(FMatrix4 m2) => this * m2;

    /// <summary>The transform that does this one first and then <paramref name="m2"/>.</summary>
    public readonly FMatrix4 Concatenate(Matrix4 m2) => new(new Matrix4(this) * m2);

    /// <summary>Rows and columns exchanged.</summary>
    public readonly FMatrix4 Transpose() => new(
        m00, m10, m20, m30,
        m01, m11, m21, m31,
        m02, m12, m22, m32,
        m03, m13, m23, m33);

    /// <summary>The inverse matrix.</summary>
    /// <exception cref="InvalidOperationException">The matrix is singular.</exception>
    public readonly FMatrix4 Inverse() => new(new Matrix4(this).Inverse());

    /// <summary>Whether all elements are equal.</summary>
    public readonly bool Equals(FMatrix4 other) =>
        m00.Equals(other.m00) && m01.Equals(other.m01) && m02.Equals(other.m02) && m03.Equals(other.m03) &&
        m10.Equals(other.m10) && m11.Equals(other.m11) && m12.Equals(other.m12) && m13.Equals(other.m13) &&
        m20.Equals(other.m20) && m21.Equals(other.m21) && m22.Equals(other.m22) && m23.Equals(other.m23) &&
        m30.Equals(other.m30) && m31.Equals(other.m31) && m32.Equals(other.m32) && m33.Equals(other.m33);

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is FMatrix4 other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode()
    {
        HashCode hash = default;
        hash.Add(m00);
        hash.Add(m01);
        hash.Add(m02);
        hash.Add(m03);
        hash.Add(m10);
        hash.Add(m11);
        hash.Add(m12);
        hash.Add(m13);
        hash.Add(m20);
        hash.Add(m21);
        hash.Add(m22);
        hash.Add(m23);
        hash.Add(m30);
        hash.Add(m31);
        hash.Add(m32);
        hash.Add(m33);
        return hash.ToHashCode();
    }

    /// <summary>The four rows.</summary>
    public override readonly string ToString() =>
        string.Create(
            CultureInfo.InvariantCulture,
            $"[({m00}, {m01}, {m02}, {m03}), ({m10}, {m11}, {m12}, {m13}), " +
            $"({m20}, {m21}, {m22}, {m23}), ({m30}, {m31}, {m32}, {m33})]");

    /// <summary>Whether all elements are equal.</summary>
    public static bool operator ==(FMatrix4 a, FMatrix4 b) => a.Equals(b);

    /// <summary>Whether an element differs.</summary>
    public static bool operator !=(FMatrix4 a, FMatrix4 b) => !a.Equals(b);

    /// <summary>The matrix product; <paramref name="a"/> works first.</summary>
    public static FMatrix4 operator *(FMatrix4 a, FMatrix4 b) => new(new Matrix4(a) * new Matrix4(b));

    /// <summary>Rounds to single precision.</summary>
    public static explicit operator FMatrix4(Matrix4 m) => new(m);
}
