using System;
using System.IO;
using Velbor.Voxlar.Formats;

namespace Velbor.Voxlar.Utilities;

/// <summary>A file system without files: it drops what is written to it and finds nothing.</summary>
public class DummyFileSystem : FileSystem
{
    /// <summary>Finds nothing.</summary>
    /// <exception cref="FileNotFoundException">Always.</exception>
    public override Stream ReadFile(string fileName, IOConfig? options)
    {
        ArgumentNullException.ThrowIfNull(fileName);
        throw new FileNotFoundException($"The dummy file system has no file '{fileName}'.", fileName);
    }

    /// <summary>Gives a stream that takes everything and keeps nothing.</summary>
    public override Stream WriteFile(string fileName, IOConfig? options)
    {
        ArgumentNullException.ThrowIfNull(fileName);
        return new MemoryStream();
    }
}
