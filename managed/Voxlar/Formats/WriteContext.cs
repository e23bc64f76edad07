using System;
using System.IO;
using System.Text;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats;

/// <summary>What a writer is given besides the stream: options, side files and failure reports.</summary>
internal sealed class WriteContext
{
    private readonly string? _path;
    private readonly string _name;
    private readonly SaveTransaction _files;

    /// <summary>Makes the context of one file.</summary>
    /// <param name="path">The path of the file; null when it is written to a stream without a name.</param>
    /// <param name="format">The format.</param>
    /// <param name="options">The options.</param>
    /// <param name="files">Where side files wait until all is written.</param>
    public WriteContext(string? path, FileFormat format, SaveOptions options, SaveTransaction files)
    {
        _path = path;
        _name = ReadContext.DisplayName(path);
        _files = files;
        Format = format;
        Options = options;
    }

    /// <summary>The format.</summary>
    public FileFormat Format { get; }

    /// <summary>The options that the caller gave, or the format's defaults.</summary>
    public SaveOptions Options { get; }

    /// <summary>The name of the file without folder and extension; empty for a stream without a
    /// name.</summary>
    public string BaseName => Path.GetFileNameWithoutExtension(_path) ?? "";

    /// <summary>Whether there is a place for files beside the main one.</summary>
    public bool HasSideFiles => _files.Folder is not null || Options.FileSystem is not null;

    /// <summary>The options as the format's class; the defaults when the caller gave plain options.</summary>
    public T OptionsAs<T>()
        where T : SaveOptions => Options as T ?? (T)Format.CreateSaveOptions();

    /// <summary>The encoding that the options name, or the default one.</summary>
    /// <exception cref="ExportException">There is no such encoding.</exception>
    public Encoding TextEncoding(Encoding otherwise)
    {
        if (string.IsNullOrEmpty(Options.Encoding))
            return otherwise;
        try
        {
            return Encoding.GetEncoding(Options.Encoding);
        }
        catch (ArgumentException e)
        {
            throw new ExportException($"{_name}: the encoding '{Options.Encoding}' is not known.", e);
        }
    }

    /// <summary>A failure.</summary>
    public ExportException Error(string reason, Exception? inner = null) => new($"{_name}: {reason}.", inner);

    /// <summary>
    /// Makes a file beside the main one: through the file system of the options, else in the folder of the
    /// main file. It appears under its name when all is written.
    /// </summary>
    /// <param name="name">A relative name that stays inside the folder.</param>
    /// <returns>The stream; the writer disposes it.</returns>
    /// <exception cref="ExportException">There is no place for side files, or the name is
    /// refused.</exception>
    public Stream CreateSideFile(string name)
    {
        try
        {
            string relative = string.Join('/', ConfinedPath.Split(name));
            if (Options.FileSystem is { } fileSystem)
                return _files.Begin(fileSystem, relative, Options);
            if (_files.Folder is { } folder)
                return _files.Begin(ConfinedPath.Resolve(folder, relative));
        }
        catch (Exception e) when (e is IOException or UnauthorizedAccessException or ArgumentException)
        {
            throw Error($"the file '{name}' beside it cannot be made: {ReadContext.Reason(e)}", e);
        }
        throw Error($"it needs the file '{name}' beside it; set FileSystem in the options to give it a place");
    }
}
