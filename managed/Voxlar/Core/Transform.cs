using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>The transform of a node relative to its parent, in parts. All angles are degrees.</summary>
/// <remarks>
/// <para>
/// A point is scaled, then turned by the inverse of the post-rotation, by the rotation and by the
/// pre-rotation, then translated. There are no pivots. Euler angles are applied about x, then y, then z.
/// <see cref="EulerAngles"/> and
/// <see cref="Rotation"/> are two views of one rotation: setting one changes the other.
/// </para>
/// <para>
/// Setting <see cref="TransformMatrix"/> sets translation, rotation and scale, and clears pre- and
/// post-rotation. A matrix that these parts cannot express, a sheared or singular one, is kept as it is; the
/// parts then hold the nearest values, and setting one of them drops the matrix in favour of the parts.
/// </para>
/// <para>The geometric transform moves the entities of the node and nothing below it.</para>
/// </remarks>
public sealed class Transform : VbrObject
{
    private Vector3 _geometricTranslation;
    private Vector3 _geometricScaling = Vector3.UnitScale;
    private Vector3 _geometricRotation;
    private Vector3 _translation;
    private Vector3 _scale = Vector3.UnitScale;
    private Vector3 _preRotation;
    private Vector3 _postRotation;
    private Vector3 _eulerAngles;
    private Quaternion _rotation = Quaternion.Identity;
    private Matrix4 _matrix = Matrix4.Identity;
    private bool _matrixIsCurrent = true;

    internal Transform()
    {
    }

    /// <summary>The translation of the entities alone.</summary>
    public Vector3 GeometricTranslation
    {
        get => _geometricTranslation;
        set
        {
            _geometricTranslation = value;
            HasGeometricTransform = true;
        }
    }

    /// <summary>The scale of the entities alone.</summary>
    public Vector3 GeometricScaling
    {
        get => _geometricScaling;
        set
        {
            _geometricScaling = value;
            HasGeometricTransform = true;
        }
    }

    /// <summary>The rotation of the entities alone: Euler angles in degrees.</summary>
    public Vector3 GeometricRotation
    {
        get => _geometricRotation;
        set
        {
            _geometricRotation = value;
            HasGeometricTransform = true;
        }
    }

    /// <summary>The translation.</summary>
    public Vector3 Translation
    {
        get => _translation;
        set
        {
            _translation = value;
            _matrixIsCurrent = false;
        }
    }

    /// <summary>The scale.</summary>
    public Vector3 Scale
    {
        get => _scale;
        set
        {
            _scale = value;
            _matrixIsCurrent = false;
        }
    }

    /// <summary>A rotation after <see cref="Rotation"/>: Euler angles in degrees.</summary>
    public Vector3 PreRotation
    {
        get => _preRotation;
        set
        {
            _preRotation = value;
            _matrixIsCurrent = false;
        }
    }

    /// <summary>A rotation whose inverse works before <see cref="Rotation"/>: Euler angles in
    /// degrees.</summary>
    public Vector3 PostRotation
    {
        get => _postRotation;
        set
        {
            _postRotation = value;
            _matrixIsCurrent = false;
        }
    }

    /// <summary>The rotation as Euler angles in degrees.</summary>
    public Vector3 EulerAngles
    {
        get => _eulerAngles;
        set
        {
            _eulerAngles = value;
            _rotation = FromDegrees(value);
            _matrixIsCurrent = false;
        }
    }

    /// <summary>The rotation as a quaternion.</summary>
    public Quaternion Rotation
    {
        get => _rotation;
        set
        {
            _rotation = value;
            _eulerAngles = MathUtils.ToDegree(value.EulerAngles());
            _matrixIsCurrent = false;
        }
    }

    /// <summary>The whole transform as a matrix, without the geometric transform.</summary>
    public Matrix4 TransformMatrix
    {
        get
        {
            if (!_matrixIsCurrent)
            {
                _matrix = Compose();
                _matrixIsCurrent = true;
            }
            return _matrix;
        }
        set
        {
            value.Decompose(out _translation, out _scale, out Quaternion rotation);
            Rotation = rotation;
            _preRotation = Vector3.Origin;
            _postRotation = Vector3.Origin;
            _matrix = value;
            _matrixIsCurrent = true;
        }
    }

    internal bool HasGeometricTransform { get; private set; }

    internal Matrix4 GeometricMatrix => HasGeometricTransform
        ? Matrix4.Scale(_geometricScaling) * FromDegrees(_geometricRotation).ToMatrix()
            * Matrix4.Translate(_geometricTranslation)
        : Matrix4.Identity;

    /// <summary>Sets <see cref="GeometricTranslation"/>.</summary>
    /// <returns>This transform.</returns>
    public Transform SetGeometricTranslation(double x, double y, double z)
    {
        GeometricTranslation = new Vector3(x, y, z);
        return this;
    }

    /// <summary>Sets <see cref="GeometricScaling"/>.</summary>
    /// <returns>This transform.</returns>
    public Transform SetGeometricScaling(double sx, double sy, double sz)
    {
        GeometricScaling = new Vector3(sx, sy, sz);
        return this;
    }

    /// <summary>Sets <see cref="GeometricRotation"/>, in degrees.</summary>
    /// <returns>This transform.</returns>
    public Transform SetGeometricRotation(double rx, double ry, double rz)
    {
        GeometricRotation = new Vector3(rx, ry, rz);
        return this;
    }

    /// <summary>Sets <see cref="Translation"/>.</summary>
    /// <returns>This transform.</returns>
    public Transform SetTranslation(double tx, double ty, double tz)
    {
        Translation = new Vector3(tx, ty, tz);
        return this;
    }

    /// <summary>Sets <see cref="Scale"/>.</summary>
    /// <returns>This transform.</returns>
    public Transform SetScale(double sx, double sy, double sz)
    {
        Scale = new Vector3(sx, sy, sz);
        return this;
    }

    /// <summary>Sets <see cref="EulerAngles"/>, in degrees.</summary>
    /// <returns>This transform.</returns>
    public Transform SetEulerAngles(double rx, double ry, double rz)
    {
        EulerAngles = new Vector3(rx, ry, rz);
        return this;
    }

    /// <summary>Sets <see cref="Rotation"/>.</summary>
    /// <returns>This transform.</returns>
    public Transform SetRotation(double rw, double rx, double ry, double rz)
    {
        Rotation = new Quaternion(rw, rx, ry, rz);
        return this;
    }

    /// <summary>Sets <see cref="PreRotation"/>, in degrees.</summary>
    /// <returns>This transform.</returns>
    public Transform SetPreRotation(double rx, double ry, double rz)
    {
        PreRotation = new Vector3(rx, ry, rz);
        return this;
    }

    /// <summary>Sets <see cref="PostRotation"/>, in degrees.</summary>
    /// <returns>This transform.</returns>
    public Transform SetPostRotation(double rx, double ry, double rz)
    {
        PostRotation = new Vector3(rx, ry, rz);
        return this;
    }

    /// <summary>Puts everything back to the identity.</summary>
    internal void Reset()
    {
        TransformMatrix = Matrix4.Identity;
        _geometricTranslation = Vector3.Origin;
        _geometricRotation = Vector3.Origin;
        _geometricScaling = Vector3.UnitScale;
        HasGeometricTransform = false;
        ClearUserProperties();
    }

    private static Quaternion FromDegrees(Vector3 angles) => Quaternion.FromEulerAngle(MathUtils.ToRadian(angles));

    private Matrix4 Compose()
    {
        Quaternion rotation = _rotation;
        if (_postRotation != Vector3.Origin)
            rotation = FromDegrees(_postRotation).Conjugate().Concat(rotation);
        if (_preRotation != Vector3.Origin)
            rotation = rotation.Concat(FromDegrees(_preRotation));
        Matrix4 m = rotation.ToMatrix();
        return new Matrix4(
            m.m00 * _scale.x, m.m01 * _scale.x, m.m02 * _scale.x, 0,
            m.m10 * _scale.y, m.m11 * _scale.y, m.m12 * _scale.y, 0,
            m.m20 * _scale.z, m.m21 * _scale.z, m.m22 * _scale.z, 0,
            _translation.x, _translation.y, _translation.z, 1);
    }
}
