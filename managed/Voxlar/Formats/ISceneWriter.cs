using System.IO;

namespace Velbor.Voxlar.Formats;

/// <summary>Writes one format. An instance serves one file.</summary>
internal interface ISceneWriter
{
    /// <summary>Writes a scene to a stream.</summary>
    /// <param name="stream">A writable stream, not necessarily seekable. The caller disposes it.</param>
    /// <param name="scene">The scene.</param>
    /// <param name="context">Options, file name, side files and failure reports.</param>
    /// <exception cref="ExportException">The scene holds what the format cannot express.</exception>
    void Write(Stream stream, Scene scene, WriteContext context);
}
