using System;

namespace Velbor.Voxlar;

/// <summary>A file could not be written. The message names the file and the reason.</summary>
public class ExportException : Exception
{
    /// <summary>Makes the exception with its message.</summary>
    public ExportException(string msg)
        : base(msg)
    {
    }

    /// <summary>Makes the exception with its message and what caused it.</summary>
    internal ExportException(string msg, Exception? inner)
        : base(msg, inner)
    {
    }
}
