using System;
using System.Collections.Generic;
using System.IO;
using Velbor.Voxlar.Formats;

namespace Velbor.Voxlar.Utilities;

/// <summary>Files in memory. A file has its content once its stream was disposed.</summary>
public class MemoryFileSystem : FileSystem
{
    private readonly Dictionary<string, byte[]> _files = new(StringComparer.Ordinal);
    private readonly List<string> _names = [];

    /// <summary>The names of the files in the order in which they were made; a copy.</summary>
    public IList<string> FileNames => new List<string>(_names);

    /// <summary>A copy of a file's content.</summary>
    /// <exception cref="FileNotFoundException">There is no such file.</exception>
    public byte[] GetFileContent(string fileName) => (byte[])Find(fileName).Clone();

    /// <summary>Opens a file for reading.</summary>
    /// <exception cref="FileNotFoundException">There is no such file.</exception>
    public override Stream ReadFile(string fileName, IOConfig? options) =>
        new MemoryStream(Find(fileName), writable: false);

    /// <summary>Opens a file for writing. What is written takes effect when the stream is disposed.</summary>
    public override Stream WriteFile(string fileName, IOConfig? options)
    {
        string key = Key(fileName);
        Store(key, []);
        return new CommittingStream(bytes => Store(key, bytes));
    }

    /// <inheritdoc/>
    protected override void Dispose(bool disposing)
    {
        _files.Clear();
        _names.Clear();
    }

    private static string Key(string fileName) => string.Join('/', ConfinedPath.Split(fileName));

    private byte[] Find(string fileName) => _files.TryGetValue(Key(fileName), out byte[]? content)
        ? content
        : throw new FileNotFoundException($"The memory file system has no file '{fileName}'.", fileName);

    private void Store(string key, byte[] content)
    {
        if (!_files.ContainsKey(key))
            _names.Add(key);
        _files[key] = content;
    }
}
