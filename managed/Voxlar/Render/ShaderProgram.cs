using System;

namespace Velbor.Voxlar.Render;

/// <summary>A compiled shader program on a device.</summary>
public abstract class ShaderProgram : IDisposable
{
    private protected ShaderProgram()
    {
    }

    /// <summary>Frees the program on the device.</summary>
    public abstract void Dispose();
}
