using System;
using System.IO;
using Velbor.Voxlar.Entities;

namespace Velbor.Voxlar.Formats;

/// <summary>The Draco format, with encoding and decoding of single geometries.</summary>
public sealed class DracoFormat : FileFormat
{
    internal DracoFormat(
        string name, FileFormatType type, Version version, FileContentType contentType, params string[] extensions)
        : base(name, type, version, contentType, extensions)
    {
    }

    /// <summary>Decodes the geometry in a file.</summary>
    /// <exception cref="ImportException">The file cannot be read.</exception>
    public Geometry Decode(string fileName) => SingleGeometry.Decode(this, fileName, null);

    /// <summary>Decodes a geometry.</summary>
    /// <exception cref="ImportException">The data cannot be read.</exception>
    public Geometry Decode(byte[] data)
    {
        ArgumentNullException.ThrowIfNull(data);
        using MemoryStream stream = new(data, writable: false);
        return SingleGeometry.Decode(this, stream, null);
    }

    /// <summary>Encodes an entity into a stream.</summary>
    /// <exception cref="ExportException">The entity cannot be written.</exception>
    public void Encode(Entity entity, Stream stream, DracoSaveOptions? options) =>
        SingleGeometry.Encode(this, entity, stream, options);

    /// <summary>Encodes an entity into a file.</summary>
    /// <exception cref="ExportException">The entity cannot be written.</exception>
    public void Encode(Entity entity, string fileName, DracoSaveOptions? options) =>
        SingleGeometry.Encode(this, entity, fileName, options);

    /// <summary>Encodes an entity into bytes.</summary>
    /// <exception cref="ExportException">The entity cannot be written.</exception>
    public byte[] Encode(Entity entity, DracoSaveOptions? options)
    {
        using MemoryStream stream = new();
        SingleGeometry.Encode(this, entity, stream, options);
        return stream.ToArray();
    }
}
