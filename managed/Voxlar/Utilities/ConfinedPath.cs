using System;
using System.Collections.Generic;
using System.IO;

namespace Velbor.Voxlar.Utilities;

/// <summary>Turns names that come from files and callers into paths that stay inside a folder.</summary>
internal static class ConfinedPath
{
    // As many as the kernel follows before it gives up.
    private const int MaxLinks = 40;

    /// <summary>Splits a relative name into its parts, with '.' and '..' resolved; '\' counts as
    /// '/'.</summary>
    /// <exception cref="UnauthorizedAccessException">The name is absolute or climbs above its
    /// start.</exception>
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

    /// <summary>The path of a relative name below a folder, which neither '..' nor a link can
    /// leave.</summary>
    /// <exception cref="UnauthorizedAccessException">The name leads out of the folder.</exception>
    public static string Resolve(string directory, string fileName)
    {
        string[] parts = Split(fileName);
        string root = RealPath(Path.GetFullPath(directory));
        string path = RealPath(Path.Combine([root, .. parts]));
        string inside = root.EndsWith(Path.DirectorySeparatorChar) ? root : root + Path.DirectorySeparatorChar;
        return path.StartsWith(inside, StringComparison.Ordinal)
            ? path
            : throw new UnauthorizedAccessException($"The file name '{fileName}' leads out of its folder.");
    }

    // Where a path really lies: every link on the way is followed. A dangling link is followed too, since
    // writing through it would make a file at its target; what does not exist is taken as it is.
    private static string RealPath(string path)
    {
        string start = Path.GetPathRoot(path)!;
        string result = start;
        Stack<string> open = new();
        Push(open, path[start.Length..]);
        for (int links = 0; open.TryPop(out string? part);)
        {
            if (part == "..")
            {
                result = Path.GetDirectoryName(result) ?? start;
                continue;
            }
            string next = Path.Combine(result, part);
            if (new FileInfo(next).LinkTarget is not { } target)
            {
                result = next;
                continue;
            }
            if (++links > MaxLinks)
                throw new IOException($"The path '{path}' runs through too many links.");
            if (Path.IsPathRooted(target))
                result = start;
            Push(open, target);
        }
        return result;
    }

    private static void Push(Stack<string> open, string path)
    {
        string[] parts = path.Split(Path.DirectorySeparatorChar, StringSplitOptions.RemoveEmptyEntries);
        for (int i = parts.Length - 1; i >= 0; i--)
        {
            if (parts[i] != ".")
                open.Push(parts[i]);
        }
    }
}
