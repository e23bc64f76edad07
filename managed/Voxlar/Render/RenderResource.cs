using System;

namespace Velbor.Voxlar.Render;

/// <summary>Something that a device keeps for an entity.</summary>
public abstract class RenderResource : IDisposable
{
    private protected RenderResource()
    {
    }

    /// <summary>Frees the resource on the device.</summary>
    public abstract void Dispose();
}
