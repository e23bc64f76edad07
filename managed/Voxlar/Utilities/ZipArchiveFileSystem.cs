using System;
using System.Collections.Generic;
using System.IO;
using System.IO.Compression;
using Velbor.Voxlar.Formats;

namespace Velbor.Voxlar.Utilities;

/// <summary>
/// The files in a ZIP archive. An archive that is only read stays as it is; the first file that is written
/// makes it an archive under change, which is stored when the file system is disposed.
/// </summary>
public class ZipArchiveFileSystem : FileSystem
{
    // What one entry may unpack to, so that a small archive cannot fill the memory.
    private const long MaxEntrySize = 1 << 29;

    // Deflate cannot shrink data to less than one part in about 1032; an entry that announces more lies.
    private const long MaxRatio = 1100;

    private readonly Stream _stream;
    private readonly bool _ownsStream;
    private readonly string _baseDir;
    private ZipArchive? _archive;
    private bool _disposed;

    /// <summary>Serves the files below one folder of the archive in a stream, which stays open
    /// afterwards.</summary>
    /// <param name="stream">The archive; an empty stream that can be written starts a new one.</param>
    /// <param name="baseDir">The folder inside the archive; null or empty for its root.</param>
    public ZipArchiveFileSystem(Stream stream, string? baseDir)
    {
        ArgumentNullException.ThrowIfNull(stream);
        _stream = stream;
        _baseDir = string.IsNullOrEmpty(baseDir) ? "" : string.Join('/', ConfinedPath.Split(baseDir)) + "/";
    }

    /// <summary>Serves the files of the archive in a stream, which stays open afterwards.</summary>
    public ZipArchiveFileSystem(Stream stream)
        : this(stream, null)
    {
    }

    /// <summary>Serves the files of an archive; a missing archive is made.</summary>
    public ZipArchiveFileSystem(string fileName)
        : this(Open(fileName), null)
    {
        _ownsStream = true;
    }

    /// <summary>Opens a file of the archive.</summary>
    /// <exception cref="FileNotFoundException">There is no such file.</exception>
    /// <exception cref="InvalidDataException">The stream holds no ZIP archive or the file is
    /// damaged.</exception>
    public override Stream ReadFile(string fileName, IOConfig? options)
    {
        string key = Key(fileName);
        ZipArchiveEntry? entry = IsEmpty && _archive is null ? null : Archive(write: false).GetEntry(key);
        if (entry is null)
            throw new FileNotFoundException($"The archive has no file '{fileName}'.", fileName);
        return new MemoryStream(Unpack(entry, fileName), writable: false);
    }

    /// <summary>Makes a file in the archive, in place of one of the same name.</summary>
    /// <exception cref="NotSupportedException">The stream of the archive cannot be changed.</exception>
    public override Stream WriteFile(string fileName, IOConfig? options)
    {
        string key = Key(fileName);
        ZipArchive archive = Archive(write: true);
        return new CommittingStream(bytes =>
        {
            archive.GetEntry(key)?.Delete();
            using Stream target = archive.CreateEntry(key).Open();
            target.Write(bytes);
        });
    }

    /// <inheritdoc/>
    protected override void Dispose(bool disposing)
    {
        if (_disposed)
            return;
        _disposed = true;
        _archive?.Dispose();
        if (_ownsStream)
            _stream.Dispose();
    }

    /// <summary>The names of the files below the base folder, relative to it, in the archive's
    /// order.</summary>
    internal IEnumerable<string> EntryNames
    {
        get
        {
            if (IsEmpty && _archive is null)
                yield break;
            foreach (ZipArchiveEntry entry in Archive(write: false).Entries)
            {
                bool isFile = entry.Name.Length > 0;
                if (isFile && entry.FullName.StartsWith(_baseDir, StringComparison.Ordinal))
                    yield return entry.FullName[_baseDir.Length..];
            }
        }
    }

    private bool IsEmpty => _stream.CanSeek && _stream.Length == 0;

    private static FileStream Open(string fileName)
    {
        ArgumentException.ThrowIfNullOrEmpty(fileName);
        FileInfo file = new(fileName);
        bool writable = !file.Exists || !file.IsReadOnly;
        return new FileStream(
            fileName,
            writable ? FileMode.OpenOrCreate : FileMode.Open,
            writable ? FileAccess.ReadWrite : FileAccess.Read,
            FileShare.Read);
    }

    private static byte[] Unpack(ZipArchiveEntry entry, string fileName)
    {
        using Stream packed = entry.Open();
        if (entry.Archive.Mode == ZipArchiveMode.Update)
            return IOUtils.ReadToEnd(packed);
        if (entry.Length > MaxEntrySize || entry.Length > MaxRatio * (entry.CompressedLength + 1))
            throw new InvalidDataException($"The file '{fileName}' in the archive is too large.");
        byte[] content = GC.AllocateUninitializedArray<byte>((int)entry.Length);  // the read fills it
        if (packed.ReadAtLeast(content, content.Length, throwOnEndOfStream: false) < content.Length
            || packed.ReadByte() >= 0)
            throw new InvalidDataException($"The file '{fileName}' in the archive has not the announced size.");
        return content;
    }

    private string Key(string fileName) => _baseDir + string.Join('/', ConfinedPath.Split(fileName));

    private ZipArchive Archive(bool write)
    {
        ObjectDisposedException.ThrowIf(_disposed, this);
        if (_archive is not null && (!write || _archive.Mode == ZipArchiveMode.Update))
            return _archive;
        if (write && !(_stream.CanRead && _stream.CanWrite && _stream.CanSeek))
            throw new NotSupportedException("The stream of the archive must be readable, writable and seekable.");
        _archive?.Dispose();
        if (_stream.CanSeek)
            _stream.Position = 0;
        _archive = new ZipArchive(_stream, write ? ZipArchiveMode.Update : ZipArchiveMode.Read, leaveOpen: true);
        return _archive;
    }
}
