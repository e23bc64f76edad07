using System;
using System.Globalization;

namespace Velbor.Voxlar.Utilities;

/// <summary>A quaternion of double precision; one of length 1 stands for a rotation.</summary>
/// <remarks>
/// All angles are radians. Euler angles are applied first about x, then about y, then about z.
/// <c>a.Concat(b)</c> does the rotation a first and then b, as <see cref="Matrix4.Concatenate"/> does; the
/// product a * b is the product of quaternions and so does b first.
/// </remarks>
public struct Quaternion : IEquatable<Quaternion>
{
    /// <summary>The rotation that changes nothing, (1, 0, 0, 0).</summary>
    public static readonly Quaternion Identity = new(1, 0, 0, 0);

    // Above this cosine two rotations are so near that the sine of their angle is no safe divisor.
    private const double NearlyParallel = 0.9999995;

    /// <summary>The real part.</summary>
    public double w;

    /// <summary>The first imaginary part.</summary>
    public double x;

    /// <summary>The second imaginary part.</summary>
    public double y;

    /// <summary>The third imaginary part.</summary>
    public double z;

    /// <summary>Makes a quaternion out of its parts, the real one first.</summary>
    public Quaternion(double w, double x, double y, double z)
    {
        this.w = w;
        this.x = x;
        this.y = y;
        this.z = z;
    }

    /// <summary>The length.</summary>
    public readonly double Length => Math.Sqrt(Dot(this));

    /// <summary>A rotation about x, then y, then z.</summary>
    /// <param name="pitch">The angle about x in radians.</param>
    /// <param name="yaw">The angle about y in radians.</param>
    /// <param name="roll">The angle about z in radians.</param>
    public static Quaternion FromEulerAngle(double pitch, double yaw, double roll)
    {
        (double sx, double cx) = Math.SinCos(pitch / 2);
        (double sy, double cy) = Math.SinCos(yaw / 2);
        (double sz, double cz) = Math.SinCos(roll / 2);
        return new Quaternion(
            cx * cy * cz + sx * sy * sz,
            sx * cy * cz - cx * sy * sz,
            cx * sy * cz + sx * cy * sz,
            cx * cy * sz - sx * sy * cz);
    }

    /// <summary>A rotation about x, then y, then z by the given angles in radians.</summary>
    public static Quaternion FromEulerAngle(Vector3 eulerAngle) =>
        FromEulerAngle(eulerAngle.x, eulerAngle.y, eulerAngle.z);

    /// <summary>The conjugate: the imaginary parts with the other sign.</summary>
    public readonly Quaternion Conjugate() => new(w, -x, -y, -z);

    /// <summary>The inverse.</summary>
    /// <exception cref="InvalidOperationException">The quaternion is zero.</exception>
    public readonly Quaternion Inverse()
    {
        double norm = Dot(this);
        if (!(norm > 0))
            throw new InvalidOperationException("The zero quaternion has no inverse.");
        return new Quaternion(w / norm, -x / norm, -y / norm, -z / norm);
    }

    /// <summary>The dot product of the four parts.</summary>
    public readonly double Dot(Quaternion q) => w * q.w + x * q.x + y * q.y + z * q.z;

    /// <summary>The angles about x, y and z in radians that give this rotation.</summary>
    /// <remarks>With y at a right angle x and z turn about the same axis; z is then 0.</remarks>
    public readonly Vector3 EulerAngles()
    {
        Matrix4 m = ToMatrix();
        double sinY = Math.Clamp(-m.m02, -1, 1);
        if (Math.Abs(sinY) > 1 - 1e-12)
            return new Vector3(Math.Atan2(-m.m21, m.m11), Math.CopySign(Math.PI / 2, sinY), 0);
        return new Vector3(Math.Atan2(m.m12, m.m22), Math.Asin(sinY), Math.Atan2(m.m01, m.m00));
    }

    /// <summary>The quaternion of length 1 in the same direction; zero gives the identity.</summary>
    public readonly Quaternion Normalize()
    {
        double length = Length;
        return length == 0 ? Identity : new Quaternion(w / length, x / length, y / length, z / length);
    }

    /// <summary>Gives the rotation as an angle and an axis.</summary>
    /// <param name="angle">The angle in radians, from 0 to 2 pi.</param>
    /// <param name="axis">The axis, of length 1; the x axis when there is no rotation.</param>
    public readonly void ToAngleAxis(out double angle, out Vector3 axis)
    {
        Vector3 imaginary = new(x, y, z);
        double sine = imaginary.Length;
        angle = 2 * Math.Atan2(sine, w);
        if (sine > 0)
        {
            axis = imaginary / sine;
            return;
        }
        angle = 0;
        axis = Vector3.XAxis;
    }

    /// <summary>The rotation that does this one first and then <paramref name="rhs"/>.</summary>
    public readonly Quaternion Concat(Quaternion rhs) => rhs * this;

    /// <summary>A rotation by <paramref name="a"/> radians about <paramref name="axis"/>.</summary>
    public static Quaternion FromAngleAxis(double a, Vector3 axis)
    {
        (double sin, double cos) = Math.SinCos(a / 2);
        Vector3 unit = axis.Normalize();
        return new Quaternion(cos, unit.x * sin, unit.y * sin, unit.z * sin);
    }

    /// <summary>The shortest rotation that turns the direction <paramref name="orig"/> into
    /// <paramref name="dest"/>.
    /// </summary>
    public static Quaternion FromRotation(Vector3 orig, Vector3 dest)
    {
        Vector3 from = orig.Normalize();
        Vector3 to = dest.Normalize();
        double cosine = from.Dot(to);
        if (cosine < -1 + 1e-12)
        {
            // Opposite directions: any perpendicular axis will do.
            Vector3 axis = Vector3.XAxis.Cross(from);
            if (axis.Length2 < 1e-12)
                axis = Vector3.YAxis.Cross(from);
            return FromAngleAxis(Math.PI, axis);
        }
        Vector3 normal = from.Cross(to);
        return new Quaternion(1 + cosine, normal.x, normal.y, normal.z).Normalize();
    }

    /// <summary>The rotation as a matrix; the quaternion need not have length 1.</summary>
    public readonly Matrix4 ToMatrix()
    {
        Quaternion q = Normalize();
        double xx = q.x * q.x;
        double yy = q.y * q.y;
        double zz = q.z * q.z;
        double xy = q.x * q.y;
        double xz = q.x * q.z;
        double yz = q.y * q.z;
        double wx = q.w * q.x;
        double wy = q.w * q.y;
        double wz = q.w * q.z;
        return new Matrix4(
            1 - 2 * (yy + zz), 2 * (xy + wz), 2 * (xz - wy), 0,
            2 * (xy - wz), 1 - 2 * (xx + zz), 2 * (yz + wx), 0,
            2 * (xz + wy), 2 * (yz - wx), 1 - 2 * (xx + yy), 0,
            0, 0, 0, 1);
    }

    /// <summary>Spherical interpolation along the shorter way.</summary>
    /// <param name="t">0 gives <paramref name="from"/>, 1 gives <paramref name="to"/>.</param>
    /// <param name="from">The rotation at 0.</param>
    /// <param name="to">The rotation at 1.</param>
    public static Quaternion Interpolate(float t, Quaternion from, Quaternion to)
    {
        Quaternion start = from.Normalize();
        Quaternion end = to.Normalize();
        double cosine = start.Dot(end);
        if (cosine < 0)
        {
            end = new Quaternion(-end.w, -end.x, -end.y, -end.z);
            cosine = -cosine;
        }
        double weight0 = 1 - t;
        double weight1 = t;
        if (cosine < NearlyParallel)
        {
            double angle = Math.Acos(cosine);
            double sine = Math.Sin(angle);
            weight0 = Math.Sin(weight0 * angle) / sine;
            weight1 = Math.Sin(weight1 * angle) / sine;
        }
        return new Quaternion(
            start.w * weight0 + end.w * weight1,
            start.x * weight0 + end.x * weight1,
            start.y * weight0 + end.y * weight1,
            start.z * weight0 + end.z * weight1).Normalize();
    }

    /// <summary>Whether all parts are equal; q and -q are not, though they turn alike.</summary>
    public readonly bool Equals(Quaternion other) =>
        w.Equals(other.w) && x.Equals(other.x) && y.Equals(other.y) && z.Equals(other.z);

    /// <inheritdoc/>
    public override readonly bool Equals(object? obj) => obj is Quaternion other && Equals(other);

    /// <inheritdoc/>
    public override readonly int GetHashCode() => HashCode.Combine(w, x, y, z);

    /// <summary>The parts in parentheses, the real one first.</summary>
    public override readonly string ToString() =>
        string.Create(CultureInfo.InvariantCulture, $"({w}, {x}, {y}, {z})");

    /// <summary>The rotation whose matrix has the three perpendicular unit vectors as its rows.</summary>
    internal static Quaternion FromAxes(Vector3 ax, Vector3 ay, Vector3 az)
    {
        double trace = ax.x + ay.y + az.z;
        if (trace > 0)
        {
            double s = 2 * Math.Sqrt(trace + 1);
            return new Quaternion(s / 4, (ay.z - az.y) / s, (az.x - ax.z) / s, (ax.y - ay.x) / s).Normalize();
        }
        if (ax.x >= ay.y && ax.x >= az.z)
        {
            double s = 2 * Math.Sqrt(Math.Max(0, 1 + ax.x - ay.y - az.z));
            return new Quaternion((ay.z - az.y) / s, s / 4, (ax.y + ay.x) / s, (az.x + ax.z) / s).Normalize();
        }
        if (ay.y >= az.z)
        {
            double s = 2 * Math.Sqrt(Math.Max(0, 1 + ay.y - ax.x - az.z));
            return new Quaternion((az.x - ax.z) / s, (ax.y + ay.x) / s, s / 4, (ay.z + az.y) / s).Normalize();
        }
        double t = 2 * Math.Sqrt(Math.Max(0, 1 + az.z - ax.x - ay.y));
        return new Quaternion((ax.y - ay.x) / t, (az.x + ax.z) / t, (ay.z + az.y) / t, t / 4).Normalize();
    }

    /// <summary>Turns the vector.</summary>
    internal readonly Vector3 Rotate(Vector3 v)
    {
        Quaternion q = Normalize();
        Vector3 u = new(q.x, q.y, q.z);
        Vector3 t = u.Cross(v) * 2;
        return v + t * q.w + u.Cross(t);
    }

    /// <summary>Whether all parts are equal.</summary>
    public static bool operator ==(Quaternion a, Quaternion b) =>
        a.w == b.w && a.x == b.x && a.y == b.y && a.z == b.z;

    /// <summary>Whether a part differs.</summary>
    public static bool operator !=(Quaternion a, Quaternion b) => !(a == b);

    /// <summary>The product of quaternions; the rotation <paramref name="b"/> works first.</summary>
    public static Quaternion operator *(Quaternion a, Quaternion b) => new(
        a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z,
        a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
        a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
        a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w);
}
