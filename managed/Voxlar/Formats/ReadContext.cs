using System;
using System.IO;
using System.Text;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats;

/// <summary>What a reader is given besides the content: options, side files, limits and failure
/// reports.</summary>
internal sealed class ReadContext
{
    /// <summary>How deep a file may nest its nodes, elements or values.</summary>
    public const int MaxDepth = 512;

    private readonly string? _path;
    private readonly string _name;

    /// <summary>Makes the context of one file.</summary>
    /// <param name="path">The path of the file; null when it is read from a stream without a name.</param>
    /// <param name="format">The format that was found.</param>
    /// <param name="options">The options.</param>
    public ReadContext(string? path, FileFormat format, LoadOptions options)
    {
        _path = path;
        _name = DisplayName(path);
        Format = format;
        Options = options;
    }

    /// <summary>The format that was found.</summary>
    public FileFormat Format { get; }

    /// <summary>The options that the caller gave, or the format's defaults.</summary>
    public LoadOptions Options { get; }

    /// <summary>The name of the file without folder and extension; empty for a stream without a
    /// name.</summary>
    public string BaseName => Path.GetFileNameWithoutExtension(_path) ?? "";

    /// <summary>The options as the format's class; the defaults when the caller gave plain options.</summary>
    public T OptionsAs<T>()
        where T : LoadOptions => Options as T ?? (T)Format.CreateLoadOptions();

    /// <summary>The encoding that the options name, or the default one.</summary>
    /// <exception cref="ImportException">There is no such encoding.</exception>
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
            throw new ImportException($"{_name}: the encoding '{Options.Encoding}' is not known.", e);
        }
    }

    /// <summary>A failure without a place.</summary>
    public ImportException Error(string reason, Exception? inner = null) => new($"{_name}: {reason}.", inner);

    /// <summary>A failure at a line, counted from 1.</summary>
    public ImportException ErrorAtLine(long line, string reason, Exception? inner = null) =>
        new($"{_name}, line {line}: {reason}.", inner);

    /// <summary>A failure at a byte, counted from 0.</summary>
    public ImportException ErrorAtByte(long position, string reason, Exception? inner = null) =>
        new($"{_name}, byte {position}: {reason}.", inner);

    /// <summary>Refuses what is nested deeper than <see cref="MaxDepth"/>.</summary>
    public void CheckDepth(int depth, string what)
    {
        if (depth > MaxDepth)
            throw Error($"{what} is nested more than {MaxDepth} deep");
    }

    /// <summary>The content of a stream from its position on.</summary>
    public byte[] ReadAll(Stream stream) => IOUtils.ReadToEnd(stream);

    /// <summary>
    /// Opens a file that the file being read names: through the file system of the options, else in the
    /// folder of the file, else in the lookup paths. Names that are absolute or lead out of these folders are
    /// refused.
    /// </summary>
    /// <param name="name">The name as the file has it, with "/" or "\" between folders; no URI
    /// escapes.</param>
    /// <returns>The stream, which the caller disposes; null when there is no such file.</returns>
    /// <exception cref="ImportException">The name is refused or the file cannot be opened.</exception>
    public Stream? TryOpenSideFile(string name)
    {
        try
        {
            string relative = string.Join('/', ConfinedPath.Split(name));
            if (Options.FileSystem is { } fileSystem)
                return fileSystem.ReadFile(relative, Options);
            string? folder = _path is null ? null : Path.GetDirectoryName(Path.GetFullPath(_path));
            if (folder is not null && Find(folder, relative) is { } beside)
                return beside;
            foreach (string lookup in Options.LookupPaths)
            {
                if (Find(Path.GetFullPath(lookup, folder ?? Environment.CurrentDirectory), relative) is { } found)
                    return found;
            }
            return null;
        }
        catch (FileNotFoundException)
        {
            return null;
        }
        catch (Exception e) when (e is IOException or UnauthorizedAccessException or ArgumentException)
        {
            throw Error($"the file '{name}' that it names cannot be opened: {Reason(e)}", e);
        }
    }

    /// <summary>As <see cref="TryOpenSideFile"/>, for a file that must be there.</summary>
    /// <exception cref="ImportException">The name is refused, or the file is missing or cannot be
    /// opened.</exception>
    public Stream OpenSideFile(string name) =>
        TryOpenSideFile(name) ?? throw Error($"the file '{name}' that it names was not found");

    /// <summary>The name, for messages, of a file inside the file being read.</summary>
    public string Inside(string name) => _path is null ? name : _path + "/" + name;

    /// <summary>How a file is called in messages.</summary>
    internal static string DisplayName(string? path) => string.IsNullOrEmpty(path) ? "the stream" : $"file '{path}'";

    /// <summary>An exception's message as the end of a sentence.</summary>
    internal static string Reason(Exception e) => e.Message.TrimEnd('.');

    private static FileStream? Find(string folder, string name)
    {
        string path = ConfinedPath.Resolve(folder, name);
        return File.Exists(path) ? new FileStream(path, FileMode.Open, FileAccess.Read, FileShare.Read) : null;
    }
}
