using System.IO;

namespace Velbor.Voxlar.Formats;

/// <summary>Reads one format. An instance serves one file.</summary>
internal interface ISceneReader
{
    /// <summary>Reads the content of a stream into an empty scene.</summary>
    /// <param name="stream">The content: readable, seekable, at its start. The caller disposes it.</param>
    /// <param name="scene">The scene.</param>
    /// <param name="context">Options, file name, side files and failure reports.</param>
    /// <exception cref="ImportException">The content is malformed or needs what the reader does not support.
    /// </exception>
    void Read(Stream stream, Scene scene, ReadContext context);
}
