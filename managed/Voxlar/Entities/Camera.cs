using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// A camera. Its horizontal and vertical fields of view and its aspect ratio always fit each other; the
/// aperture mode tells which of them gives way when another is set.
/// </summary>
public class Camera : Frustum
{
    private const double Degree = Math.PI / 180;

    // The tangent of half the vertical field of view; with the aspect ratio it gives all angles.
    private double _tangent = Math.Tan(22.5 * Degree);
    private double _height = 1;

    /// <summary>Makes a perspective camera.</summary>
    public Camera()
        : this("", ProjectionType.Perspective)
    {
    }

    /// <summary>Makes a camera.</summary>
    /// <param name="projectionType">How it projects.</param>
    public Camera(ProjectionType projectionType)
        : this("", projectionType)
    {
    }

    /// <summary>Makes a perspective camera.</summary>
    /// <param name="name">Its name.</param>
    public Camera(string name)
        : this(name, ProjectionType.Perspective)
    {
    }

    /// <summary>Makes a camera.</summary>
    /// <param name="name">Its name.</param>
    /// <param name="projectionType">How it projects.</param>
    public Camera(string name, ProjectionType projectionType)
        : base(name)
    {
        ProjectionType = projectionType;
    }

    /// <summary>Which field of view is the given one; the vertical one at first.</summary>
    public ApertureMode ApertureMode { get; set; } = ApertureMode.Vertical;

    /// <summary>
    /// The field of view in degrees, between 0 and 180: the horizontal one in horizontal aperture mode, the
    /// vertical one in all others. 45 at first.
    /// </summary>
    public double FieldOfView
    {
        get => ApertureMode == ApertureMode.Horizontal ? FieldOfViewX : FieldOfViewY;
        set
        {
            if (ApertureMode == ApertureMode.Horizontal)
                _tangent = HalfTangent(value) / Aspect;
            else
                _tangent = HalfTangent(value);
        }
    }

    /// <summary>
    /// The horizontal field of view in degrees, between 0 and 180. Setting it changes the vertical one at the
    /// same aspect ratio; when both are given, it changes the aspect ratio.
    /// </summary>
    public double FieldOfViewX
    {
        get => 2 * Math.Atan(_tangent * Aspect) / Degree;
        set
        {
            double tangent = HalfTangent(value);
            if (ApertureMode == ApertureMode.HorizAndVert)
                Aspect = tangent / _tangent;
            else
                _tangent = tangent / Aspect;
        }
    }

    /// <summary>
    /// The vertical field of view in degrees, between 0 and 180. Setting it changes the horizontal one at the
    /// same aspect ratio; when both are given, it changes the aspect ratio.
    /// </summary>
    public double FieldOfViewY
    {
        get => 2 * Math.Atan(_tangent) / Degree;
        set
        {
            double tangent = HalfTangent(value);
            double horizontal = _tangent * Aspect;
            _tangent = tangent;
            if (ApertureMode == ApertureMode.HorizAndVert)
                Aspect = horizontal / tangent;
        }
    }

    /// <summary>The width of the picture; setting it changes the aspect ratio.</summary>
    public double Width
    {
        get => _height * Aspect;
        set => Aspect = Positive(value) / _height;
    }

    /// <summary>
    /// The height of the picture; setting it keeps the width and changes the aspect ratio. 1 at first.
    /// </summary>
    public double Height
    {
        get => _height;
        set
        {
            double width = Width;
            _height = Positive(value);
            Aspect = width / _height;
        }
    }

    /// <summary>
    /// The width of the picture divided by its height: the same as <see cref="Frustum.Aspect"/>.
    /// </summary>
    public double AspectRatio
    {
        get => Aspect;
        set => Aspect = value;
    }

    /// <summary>The magnification of an orthographic view in x and y; 1 in both at first.</summary>
    public Vector2 Magnification { get; set; } = new(1, 1);

    /// <summary>How the camera projects.</summary>
    public ProjectionType ProjectionType { get; set; }

    /// <summary>
    /// Moves the camera's node in the direction of the view. In the mode of a fixed target the camera keeps
    /// looking at it.
    /// </summary>
    /// <param name="distance">How far, in the unit of world space; negative moves back.</param>
    /// <exception cref="InvalidOperationException">
    /// No node holds the camera, so that it has no place.
    /// </exception>
    public void MoveForward(double distance)
    {
        Node node = ParentNode
            ?? throw new InvalidOperationException(
                "A camera without a node has no place that could be moved.");
        Vector3 place = node.GlobalTransform.Translation + Direction * distance;
        if (node.ParentNode is Node parent)
            place *= parent.GlobalTransform.TransformMatrix.Inverse();
        node.Transform.Translation = place;
    }

    // The given field of view stays; the one that is derived follows from the new aspect ratio by itself.
    private protected override void OnAspectChanged(double old)
    {
        if (ApertureMode == ApertureMode.Horizontal)
            _tangent *= old / Aspect;
    }

    private static double HalfTangent(double degrees)
    {
        if (!(degrees > 0 && degrees < 180))
        {
            throw new ArgumentOutOfRangeException(
                nameof(degrees), "A field of view is greater than 0 and less than 180 degrees.");
        }
        return Math.Tan(degrees / 2 * Degree);
    }

    private static double Positive(double value) => value > 0 && !double.IsInfinity(value)
        ? value
        : throw new ArgumentOutOfRangeException(nameof(value), "The size of a picture is a positive number.");
}
