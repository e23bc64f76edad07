using System;
using System.IO;

namespace Velbor.Voxlar.Utilities;

/// <summary>Helpers of the readers and writers; it has no public members.</summary>
public static class IOUtils
{
    private const int MaxLength = 0x7fffffc7;

    /// <summary>Everything from the stream's position to its end.</summary>
    /// <exception cref="IOException">There is more than one array can hold.</exception>
    internal static byte[] ReadToEnd(Stream stream)
    {
        if (stream.CanSeek)
        {
            long left = Math.Max(0, stream.Length - stream.Position);
            if (left > MaxLength)
                throw new IOException($"The stream has {left} bytes; at most {MaxLength} can be read at once.");
            byte[] exact = GC.AllocateUninitializedArray<byte>((int)left);  // what the read fills is given
            int read = stream.ReadAtLeast(exact, exact.Length, throwOnEndOfStream: false);
            return read == exact.Length ? exact : exact[..read];
        }
        using MemoryStream copy = new();
        stream.CopyTo(copy);
        return copy.ToArray();
    }
}
