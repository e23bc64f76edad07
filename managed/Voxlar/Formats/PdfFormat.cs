using System;
using System.Collections.Generic;
using System.IO;

namespace Velbor.Voxlar.Formats;

/// <summary>The PDF format, with extraction of the 3D content.</summary>
/// <remarks>This build does not read PDF; every method raises <see cref="ImportException"/>.</remarks>
public sealed class PdfFormat : FileFormat
{
    internal PdfFormat(
        string name, FileFormatType type, Version version, FileContentType contentType, params string[] extensions)
        : base(name, type, version, contentType, extensions)
    {
    }

    /// <summary>Gets the 3D content of a file as it is stored.</summary>
    /// <param name="fileName">The name of the file.</param>
    /// <param name="password">The password; null for none.</param>
    /// <exception cref="ImportException">Always.</exception>
    public List<byte[]> Extract(string fileName, byte[]? password) => throw NotSupported(fileName);

    /// <summary>Gets the 3D content of a stream as it is stored.</summary>
    /// <param name="stream">The stream.</param>
    /// <param name="password">The password; null for none.</param>
    /// <exception cref="ImportException">Always.</exception>
    public List<byte[]> Extract(Stream stream, byte[]? password) => throw NotSupported(null);

    /// <summary>Gets the scenes of a file.</summary>
    /// <exception cref="ImportException">Always.</exception>
    public List<Scene> ExtractScene(string fileName) => throw NotSupported(fileName);

    /// <summary>Gets the scenes of a file.</summary>
    /// <param name="fileName">The name of the file.</param>
    /// <param name="password">The password; null for none.</param>
    /// <exception cref="ImportException">Always.</exception>
    public List<Scene> ExtractScene(string fileName, byte[]? password) => throw NotSupported(fileName);

    /// <summary>Gets the scenes of the file opened last.</summary>
    /// <exception cref="ImportException">Always.</exception>
    public List<Scene> ExtractScene() => throw NotSupported(null);

    private ImportException NotSupported(string? fileName) =>
        new($"{ReadContext.DisplayName(fileName)}: reading the format {this} is not supported.");
}
