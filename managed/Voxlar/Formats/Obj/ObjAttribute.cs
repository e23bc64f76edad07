using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// Deals the values of one kind (texture coordinates or normals) out to meshes: each gets those that its
/// faces use, in the order of the file, and those that nothing uses go to the mesh of the values before them.
/// </summary>
internal sealed class ObjAttribute
{
    private readonly int[] _stamp;
    private readonly int[] _local;
    private readonly List<int>[]? _unused;

    /// <summary>Makes the plan.</summary>
    /// <param name="count">How many values there are.</param>
    /// <param name="corners">The value of each corner of all faces.</param>
    /// <param name="meshOfCorner">The mesh of each corner; null when there is one mesh only.</param>
    /// <param name="meshCount">How many meshes there are.</param>
    public ObjAttribute(int count, ReadOnlySpan<int> corners, int[]? meshOfCorner, int meshCount)
    {
        Count = count;
        if (meshOfCorner is null)
        {
            _stamp = [];
            _local = [];
            return;
        }
        _stamp = new int[count];
        _local = new int[count];
        int[] owner = new int[count];
        Array.Fill(owner, -1);
        for (int i = 0; i < corners.Length; i++)
        {
            if (corners[i] >= 0 && owner[corners[i]] < 0)
                owner[corners[i]] = meshOfCorner[i];
        }
        _unused = new List<int>[meshCount];
        int last = 0;
        for (int i = 0; i < count; i++)
        {
            if (owner[i] >= 0)
                last = owner[i];
            else
                (_unused[last] ??= []).Add(i);
        }
    }

    /// <summary>How many values there are in the file.</summary>
    public int Count { get; }

    /// <summary>Whether all values go to the one mesh, in their order.</summary>
    public bool IsWhole => _unused is null;

    /// <summary>
    /// The values of a mesh, ascending; afterwards <see cref="Local"/> tells the places in it, until the next
    /// mesh.
    /// </summary>
    /// <param name="mesh">The mesh, in ascending order from call to call.</param>
    /// <param name="corners">The values of its corners.</param>
    public int[] Take(int mesh, ReadOnlySpan<int> corners)
    {
        List<int> values = _unused![mesh] ?? [];
        foreach (int value in corners)
        {
            if (value >= 0 && _stamp[value] != mesh + 1)
            {
                _stamp[value] = mesh + 1;
                values.Add(value);
            }
        }
        int[] sorted = [.. values];
        Array.Sort(sorted);
        for (int i = 0; i < sorted.Length; i++)
            _local[sorted[i]] = i;
        return sorted;
    }

    /// <summary>The place of a value among those of the mesh that was taken last.</summary>
    public int Local(int value) =>
        value < 0 ? ObjNames.NoValue : _unused is null ? value : _local[value];
}
