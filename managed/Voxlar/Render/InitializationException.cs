using System;

namespace Velbor.Voxlar.Render;

/// <summary>A renderer could not be set up.</summary>
public class InitializationException : Exception
{
    /// <summary>Makes the exception with a general text.</summary>
    public InitializationException()
        : base("The renderer could not be initialized.")
    {
    }

    /// <summary>Makes the exception.</summary>
    /// <param name="msg">What went wrong.</param>
    public InitializationException(string msg)
        : base(msg)
    {
    }
}
