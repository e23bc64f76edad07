using System;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// Makes names of files out of OBJ and MTL files, which often are of the writer's own machine, relative.
/// </summary>
internal static class ObjFileNames
{
    /// <summary>
    /// The name with "/" between folders; of a name that is absolute or climbs out of its folder only the
    /// last part. Empty when that names no file.
    /// </summary>
    public static string Inside(string told)
    {
        string name = told.Replace('\\', '/');
        if (name is ['"', .., '"'])
            name = name[1..^1];
        bool leads = name.StartsWith('/') || name.Contains(':', StringComparison.Ordinal)
            || Array.IndexOf(name.Split('/'), "..") >= 0;
        if (leads)
            name = name[(name.LastIndexOf('/') + 1)..];
        while (name.StartsWith("./", StringComparison.Ordinal))
            name = name[2..].TrimStart('/');
        return name is "." or ".." || name.Contains('\0') || name.EndsWith('/') ? "" : name;
    }
}
