using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>What all vertex elements with a list of values share.</summary>
internal static class VertexElementTemplate
{
    /// <summary>Replaces the content of a list by a copy of an array.</summary>
    public static void Assign<T>(List<T> values, T[] data)
    {
        ArgumentNullException.ThrowIfNull(data);
        values.Clear();
        values.AddRange(data);
    }

    /// <summary>
    /// Replaces the content of a list by that of another; nothing happens when both are the same.
    /// </summary>
    public static void Assign<T>(List<T> values, List<T> source)
    {
        if (!ReferenceEquals(values, source))
        {
            values.Clear();
            values.AddRange(source);
        }
    }
}
