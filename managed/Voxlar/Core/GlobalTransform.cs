using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>The transform of a node into the space of its scene; it always shows the present state of the
/// node.</summary>
public sealed class GlobalTransform
{
    private readonly Node _node;

    internal GlobalTransform(Node node) => _node = node;

    /// <summary>The translation.</summary>
    public Vector3 Translation
    {
        get
        {
            Matrix4 m = TransformMatrix;
            return new Vector3(m.m30, m.m31, m.m32);
        }
    }

    /// <summary>The scale; where the matrix is sheared, the nearest.</summary>
    public Vector3 Scale
    {
        get
        {
            TransformMatrix.Decompose(out _, out Vector3 scale, out _);
            return scale;
        }
    }

    /// <summary>The rotation as Euler angles in degrees, applied about x, then y, then z.</summary>
    public Vector3 EulerAngles => MathUtils.ToDegree(Rotation.EulerAngles());

    /// <summary>The rotation; where the matrix is sheared, the nearest.</summary>
    public Quaternion Rotation
    {
        get
        {
            TransformMatrix.Decompose(out _, out _, out Quaternion rotation);
            return rotation;
        }
    }

    /// <summary>The whole transform, without the geometric transform of the node.</summary>
    public Matrix4 TransformMatrix => _node.EvaluateGlobalTransform(false);

    /// <summary>The matrix.</summary>
    public override string ToString() => TransformMatrix.ToString();
}
