using System;
using System.Collections.Generic;
using System.IO;

namespace Velbor.Voxlar.Utilities;

/// <summary>Turns names that come from files and callers into paths that stay inside a folder.</summary>
internal static class ConfinedPath
{
    /// <summary>Splits a relative name into its parts, with '.' and '..' resolved; '\' counts as '/'.</summary>
    /// <exception cref="UnauthorizedAccessException">The name is absolute or climbs above its start.</exception>
    /// <exception cref="ArgumentException">The name is null, empty or names no file.</exception>
    public static string[] Split(string fileName)
    {
        ArgumentException.ThrowIfNullOrEmpty(fileName);
        string name = fileName.Replace('\\', '/');
        if (name.Contains('\0'))
            throw new ArgumentException("A file name cannot hold a null character.", nameof(fileName));
        if (name[0] == '/' || (name.Length > 1 && name[1] == ':' && char.IsAsciiLetter(name[0])))
            throw new UnauthorizedAccessException($"The file name '{fileName}' is absolute; it must be relative.");
        List<string> parts = [];
        foreach (string part in name.Split('/'))
        {
            if (part.Length == 0 || part == ".")
                continue;
            if (part != "..")
                parts.Add(part);
            else if (parts.Count > 0)
                parts.RemoveAt(parts.Count - 1);
            else
                throw new UnauthorizedAccessException($"The file name '{fileName}' leads out of its folder.");
        }
        if (parts.Count == 0)
            throw new ArgumentException($"'{fileName}' names no file.", nameof(fileName));
        return [.. parts];
    }

    /// <summary>The path of a relative name below a folder, which neither '..' nor a link can leave.</summary>
    /// <exception cref="UnauthorizedAccessException">The name leads out of the folder.</exception>
    public static string Resolve(string directory, string fileName)
    {
        string root = RealPath(Path.GetFullPath(directory));
        string path = root;
        foreach (string part in Split(fileName))
        {
            path = RealPath(Path.Combine(path, part));
            if (!IsInside(root, path))
                throw new UnauthorizedAccessException($"The file name '{fileName}' leads out of its folder.");
        }
        return path;
    }

    private static bool IsInside(string root, string path) =>
        path.StartsWith(root, StringComparison.Ordinal)
        && (path.Length == root.Length || root.EndsWith('/') || path[root.Length] == Path.DirectorySeparatorChar);

    // A link is followed as far as it goes, so that what is compared is where a file really lies. A dangling link
    // resolves too: writing through it would make a file at its target.
    private static string RealPath(string path)
    {
        FileSystemInfo? target = File.ResolveLinkTarget(path, returnFinalTarget: true);
        return target is null ? path : Path.GetFullPath(target.FullName);
    }
}
