using System;
using System.IO;

namespace Velbor.Voxlar.Formats;

/// <summary>Finds the writer of a scene and runs it, so that no half-written file is left behind.</summary>
internal static class SceneSaver
{
    /// <summary>Writes to a file. Without a format the extension tells it.</summary>
    public static void Save(Scene scene, string fileName, FileFormat? format, SaveOptions? options)
    {
        ArgumentNullException.ThrowIfNull(fileName);
        string name = ReadContext.DisplayName(fileName);
        if (fileName.Length == 0)
            throw new ExportException("The name of the file to write is empty.");
        if (Directory.Exists(fileName))
            throw new ExportException($"{name}: it is a folder.");
        if (fileName.Contains('\0', StringComparison.Ordinal))
            throw new ExportException($"{name}: it cannot be written: Null character in path.");
        format ??= FormatDetector.ByName(fileName) ?? throw new ExportException(
            Path.GetExtension(fileName) is { Length: > 0 } extension
                ? $"{name}: the extension '{extension}' tells no known format."
                : $"{name}: it has no extension that tells a format.");
        options ??= format.CreateSaveOptions();
        string path = Path.GetFullPath(fileName);
        using SaveTransaction files = new(Path.GetDirectoryName(path));
        Run(scene, fileName, format, options, files, () => files.Begin(path), _ => files.Commit());
    }

    /// <summary>Writes to a stream, which gets its bytes when all are there.</summary>
    public static void Save(Scene scene, Stream stream, FileFormat? format, SaveOptions options)
    {
        string? fileName = string.IsNullOrEmpty(options.FileName) ? null : options.FileName;
        format ??= FormatDetector.ByName(fileName) ?? throw new ExportException(
            "The options do not tell the format to write; use those of a format or give the format itself.");
        if (!stream.CanWrite)
            throw new ArgumentException("The stream cannot be written to.", nameof(stream));
        using SaveTransaction files = new(null);
        Stream? whole = null;
        Run(scene, fileName, format, options, files, () => whole = new MemoryStream(), written =>
        {
            files.Commit();
            written.Position = 0;
        });
        // Outside the guard: what goes wrong in the caller's own stream reaches the caller as it is.
        whole!.CopyTo(stream);
        stream.Flush();
    }

    private static void Run(
        Scene scene, string? fileName, FileFormat format, SaveOptions options, SaveTransaction files,
        Func<Stream> open, Action<Stream> finish)
    {
        string name = ReadContext.DisplayName(fileName);
        Func<ISceneWriter> factory = FormatRegistry.Find(format).Writer
            ?? throw new ExportException($"{name}: writing the format {format} is not supported.");
        if (!OptionTable.Fit(options, format))
            throw new ExportException($"{name}: {options.GetType().Name} are no options of the format {format}.");
        try
        {
            Stream stream = open();
            factory().Write(stream, scene, new WriteContext(fileName, format, options, files));
            finish(stream);
        }
        catch (Exception e) when (e is not (ExportException or OutOfMemoryException))
        {
            throw new ExportException($"{name}: it cannot be written: {ReadContext.Reason(e)}.", e);
        }
    }
}
