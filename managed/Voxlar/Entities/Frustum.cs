using System;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// The view of a camera or a light. It looks from the place of its node, in world space, either in a fixed
/// direction or at a fixed target; setting <see cref="Direction"/>, <see cref="LookAt"/> or <see
/// cref="Target"/> chooses which.
/// </summary>
public abstract class Frustum : Entity, IOrientable
{
    private static readonly EntityRendererKey RendererKey = new("Frustum");

    private Vector3 _direction = -Vector3.ZAxis;
    private Vector3 _lookAt;
    private Node? _target;
    private double _aspect = 1;

    private protected Frustum(string name)
        : base(name)
    {
    }

    /// <summary>What stays fixed when the node moves; the direction at first.</summary>
    public RotationMode RotationMode { get; set; } = RotationMode.FixedDirection;

    /// <summary>The distance at which the view begins; 0.1 at first.</summary>
    public double NearPlane { get; set; } = 0.1;

    /// <summary>The distance at which the view ends; 1000 at first.</summary>
    public double FarPlane { get; set; } = 1000;

    /// <summary>The width of the view divided by its height; 1 at first.</summary>
    /// <exception cref="ArgumentOutOfRangeException">The value is not positive.</exception>
    public double Aspect
    {
        get => _aspect;
        set
        {
            if (!(value > 0) || double.IsInfinity(value))
                throw new ArgumentOutOfRangeException(nameof(value),
                    "The aspect ratio is a positive number.");
            double old = _aspect;
            _aspect = value;
            OnAspectChanged(old);
        }
    }

    /// <summary>The height of an orthographic view, in the unit of the scene; 100 at first.</summary>
    public double OrthoHeight { get; set; } = 100;

    /// <summary>The direction that is upward in the view; y at first.</summary>
    public Vector3 Up { get; set; } = Vector3.YAxis;

    /// <summary>
    /// The point looked at, in world space: the target node's place if there is one, the fixed point in the
    /// mode of a fixed target, and the point one unit ahead otherwise. Setting it fixes the point and drops
    /// the target node.
    /// </summary>
    public Vector3 LookAt
    {
        get
        {
            if (RotationMode == RotationMode.FixedDirection)
                return Position + _direction;
            return _target?.GlobalTransform.Translation ?? _lookAt;
        }
        set
        {
            _lookAt = value;
            _target = null;
            RotationMode = RotationMode.FixedTarget;
        }
    }

    /// <summary>
    /// The direction of the view, of length 1, in world space. Setting it, to a vector of any length, fixes
    /// the direction and drops the target node. A view that looks at its own place keeps the direction it
    /// had.
    /// </summary>
    /// <exception cref="ArgumentException">The vector has no direction.</exception>
    public Vector3 Direction
    {
        get
        {
            if (RotationMode == RotationMode.FixedDirection)
                return _direction;
            Vector3 toTarget = (LookAt - Position).Normalize();
            return toTarget.Length == 0 ? _direction : toTarget;
        }
        set
        {
            Vector3 direction = value.Normalize();
            if (!(direction.Length > 0.5))
                throw new ArgumentException("A vector of length 0 has no direction.", nameof(value));
            _direction = direction;
            _target = null;
            RotationMode = RotationMode.FixedDirection;
        }
    }

    /// <summary>
    /// The node looked at, or null. Setting one makes the target fixed; setting null leaves the view looking
    /// where it did.
    /// </summary>
    public Node? Target
    {
        get => _target;
        set
        {
            if (value is null)
            {
                _lookAt = LookAt;
                _target = null;
                return;
            }
            _target = value;
            RotationMode = RotationMode.FixedTarget;
        }
    }

    /// <summary>
    /// The place of the first node that holds this entity, in world space; the origin without a node.
    /// </summary>
    private protected Vector3 Position => ParentNode?.GlobalTransform.Translation ?? Vector3.Origin;

    /// <inheritdoc/>
    public override EntityRendererKey GetEntityRendererKey() => RendererKey;

    private protected virtual void OnAspectChanged(double old)
    {
    }
}
