using System;

namespace Velbor.Voxlar.Render;

/// <summary>The shader programs for the built-in kinds of material. The set owns its programs.</summary>
public class ShaderSet : IDisposable
{
    /// <summary>The program for Lambert materials.</summary>
    public ShaderProgram? Lambert { get; set; }

    /// <summary>The program for Phong materials.</summary>
    public ShaderProgram? Phong { get; set; }

    /// <summary>The program for physically based materials.</summary>
    public ShaderProgram? Pbr { get; set; }

    /// <summary>The program where no other fits.</summary>
    public ShaderProgram? Fallback { get; set; }

    /// <summary>Disposes the programs and takes them out of the set.</summary>
    public void Dispose()
    {
        foreach (ShaderProgram? program in new[] { Lambert, Phong, Pbr, Fallback })
            program?.Dispose();
        Lambert = Phong = Pbr = Fallback = null;
        GC.SuppressFinalize(this);
    }
}
