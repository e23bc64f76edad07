using System;
using System.Collections.Generic;
using System.IO;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>Where the content of images goes.</summary>
internal enum GltfImagePlace
{
    /// <summary>Into the buffer, by a buffer view.</summary>
    Buffer,

    /// <summary>Into the document, as a data URI.</summary>
    DataUri,

    /// <summary>Into files beside the document.</summary>
    SideFile,
}

/// <summary>
/// The files beside the document. A binary file holds all itself. A text file does so when assets are
/// embedded or there is no place beside it; otherwise the buffer and the images become files.
/// </summary>
internal sealed class GltfSideFiles
{
    private readonly WriteContext _context;
    private readonly Dictionary<string, byte[]> _writtenImages = [];

    internal GltfSideFiles(WriteContext context, GltfSaveOptions options, bool isBinary)
    {
        _context = context;
        bool isWhole = options.EmbedAssets || !context.HasSideFiles;
        IsWhole = isBinary || isWhole;
        ImagePlace = isBinary ? GltfImagePlace.Buffer : isWhole ? GltfImagePlace.DataUri
            : GltfImagePlace.SideFile;
    }

    internal bool IsWhole { get; }

    internal GltfImagePlace ImagePlace { get; }

    /// <summary>
    /// Writes an image and gives the name it got, which differs where another image has taken the name.
    /// </summary>
    internal string WriteImage(string fileName, byte[] content)
    {
        string name = fileName;
        for (int number = 1; _writtenImages.TryGetValue(name, out byte[]? other); number++)
        {
            if (other.AsSpan().SequenceEqual(content))
                return name;
            name = $"{Path.GetFileNameWithoutExtension(fileName)}_{number}{Path.GetExtension(fileName)}";
        }
        _writtenImages[name] = content;
        using Stream file = _context.CreateSideFile(name);
        file.Write(content);
        return name;
    }

    /// <summary>Looks in the lookup paths for an image that the scene knows by its name only.</summary>
    internal byte[]? FindImage(string fileName)
    {
        if (GltfUri.HasScheme(fileName) || Path.IsPathRooted(fileName))
            return null;
        foreach (string folder in _context.Options.LookupPaths)
        {
            try
            {
                string path = ConfinedPath.Resolve(folder, fileName);
                if (File.Exists(path))
                    return File.ReadAllBytes(path);
            }
            catch (Exception e) when (e is UnauthorizedAccessException or ArgumentException)
            {
                // A name that leads out of the folder is in none of them.
                return null;
            }
        }
        return null;
    }
}
