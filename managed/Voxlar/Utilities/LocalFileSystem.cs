using System;
using System.IO;
using Velbor.Voxlar.Formats;

namespace Velbor.Voxlar.Utilities;

/// <summary>The files below one folder of the machine. No name reaches a file outside it, links
/// included.</summary>
public class LocalFileSystem : FileSystem
{
    private readonly string _directory;

    /// <summary>Serves the files below a folder.</summary>
    /// <param name="directory">The folder; it need not exist before the first file is written.</param>
    /// <exception cref="ArgumentException"><paramref name="directory"/> is null or empty.</exception>
    public LocalFileSystem(string directory)
    {
        ArgumentException.ThrowIfNullOrEmpty(directory);
        _directory = Path.GetFullPath(directory);
    }

    /// <summary>Opens a file below the folder.</summary>
    /// <exception cref="FileNotFoundException">There is no such file.</exception>
    /// <exception cref="UnauthorizedAccessException">The name leads out of the folder.</exception>
    public override Stream ReadFile(string fileName, IOConfig? options)
    {
        string path = ConfinedPath.Resolve(_directory, fileName);
        if (!File.Exists(path))
            throw new FileNotFoundException($"There is no file '{fileName}' in '{_directory}'.", fileName);
        return new FileStream(path, FileMode.Open, FileAccess.Read, FileShare.Read);
    }

    /// <summary>Makes a file below the folder, and the folders that it needs.</summary>
    /// <exception cref="UnauthorizedAccessException">The name leads out of the folder.</exception>
    public override Stream WriteFile(string fileName, IOConfig? options)
    {
        string path = ConfinedPath.Resolve(_directory, fileName);
        Directory.CreateDirectory(Path.GetDirectoryName(path)!);
        return new FileStream(path, FileMode.Create, FileAccess.ReadWrite, FileShare.None);
    }
}
