using System;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// The rule for numbers of segments: 1 or more can be set, and a mesh has at least as many as its body needs.
/// </summary>
internal static class Segments
{
    /// <summary>Gives the value back if it can be set.</summary>
    /// <exception cref="ArgumentOutOfRangeException">It is less than 1.</exception>
    public static int Checked(int value)
    {
        ArgumentOutOfRangeException.ThrowIfLessThan(value, 1);
        return value;
    }
}
