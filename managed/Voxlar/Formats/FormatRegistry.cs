using System;
using System.Collections.Generic;
using Velbor.Voxlar.Formats.Gltf;
using Velbor.Voxlar.Formats.Obj;
using Velbor.Voxlar.Formats.Ply;
using Velbor.Voxlar.Formats.Stl;
using Velbor.Voxlar.Formats.Zip;

namespace Velbor.Voxlar.Formats;

/// <summary>Which formats this build can read and write: one row a format.</summary>
internal static class FormatRegistry
{
    /// <summary>The factories of a format; null where it cannot be read or written.</summary>
    internal readonly record struct Row(Func<ISceneReader>? Reader, Func<ISceneWriter>? Writer);

    private static readonly Dictionary<FileFormat, Row> Rows = new()
    {
        [FileFormat.GLTF2] = new(() => new GltfReader(), () => new GltfWriter()),
        [FileFormat.GLTF2_Binary] = new(() => new GltfReader(), () => new GltfWriter()),
        [FileFormat.PLY] = new(() => new PlyReader(), () => new PlyWriter()),
        [FileFormat.STLASCII] = new(() => new StlReader(), () => new StlWriter()),
        [FileFormat.STLBinary] = new(() => new StlReader(), () => new StlWriter()),
        [FileFormat.WavefrontOBJ] = new(() => new ObjReader(), () => new ObjWriter()),
        [FileFormat.Zip] = new(() => new ZipReader(), null),
    };

    /// <summary>The row of a format; an empty one for formats that are neither read nor written.</summary>
    public static Row Find(FileFormat format) => Rows.GetValueOrDefault(format);
}
