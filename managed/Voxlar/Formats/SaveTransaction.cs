using System;
using System.Collections.Generic;
using System.IO;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats;

/// <summary>
/// The files of one save. Each is written under a temporary name beside its place, or in memory, and gets its
/// name in
/// <see cref="Commit"/>. What was not committed is removed by <see cref="Dispose"/>.
/// </summary>
internal sealed class SaveTransaction : IDisposable
{
    private readonly List<PendingFile> _files = [];
    private readonly List<Action> _deliveries = [];
    private readonly List<string> _newFolders = [];

    /// <summary>Starts a save.</summary>
    /// <param name="folder">The folder of the main file; null when it is written to a stream.</param>
    public SaveTransaction(string? folder) => Folder = folder;

    /// <summary>The folder of the main file; null when it is written to a stream.</summary>
    public string? Folder { get; }

    /// <summary>Opens a temporary file that will become the file at the path.</summary>
    /// <remarks>A link is followed, so that its target gets the content. A device is written to, not
    /// replaced.
    /// </remarks>
    /// <exception cref="UnauthorizedAccessException">There is such a file and it cannot be
    /// written.</exception>
    public Stream Begin(string path)
    {
        if (new FileInfo(path).LinkTarget is not null)
            path = File.ResolveLinkTarget(path, returnFinalTarget: true)!.FullName;
        if (path.StartsWith("/dev/", StringComparison.Ordinal))
            return Deliver(() => new FileStream(path, FileMode.Open, FileAccess.Write));
        string folder = Path.GetDirectoryName(path)!;
        MakeFolder(folder);
        // Renaming would replace a file that is write-protected; opening it tells.
        if (File.Exists(path))
            new FileStream(path, FileMode.Open, FileAccess.Write, FileShare.ReadWrite).Dispose();
        string temporary = Path.Combine(folder, $".{Path.GetFileName(path)}.{Guid.NewGuid():N}.tmp");
        FileStream stream = new(temporary, FileMode.CreateNew, FileAccess.ReadWrite, FileShare.None, 1 << 16);
        _files.Add(new PendingFile(temporary, path, stream));
        return stream;
    }

    /// <summary>Opens a file in memory that will be handed to a file system.</summary>
    public Stream Begin(FileSystem fileSystem, string name, SaveOptions options) =>
        Deliver(() => fileSystem.WriteFile(name, options));

    /// <summary>Gives all files their names; side files first, so that the main file, begun first, comes
    /// last.</summary>
    public void Commit()
    {
        foreach (Action deliver in _deliveries)
            deliver();
        foreach (PendingFile file in _files)
            file.Stream.Dispose();
        for (int i = _files.Count - 1; i >= 0; i--)
        {
            File.Move(_files[i].Temporary, _files[i].Path, overwrite: true);
            _files.RemoveAt(i);
        }
        _newFolders.Clear();
    }

    /// <summary>Removes what was begun and not committed.</summary>
    public void Dispose()
    {
        foreach (PendingFile file in _files)
        {
            Try(file.Stream.Dispose);
            Try(() => File.Delete(file.Temporary));
        }
        for (int i = _newFolders.Count - 1; i >= 0; i--)
        {
            string folder = _newFolders[i];
            Try(() => Directory.Delete(folder));
        }
        _files.Clear();
        _newFolders.Clear();
    }

    private CommittingStream Deliver(Func<Stream> open)
    {
        byte[] content = [];
        CommittingStream stream = new(bytes => content = bytes);
        _deliveries.Add(() =>
        {
            stream.Dispose();
            using Stream target = open();
            target.Write(content);
        });
        return stream;
    }

    // Cleaning up goes as far as it can: a file that cannot be removed must not hide why the save failed. Closing writes
    // what is still buffered, and a file past the size limit of the process fails there with an argument exception.
    private static void Try(Action action)
    {
        try
        {
            action();
        }
        catch (Exception e) when (e is IOException or UnauthorizedAccessException or ArgumentException)
        {
        }
    }

    private void MakeFolder(string folder)
    {
        Stack<string> missing = new();
        for (string? at = folder; at is not null && !Directory.Exists(at); at = Path.GetDirectoryName(at))
            missing.Push(at);
        // Folders are made for side files only; a main file in a missing folder is a mistake in its name.
        if (missing.Count > 0 && (Folder is null || folder == Folder))
            throw new DirectoryNotFoundException($"there is no folder '{folder}'");
        foreach (string at in missing)
        {
            Directory.CreateDirectory(at);
            _newFolders.Add(at);
        }
    }

    private sealed record PendingFile(string Temporary, string Path, FileStream Stream);
}
