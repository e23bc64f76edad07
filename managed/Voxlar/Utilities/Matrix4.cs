using System;
using System.Globalization;

namespace Velbor.Voxlar.Utilities;

/// <summary>A 4 by 4 matrix of double precision.</summary>
/// <remarks>
/// The library works with row vectors: a point p is transformed as p * M, the first three rows hold the
/// images of the x, y and z axes, and the translation stands in the last row (<c>m30</c>, <c>m31</c>,
/// <c>m32</c>). In a product A * B, and in <c>A.Concatenate(B)</c>, A works first. All angles are radians.
/// </remarks>
public struct Matrix4 : IEquatable<Matrix4>
{
    /// <summary>The matrix that changes nothing.</summary>
    public static readonly Matrix4 Identity = new(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);

    // How far from perpendicular, as a cosine, two axes may stand before a matrix counts as sheared.
    private const double ShearTolerance = 1e-6;

    // How far the last column may be from (0, 0, 0, 1) before a matrix counts as projective.
    private const double ProjectionTolerance = 1e-9;

    /// <summary>Row 0, column 0.</summary>
    public double m00;

    /// <summary>Row 0, column 1.</summary>
    public double m01;

    /// <summary>Row 0, column 2.</summary>
    public double m02;

    /// <summary>Row 0, column 3.</summary>
    public double m03;

    /// <summary>Row 1, column 0.</summary>
    public double m10;

    /// <summary>Row 1, column 1.</summary>
    public double m11;

    /// <summary>Row 1, column 2.</summary>
    public double m12;

    /// <summary>Row 1, column 3.</summary>
    public double m13;

    /// <summary>Row 2, column 0.</summary>
    public double m20;

    /// <summary>Row 2, column 1.</summary>
    public double m21;

    /// <summary>Row 2, column 2.</summary>
    public double m22;

    /// <summary>Row 2, column 3.</summary>
    public double m23;

    /// <summary>Row 3, column 0.</summary>
    public double m30;

    /// <summary>Row 3, column 1.</summary>
    public double m31;

    /// <summary>Row 3, column 2.</summary>
    public double m32;

    /// <summary>Row 3, column 3.</summary>
    public double m33;

    /// <summary>Makes a matrix out of its rows.</summary>
    public Matrix4(Vector4 r0, Vector4 r1, Vector4 r2, Vector4 r3)
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

    /// <summary>Makes a matrix out of its elements, row after row.</summary>
    public Matrix4(
        double m00, double m01, double m02, double m03,
        double m10, double m11, double m12, double m13,
        double m20, double m21, double m22, double m23,
        double m30, double m31, double m32, double m33)
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

    /// <summary>Makes a matrix out of one of single precision.</summary>
    public Matrix4(FMatrix4 m)
    {
        m00 = m.m00;
        m01 = m.m01;
        m02 = m.m02;
        m03 = m.m03;
        m10 = m.m10;
        m11 = m.m11;
        m12 = m.m12;
        m13 = m.m13;
        m20 = m.m20;
        m21 = m.m21;
        m22 = m.m22;
        m23 = m.m23;
        m30 = m.m30;
        m31 = m.m31;
        m32 = m.m32;
        m33 = m.m33;
    }

    /// <summary>Makes a matrix out of 16 elements, row after row.</summary>
    /// <exception cref="ArgumentNullException"><paramref name="m"/> is null.</exception>
    /// <exception cref="ArgumentException"><paramref name="m"/> does not hold 16 elements.</exception>
    public Matrix4(double[] m)
    {
        ArgumentNullException.ThrowIfNull(m);
        if (m.Length != 16)
            throw new ArgumentException($"A matrix takes 16 elements, not {m.Length}.", nameof(m));
        m00 = m[0];
        m01 = m[1];
        m02 = m[2];
        m03 = m[3];
        m10 = m[4];
        m11 = m[5];
        m12 = m[6];
        m13 = m[7];
        m20 = m[8];
        m21 = m[9];
        m22 = m[10];
        m23 = m[11];
        m30 = m[12];
        m31 = m[13];
        m32 = m[14];
        m33 = m[15];
    }

    /// <summary>The determinant.</summary>
    public readonly double Determinant
    {
        get
        {
            double a = m20 * m31 - m21 * m30;
            double b = m20 * m32 - m22 * m30;
            double c = m20 * m33 - m23 * m30;
            double d = m21 * m32 - m22 * m31;
            double e = m21 * m33 - m23 * m31;
            double f = m22 * m33 - m23 * m32;
            return m00 * (m11 * f - m12 * e + m13 * d) - m01 * (m10 * f - m12 * c + m13 * b)
                + m02 * (m10 * e - m11 * c + m13 * a) - m03 * (m10 * d - m11 * b + m12 * a);
        }
    }

    /// <summary>A translation by <paramref name="t"/>.</summary>
    public static Matrix4 Translate(Vector3 t) => Translate(t.x, t.y, t.z);

    /// <summary>A translation.</summary>
    public static Matrix4 Translate(double tx, double ty, double tz) =>
        new(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, tx, ty, tz, 1);

    /// <summary>A scaling along the three axes.</summary>
    public static Matrix4 Scale(Vector3 s) => Scale(s.x, s.y, s.z);

    /// <summary>The same scaling along all axes.</summary>
    public static Matrix4 Scale(double s) => Scale(s, s, s);

    /// <summary>A scaling along the three axes.</summary>
    public static Matrix4 Scale(double sx, double sy, double sz) =>
        new(sx, 0, 0, 0, 0, sy, 0, 0, 0, 0, sz, 0, 0, 0, 0, 1);

    /// <summary>A rotation first about x, then about y, then about z, in radians.</summary>
    public static Matrix4 RotateFromEuler(Vector3 eul) => RotateFromEuler(eul.x, eul.y, eul.z);

    /// <summary>A rotation first about x, then about y, then about z, in radians.</summary>
    public static Matrix4 RotateFromEuler(double rx, double ry, double rz)
    {
        (double sinX, double cosX) = Math.SinCos(rx);
        (double sinY, double cosY) = Math.SinCos(ry);
        (double sinZ, double cosZ) = Math.SinCos(rz);
        return new Matrix4(
            cosY * cosZ, cosY * sinZ, -sinY, 0,
            sinX * sinY * cosZ - cosX * sinZ, sinX * sinY * sinZ + cosX * cosZ, sinX * cosY, 0,
            cosX * sinY * cosZ + sinX * sinZ, cosX * sinY * sinZ - sinX * cosZ, cosX * cosY, 0,
            0, 0, 0, 1);
    }

    /// <summary>A rotation by <paramref name="angle"/> radians about <paramref name="axis"/>.</summary>
    public static Matrix4 Rotate(double angle, Vector3 axis) => Quaternion.FromAngleAxis(angle, axis).ToMatrix();

    /// <summary>The rotation that the quaternion stands for.</summary>
    public static Matrix4 Rotate(Quaternion q) => q.ToMatrix();

    /// <summary>The transform that does this one first and then <paramref name="m2"/>.</summary>
    public readonly Matrix4 Concatenate(Matrix4 m2) => this * m2;

    /// <summary>Rows and columns exchanged.</summary>
    public readonly Matrix4 Transpose() => new(
        m00, m10, m20, m30,
        m01, m11, m21, m31,
        m02, m12, m22, m32,
        m03, m13, m23, m33);

    /// <summary>
    /// The same transform without its scale: the three axes get the length 1, all else stays. An axis of
    /// length 0 stays as it is.
    /// </summary>
    public readonly Matrix4 Normalize()
    {
        Vector3 ax = new Vector3(m00, m01, m02).Normalize();
        Vector3 ay = new Vector3(m10, m11, m12).Normalize();
        Vector3 az = new Vector3(m20, m21, m22).Normalize();
        return new Matrix4(
            ax.x, ax.y, ax.z, m03, ay.x, ay.y, ay.z, m13, az.x, az.y, az.z, m23, m30, m31, m32, m33);
    }

    /// <summary>The inverse matrix.</summary>
    /// <exception cref="InvalidOperationException">The matrix is singular.</exception>
    public readonly Matrix4 Inverse()
    {
        double s0 = m00 * m11 - m10 * m01;
        double s1 = m00 * m12 - m10 * m02;
        double s2 = m00 * m13 - m10 * m03;
        double s3 = m01 * m12 - m11 * m02;
        double s4 = m01 * m13 - m11 * m03;
        double s5 = m02 * m13 - m12 * m03;
        double c5 = m22 * m33 - m32 * m23;
        double c4 = m21 * m33 - m31 * m23;
        double c3 = m21 * m32 - m31 * m22;
        double c2 = m20 * m33 - m30 * m23;
        double c1 = m20 * m32 - m30 * m22;
        double c0 = m20 * m31 - m30 * m21;
        double det = s0 * c5 - s1 * c4 + s2 * c3 + s3 * c2 - s4 * c1 + s5 * c0;
        double inv = 1 / det;
        if (!double.IsFinite(inv))
            throw new InvalidOperationException("The matrix is singular and has no inverse.");
        return new Matrix4(
            (m11 * c5 - m12 * c4 + m13 * c3) * inv,
            (-m01 * c5 + m02 * c4 - m03 * c3) * inv,
            (m31 * s5 - m32 * s4 + m33 * s3) * inv,
            (-m21 * s5 + m22 * s4 - m23 * s3) * inv,
            (-m10 * c5 + m12 * c2 - m13 * c1) * inv,
            (m00 * c5 - m02 * c2 + m03 * c1) * inv,
            (-m30 * s5 + m32 * s2 - m33 * s1) * inv,
            (m20 * s5 - m22 * s2 + m23 * s1) * inv,
            (m10 * c4 - m11 * c2 + m13 * c0) * inv,
            (-m00 * c4 + m01 * c2 - m03 * c0) * inv,
            (m30 * s4 - m31 * s2 + m33 * s0) * inv,
            (-m20 * s4 + m21 * s2 - m23 * s0) * inv,
            (-m10 * c3 + m11 * c1 - m12 * c0) * inv,
            (m00 * c3 - m01 * c1 + m02 * c0) * inv,
            (-m30 * s3 + m31 * s1 - m32 * s0) * inv,
            (m20 * s3 - m21 * s1 + m22 * s0) * inv);
    }

    /// <summary>
    /// Makes this matrix the one that scales, then rotates about x, y and z in this order, then translates.
    /// </summary>
    /// <param name="translation">The translation.</param>
    /// <param name="rotation">Angles about x, y and z in radians.</param>
    /// <param name="scale">The scale along the three axes.</param>
    public void SetTRS(Vector3 translation, Vector3 rotation, Vector3 scale) =>
        this = Scale(scale) * RotateFromEuler(rotation) * Translate(translation);

    /// <summary>The 16 elements, row after row.</summary>
    public readonly double[] ToArray() =>
    [
        m00, m01, m02, m03,
        m10, m11, m12, m13,
        m20, m21, m22, m23,
        m30, m31, m32, m33,
    ];

    /// <summary>Takes the matrix apart into scale, rotation and translation, applied in this order.</summary>
    /// <remarks>A mirroring matrix gives a negative x scale.</remarks>
    /// <returns>
    /// True when the three parts give the matrix again; false when it is singular, sheared or projective. The
    /// parts are then the nearest that could be found.
    /// </returns>
    public readonly bool Decompose(out Vector3 translation, out Vector3 scaling, out Quaternion rotation)
    {
        translation = new Vector3(m30, m31, m32);
        Vector3 ax = new(m00, m01, m02);
        Vector3 ay = new(m10, m11, m12);
        Vector3 az = new(m20, m21, m22);
        scaling = new Vector3(ax.Length, ay.Length, az.Length);
        rotation = Quaternion.Identity;
        if (!(scaling.x > 0 && scaling.y > 0 && scaling.z > 0))
            return false;
        ax /= scaling.x;
        ay /= scaling.y;
        az /= scaling.z;
        if (ax.Cross(ay).Dot(az) < 0)
        {
            scaling.x = -scaling.x;
            ax = -ax;
        }
        bool exact = Math.Abs(ax.Dot(ay)) < ShearTolerance && Math.Abs(ax.Dot(az)) < ShearTolerance
            && Math.Abs(ay.Dot(az)) < ShearTolerance && Math.Abs(m33 - 1) < ProjectionTolerance
            && Math.Max(Math.Max(Math.Abs(m03), Math.Abs(m13)), Math.Abs(m23)) < ProjectionTolerance;
        ay = (ay - ax * ax.Dot(ay)).Normalize();
        az = ax.Cross(ay);
        rotation = Quaternion.FromAxes(ax, ay, az);
        return exact;
    }

    /// <summary>Whether all elements are equal.</summary>
    public readonly bool Equals(Matrix4 other) =>
        m00.Equals(other.m00) && m01.Equals(other.m01) && m02.Equals(other.m02) && m03.Equals(other.m03) &&
        m10.Equals(other.m10) && m11.Equals(other.m11) && m12.Equals(other.m12) && m13.Equals(other.m13) &&
        m20.Equals(other.m20) && m21.Equals(other.m21) && m22.Equals(other.m22) && m23.Equals(other.m23) &&
        m30.Equals(other.m30) && m31.Equals(other.m31) && m32.Equals(other.m32) && m33.Equals(other.m33);

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is Matrix4 other && Equals(other);

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

    /// <summary>Transforms the direction: the translation has no effect.</summary>
    internal readonly Vector3 TransformDirection(Vector3 v) => new(
        v.x * m00 + v.y * m10 + v.z * m20,
        v.x * m01 + v.y * m11 + v.z * m21,
        v.x * m02 + v.y * m12 + v.z * m22);

    /// <summary>Whether all elements are equal.</summary>
    public static bool operator ==(Matrix4 a, Matrix4 b) => a.Equals(b);

    /// <summary>Whether an element differs.</summary>
    public static bool operator !=(Matrix4 a, Matrix4 b) => !a.Equals(b);

    /// <summary>The matrix product; <paramref name="a"/> works first.</summary>
    public static Matrix4 operator *(Matrix4 a, Matrix4 b) =>
        new(
            a.m00 * b.m00 + a.m01 * b.m10 + a.m02 * b.m20 + a.m03 * b.m30,
            a.m00 * b.m01 + a.m01 * b.m11 + a.m02 * b.m21 + a.m03 * b.m31,
            a.m00 * b.m02 + a.m01 * b.m12 + a.m02 * b.m22 + a.m03 * b.m32,
            a.m00 * b.m03 + a.m01 * b.m13 + a.m02 * b.m23 + a.m03 * b.m33,
            a.m10 * b.m00 + a.m11 * b.m10 + a.m12 * b.m20 + a.m13 * b.m30,
            a.m10 * b.m01 + a.m11 * b.m11 + a.m12 * b.m21 + a.m13 * b.m31,
            a.m10 * b.m02 + a.m11 * b.m12 + a.m12 * b.m22 + a.m13 * b.m32,
            a.m10 * b.m03 + a.m11 * b.m13 + a.m12 * b.m23 + a.m13 * b.m33,
            a.m20 * b.m00 + a.m21 * b.m10 + a.m22 * b.m20 + a.m23 * b.m30,
            a.m20 * b.m01 + a.m21 * b.m11 + a.m22 * b.m21 + a.m23 * b.m31,
            a.m20 * b.m02 + a.m21 * b.m12 + a.m22 * b.m22 + a.m23 * b.m32,
            a.m20 * b.m03 + a.m21 * b.m13 + a.m22 * b.m23 + a.m23 * b.m33,
            a.m30 * b.m00 + a.m31 * b.m10 + a.m32 * b.m20 + a.m33 * b.m30,
            a.m30 * b.m01 + a.m31 * b.m11 + a.m32 * b.m21 + a.m33 * b.m31,
            a.m30 * b.m02 + a.m31 * b.m12 + a.m32 * b.m22 + a.m33 * b.m32,
            a.m30 * b.m03 + a.m31 * b.m13 + a.m32 * b.m23 + a.m33 * b.m33);

    /// <summary>Transforms a point; the result is divided by its w.</summary>
    public static Vector3 operator *(Vector3 point, Matrix4 m)
    {
        Vector4 v = new Vector4(point, 1) * m;
        return v.w is 1 or 0 ? new Vector3(v.x, v.y, v.z) : new Vector3(v.x / v.w, v.y / v.w, v.z / v.w);
    }

    /// <summary>Transforms a homogeneous vector.</summary>
    public static Vector4 operator *(Vector4 v, Matrix4 m) => new(
        v.x * m.m00 + v.y * m.m10 + v.z * m.m20 + v.w * m.m30,
        v.x * m.m01 + v.y * m.m11 + v.z * m.m21 + v.w * m.m31,
        v.x * m.m02 + v.y * m.m12 + v.z * m.m22 + v.w * m.m32,
        v.x * m.m03 + v.y * m.m13 + v.z * m.m23 + v.w * m.m33);

    /// <summary>Widens to double precision.</summary>
    public static implicit operator Matrix4(FMatrix4 m) => new(m);
}
