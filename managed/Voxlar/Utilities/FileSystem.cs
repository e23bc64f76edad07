using System;
using System.IO;
using Velbor.Voxlar.Formats;

namespace Velbor.Voxlar.Utilities;

/// <summary>Where the files beside a scene file, such as textures and buffers, are read from and written
/// to.</summary>
public abstract class FileSystem : IDisposable
{
    /// <summary>For the file systems of this library and of its users.</summary>
    protected FileSystem()
    {
    }

    /// <summary>Opens a file for reading; the caller disposes the stream.</summary>
    /// <param name="fileName">The name of the file inside this file system.</param>
    /// <param name="options">The options of the read or write that needs the file; may be null.</param>
    /// <exception cref="FileNotFoundException">There is no such file.</exception>
    public abstract Stream ReadFile(string fileName, IOConfig? options);

    /// <summary>Makes a file, or empties it, and opens it for writing; the caller disposes the
    /// stream.</summary>
    /// <param name="fileName">The name of the file inside this file system.</param>
    /// <param name="options">The options of the read or write that needs the file; may be null.</param>
    public abstract Stream WriteFile(string fileName, IOConfig? options);

    /// <summary>Frees what the file system holds; nothing can be read or written any more.</summary>
    public void Dispose()
    {
        Dispose(true);
        GC.SuppressFinalize(this);
    }

    /// <summary>Frees what the file system holds.</summary>
    /// <param name="disposing">True when called by <see cref="Dispose()"/>.</param>
    protected virtual void Dispose(bool disposing)
    {
    }
}
