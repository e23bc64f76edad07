using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats;

/// <summary>How a web page is written.</summary>
public class Html5SaveOptions : SaveOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public Html5SaveOptions()
        : base(FileFormat.HTML5)
    {
    }

    /// <summary>Whether a grid is shown.</summary>
    public bool ShowGrid { get; set; } = true;

    /// <summary>Whether rulers are shown.</summary>
    public bool ShowRulers { get; set; } = true;

    /// <summary>Whether the controls are shown.</summary>
    public bool ShowUI { get; set; } = true;

    /// <summary>Whether an orientation box is shown.</summary>
    public bool OrientationBox { get; set; } = true;

    /// <summary>The axis that points up: "x", "y" or "z".</summary>
    public string UpVector { get; set; } = "y";

    /// <summary>The distance of the far plane.</summary>
    public double FarPlane { get; set; } = 1000;

    /// <summary>The distance of the near plane.</summary>
    public double NearPlane { get; set; } = 1;

    /// <summary>The point that the camera looks at.</summary>
    public Vector3 LookAt { get; set; }

    /// <summary>Where the camera stands.</summary>
    public Vector3 CameraPosition { get; set; } = new(10, 10, 10);

    /// <summary>The vertical field of view in degrees.</summary>
    public double FieldOfView { get; set; } = 45;
}
