using System;

namespace Velbor.Voxlar.Render;

/// <summary>A graphics driver reported an error.</summary>
public class DriverException : Exception
{
    /// <summary>Makes the exception.</summary>
    /// <param name="code">The driver's error code.</param>
    /// <param name="message">What went wrong.</param>
    public DriverException(uint code, string message)
        : base(message)
    {
        ErrorCode = code;
    }

    /// <summary>The driver's error code.</summary>
    public uint ErrorCode { get; }
}
