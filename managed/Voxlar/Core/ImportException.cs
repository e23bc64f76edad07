using System;

namespace Velbor.Voxlar;

/// <summary>A file could not be read. The message names the file, the place in it and the reason.</summary>
public class ImportException : Exception
{
    /// <summary>Makes the exception with its message.</summary>
    public ImportException(string msg)
        : base(msg)
    {
    }

    /// <summary>Makes the exception with its message and what caused it.</summary>
    internal ImportException(string msg, Exception? inner)
        : base(msg, inner)
    {
    }
}
