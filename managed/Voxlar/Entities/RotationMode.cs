namespace Velbor.Voxlar.Entities;

/// <summary>What stays fixed when a camera or light moves.</summary>
public enum RotationMode
{
    /// <summary>The point or node looked at stays, the direction follows.</summary>
    FixedTarget = 0,

    /// <summary>The direction stays, the point looked at follows.</summary>
    FixedDirection = 1,
}
