using System;
using System.IO;

namespace Velbor.Voxlar.Formats;

/// <summary>The RVM format, with attribute files.</summary>
/// <remarks>This build does not read RVM; every method raises <see cref="ImportException"/>.</remarks>
public sealed class RvmFormat : FileFormat
{
    internal RvmFormat(
        string name, FileFormatType type, Version version, FileContentType contentType, params string[] extensions)
        : base(name, type, version, contentType, extensions)
    {
    }

    /// <summary>Puts the attributes of a file on the nodes of a scene.</summary>
    /// <param name="scene">The scene.</param>
    /// <param name="fileName">The name of the attribute file.</param>
    /// <param name="prefix">Stands before the names of the attributes.</param>
    /// <exception cref="ImportException">Always.</exception>
    public void LoadAttributes(Scene scene, string fileName, string prefix) => throw NotSupported(fileName);

    /// <summary>Puts the attributes of a stream on the nodes of a scene.</summary>
    /// <param name="scene">The scene.</param>
    /// <param name="stream">The attribute file.</param>
    /// <param name="prefix">Stands before the names of the attributes.</param>
    /// <exception cref="ImportException">Always.</exception>
    public void LoadAttributes(Scene scene, Stream stream, string prefix) => throw NotSupported(null);

    private static ImportException NotSupported(string? fileName) =>
        new($"{ReadContext.DisplayName(fileName)}: reading RVM attributes is not supported.");
}
