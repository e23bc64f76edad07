using System;
using System.IO;

namespace Velbor.Voxlar.Tests;

/// <summary>A folder of its own for a test, removed afterwards.</summary>
public sealed class TemporaryFolder : IDisposable
{
    public TemporaryFolder() => Path = Directory.CreateTempSubdirectory("voxlar-").FullName;

    public string Path { get; }

    public string File(string name) => System.IO.Path.Combine(Path, name);

    public string[] Names()
    {
        string[] names = Directory.GetFileSystemEntries(Path);
        for (int i = 0; i < names.Length; i++)
            names[i] = System.IO.Path.GetFileName(names[i]);
        Array.Sort(names, StringComparer.Ordinal);
        return names;
    }

    public void Dispose() => Directory.Delete(Path, recursive: true);
}
