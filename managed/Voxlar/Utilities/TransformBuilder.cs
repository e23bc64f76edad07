using System;

namespace Velbor.Voxlar.Utilities;

/// <summary>Builds a matrix step by step; each step is added on the side that <see cref="ComposeOrder"/>
/// names.</summary>
public class TransformBuilder
{
    /// <summary>Starts with a matrix.</summary>
    public TransformBuilder(Matrix4 initial, ComposeOrder order)
    {
        Matrix = initial;
        ComposeOrder = order;
    }

    /// <summary>Starts with the identity.</summary>
    public TransformBuilder(ComposeOrder order)
        : this(Matrix4.Identity, order)
    {
    }

    /// <summary>The matrix so far.</summary>
    public Matrix4 Matrix { get; set; }

    /// <summary>On which side the next step is added.</summary>
    public ComposeOrder ComposeOrder { get; set; }

    /// <summary>Adds a matrix on the side that <see cref="ComposeOrder"/> names.</summary>
    public void Compose(Matrix4 m) =>
        Matrix = ComposeOrder == ComposeOrder.Append ? Matrix * m : m * Matrix;

    /// <summary>Adds a matrix that works after all so far.</summary>
    public TransformBuilder Append(Matrix4 m)
    {
        Matrix *= m;
        return this;
    }

    /// <summary>Adds a matrix that works before all so far.</summary>
    public TransformBuilder Prepend(Matrix4 m)
    {
        Matrix = m * Matrix;
        return this;
    }

    /// <summary>Adds a step that makes the named old axes the new x, y and z.</summary>
    /// <param name="newX">The axis whose coordinate becomes x.</param>
    /// <param name="newY">The axis whose coordinate becomes y.</param>
    /// <param name="newZ">The axis whose coordinate becomes z.</param>
    public TransformBuilder Rearrange(Axis newX, Axis newY, Axis newZ)
    {
        static Vector3 Direction(Axis axis) => axis switch
        {
            Axis.XAxis => Vector3.XAxis,
            Axis.YAxis => Vector3.YAxis,
            Axis.ZAxis => Vector3.ZAxis,
            _ => throw new ArgumentOutOfRangeException(nameof(axis), axis, "There is no such axis."),
        };

        Vector3 x = Direction(newX);
        Vector3 y = Direction(newY);
        Vector3 z = Direction(newZ);
        return Add(new Matrix4(x.x, y.x, z.x, 0, x.y, y.y, z.y, 0, x.z, y.z, z.z, 0, 0, 0, 0, 1));
    }

    /// <summary>Adds the same scaling along all axes.</summary>
    public TransformBuilder Scale(double s) => Add(Matrix4.Scale(s));

    /// <summary>Adds a scaling.</summary>
    public TransformBuilder Scale(double x, double y, double z) => Add(Matrix4.Scale(x, y, z));

    /// <summary>Adds a scaling.</summary>
    public TransformBuilder Scale(Vector3 s) => Add(Matrix4.Scale(s));

    /// <summary>Adds a rotation about an axis, in degrees.</summary>
    public TransformBuilder RotateDegree(double angle, Vector3 axis) => RotateRadian(MathUtils.ToRadian(angle), axis);

    /// <summary>Adds rotations about x, y and z in degrees, in the given order.</summary>
    public void RotateDegree(Vector3 rot, RotationOrder order) => RotateRadian(MathUtils.ToRadian(rot), order);

    /// <summary>Adds a rotation about an axis, in radians.</summary>
    public TransformBuilder RotateRadian(double angle, Vector3 axis) => Add(Matrix4.Rotate(angle, axis));

    /// <summary>Adds rotations about x, y and z in radians, in the given order.</summary>
    public void RotateRadian(Vector3 rot, RotationOrder order)
    {
        Matrix4 x = Matrix4.Rotate(rot.x, Vector3.XAxis);
        Matrix4 y = Matrix4.Rotate(rot.y, Vector3.YAxis);
        Matrix4 z = Matrix4.Rotate(rot.z, Vector3.ZAxis);
        Add(order switch
        {
            RotationOrder.XYZ => x * y * z,
            RotationOrder.XZY => x * z * y,
            RotationOrder.YZX => y * z * x,
            RotationOrder.YXZ => y * x * z,
            RotationOrder.ZXY => z * x * y,
            RotationOrder.ZYX => z * y * x,
            _ => throw new ArgumentOutOfRangeException(nameof(order), order, "There is no such order."),
        });
    }

    /// <summary>Adds rotations about x, then y, then z, in degrees.</summary>
    public TransformBuilder RotateEulerDegree(double degX, double degY, double degZ) =>
        RotateEulerRadian(MathUtils.ToRadian(degX, degY, degZ));

    /// <summary>Adds rotations about x, then y, then z, in radians.</summary>
    public TransformBuilder RotateEulerRadian(double x, double y, double z) => Add(Matrix4.RotateFromEuler(x, y, z));

    /// <summary>Adds rotations about x, then y, then z, in radians.</summary>
    public TransformBuilder RotateEulerRadian(Vector3 r) => Add(Matrix4.RotateFromEuler(r));

    /// <summary>Adds a rotation.</summary>
    public TransformBuilder Rotate(Quaternion q) => Add(q.ToMatrix());

    /// <summary>Adds a translation.</summary>
    public TransformBuilder Translate(double tx, double ty, double tz) => Add(Matrix4.Translate(tx, ty, tz));

    /// <summary>Adds a translation.</summary>
    public TransformBuilder Translate(Vector3 v) => Add(Matrix4.Translate(v));

    /// <summary>Starts again with the identity.</summary>
    public void Reset() => Matrix = Matrix4.Identity;

    private TransformBuilder Add(Matrix4 m)
    {
        Compose(m);
        return this;
    }
}
