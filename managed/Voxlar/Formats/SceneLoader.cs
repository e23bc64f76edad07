using System;
using System.IO;

namespace Velbor.Voxlar.Formats;

/// <summary>Finds the reader of a file or stream and runs it.</summary>
internal static class SceneLoader
{
    /// <summary>Reads a file into a scene.</summary>
    public static void Load(Scene scene, string fileName, LoadOptions? options)
    {
        using Stream stream = OpenFile(fileName);
        Load(scene, stream, fileName, options);
    }

    /// <summary>Reads a stream into a scene.</summary>
    public static void Load(Scene scene, Stream stream, string? fileName, LoadOptions? options)
    {
        if (!stream.CanRead)
            throw new ArgumentException("The stream cannot be read.", nameof(stream));
        fileName ??= string.IsNullOrEmpty(options?.FileName) ? null : options.FileName;
        string name = ReadContext.DisplayName(fileName);
        // A reader seeks and reads in small pieces. Only files and memory stand that well, so other streams,
        // which may call back into foreign code, are taken over first, and so are pipes, which cannot seek.
        bool readInPlace = stream is FileStream or MemoryStream && stream.CanSeek && stream.Position == 0;
        using MemoryStream? copy = readInPlace ? null : new();
        if (copy is not null)
        {
            stream.CopyTo(copy);
            copy.Position = 0;
        }
        Stream content = copy ?? stream;
        if (content.Length == 0)
            throw new ImportException($"{name}: it is empty.");
        FileFormat format = Decide(content, fileName, name, options);
        Func<ISceneReader> factory = FormatRegistry.Find(format).Reader
            ?? throw new ImportException($"{name}: reading the format {format} (version {format.Version}) is not supported.");
        options ??= format.CreateLoadOptions();
        try
        {
            scene.Clear();
            content.Position = 0;
            factory().Read(content, scene, new ReadContext(fileName, format, options));
        }
        catch (Exception e)
        {
            scene.Clear();
            if (e is ImportException)
                throw;
            string reason = e is OutOfMemoryException ? "there is not enough memory for it" : ReadContext.Reason(e);
            throw new ImportException($"{name}: it cannot be read: {reason}.", e);
        }
    }

    /// <summary>Opens a file for reading.</summary>
    /// <exception cref="ImportException">It is missing, a folder, or cannot be opened.</exception>
    public static FileStream OpenFile(string fileName)
    {
        ArgumentNullException.ThrowIfNull(fileName);
        string name = ReadContext.DisplayName(fileName);
        if (fileName.Length == 0)
            throw new ImportException("The name of the file to read is empty.");
        if (Directory.Exists(fileName))
            throw new ImportException($"{name}: it is a folder.");
        try
        {
            return new FileStream(fileName, FileMode.Open, FileAccess.Read, FileShare.Read, 1 << 16);
        }
        catch (Exception e) when (e is FileNotFoundException or DirectoryNotFoundException)
        {
            throw new ImportException($"{name}: there is no such file.", e);
        }
        catch (UnauthorizedAccessException e)
        {
            throw new ImportException($"{name}: reading it is not allowed.", e);
        }
        catch (Exception e) when (e is IOException or ArgumentException or NotSupportedException)
        {
            throw new ImportException($"{name}: it cannot be opened: {ReadContext.Reason(e)}.", e);
        }
    }

    private static FileFormat Decide(Stream content, string? fileName, string name, LoadOptions? options)
    {
        FileFormat? format = FormatDetector.Decide(content, fileName, options?.FileFormat);
        if (format is null)
        {
            string extension = Path.GetExtension(fileName) ?? "";
            throw new ImportException(extension.Length == 0
                ? $"{name}: its content tells no known format."
                : $"{name}: neither its content nor the extension '{extension}' tells a known format.");
        }
        if (options is not null && !OptionTable.Fit(options, format))
            throw new ImportException(
                $"{name}: the content is {format}, but {options.GetType().Name} were given as options.");
        return format;
    }
}
