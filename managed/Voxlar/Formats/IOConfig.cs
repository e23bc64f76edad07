using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats;

/// <summary>What reading and writing have in common.</summary>
public abstract class IOConfig
{
    private List<string> _lookupPaths = [];

    private protected IOConfig(FileFormat? fileFormat) => FileFormat = fileFormat;

    /// <summary>The format; null when the content or the file name tells it.</summary>
    public FileFormat? FileFormat { get; }

    /// <summary>The name of the text encoding, such as "utf-8"; null for the format's own.</summary>
    public string? Encoding { get; set; }

    /// <summary>Where files beside the scene file are read and written; null for the folder of the scene
    /// file.</summary>
    public FileSystem? FileSystem { get; set; }

    /// <summary>Folders in which files beside the scene file are looked for, after the folder of the scene
    /// file.
    /// </summary>
    public List<string> LookupPaths
    {
        get => _lookupPaths;
        set => _lookupPaths = value ?? [];
    }

    /// <summary>The name of the scene file, for messages and as the place of the files beside it; null for
    /// none.
    /// </summary>
    public string? FileName { get; set; }
}
