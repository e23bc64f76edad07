using System;

namespace Velbor.Voxlar.Profiles;

/// <summary>A font for <see cref="Text"/>. Reading fonts is not available in this build.</summary>
public class FontFile : VbrObject
{
    private FontFile()
        : base("")
    {
    }

    /// <summary>Would read a font from a file.</summary>
    /// <param name="fileName">The name of the file.</param>
    /// <exception cref="NotSupportedException">Always: no font reader is built in.</exception>
    public static FontFile FromFile(string fileName)
    {
        ArgumentNullException.ThrowIfNull(fileName);
        throw NoReader();
    }

    /// <summary>Would read a font from the bytes of a font file.</summary>
    /// <param name="bytes">The bytes.</param>
    /// <exception cref="NotSupportedException">Always: no font reader is built in.</exception>
    public static FontFile Parse(byte[] bytes)
    {
        ArgumentNullException.ThrowIfNull(bytes);
        throw NoReader();
    }

    private static NotSupportedException NoReader() => new("reading fonts is not available in this build");
}
