using System;
using System.IO;
using Velbor.Voxlar.Entities;

namespace Velbor.Voxlar.Formats;

/// <summary>The PLY format, with encoding and decoding of single geometries.</summary>
public sealed class PlyFormat : FileFormat
{
    internal PlyFormat(
        string name, FileFormatType type, Version version, FileContentType contentType, params string[] extensions)
        : base(name, type, version, contentType, extensions)
    {
    }

    /// <summary>Encodes an entity into a stream.</summary>
    /// <exception cref="ExportException">The entity cannot be written.</exception>
    public void Encode(Entity entity, Stream stream) => Encode(entity, stream, null);

    /// <summary>Encodes an entity into a stream.</summary>
    /// <param name="entity">The entity.</param>
    /// <param name="stream">The stream; it stays open.</param>
    /// <param name="opt">How it is written; null for the defaults.</param>
    /// <exception cref="ExportException">The entity cannot be written.</exception>
    public void Encode(Entity entity, Stream stream, PlySaveOptions? opt) =>
        SingleGeometry.Encode(this, entity, stream, opt);

    /// <summary>Encodes an entity into a file.</summary>
    /// <exception cref="ExportException">The entity cannot be written.</exception>
    public void Encode(Entity entity, string fileName) => Encode(entity, fileName, null);

    /// <summary>Encodes an entity into a file.</summary>
    /// <param name="entity">The entity.</param>
    /// <param name="fileName">The name of the file.</param>
    /// <param name="opt">How it is written; null for the defaults.</param>
    /// <exception cref="ExportException">The entity cannot be written.</exception>
    public void Encode(Entity entity, string fileName, PlySaveOptions? opt) =>
        SingleGeometry.Encode(this, entity, fileName, opt);

    /// <summary>Decodes the geometry in a file.</summary>
    /// <exception cref="ImportException">The file cannot be read.</exception>
    public Geometry Decode(string fileName) => Decode(fileName, null);

    /// <summary>Decodes the geometry in a file.</summary>
    /// <param name="fileName">The name of the file.</param>
    /// <param name="opt">How it is read; null for the defaults.</param>
    /// <exception cref="ImportException">The file cannot be read.</exception>
    public Geometry Decode(string fileName, PlyLoadOptions? opt) => SingleGeometry.Decode(this, fileName, opt);

    /// <summary>Decodes the geometry in a stream.</summary>
    /// <exception cref="ImportException">The stream cannot be read.</exception>
    public Geometry Decode(Stream stream) => Decode(stream, null);

    /// <summary>Decodes the geometry in a stream.</summary>
    /// <param name="stream">The stream; it stays open.</param>
    /// <param name="opt">How it is read; null for the defaults.</param>
    /// <exception cref="ImportException">The stream cannot be read.</exception>
    public Geometry Decode(Stream stream, PlyLoadOptions? opt) => SingleGeometry.Decode(this, stream, opt);
}
