using System;

namespace Velbor.Voxlar.Render;

/// <summary>
/// The one answer of everything that needs a graphics device, which this build does not drive.
/// </summary>
internal static class RenderingUnavailable
{
    public static NotSupportedException Error() => new("rendering is not available in this build");
}
