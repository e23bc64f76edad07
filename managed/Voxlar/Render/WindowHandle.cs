namespace Velbor.Voxlar.Render;

/// <summary>
/// A window of the windowing system. There is none to be had in this build, as rendering is not available.
/// </summary>
public sealed class WindowHandle
{
    private WindowHandle()
    {
    }
}
