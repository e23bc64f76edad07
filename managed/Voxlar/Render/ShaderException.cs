using System;

namespace Velbor.Voxlar.Render;

/// <summary>A shader could not be compiled or linked.</summary>
public class ShaderException : Exception
{
    /// <summary>Makes the exception.</summary>
    /// <param name="message">What went wrong.</param>
    public ShaderException(string message)
        : base(message)
    {
    }
}
