using System;
using System.Collections;
using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// The polygons of a mesh, kept as one array of corners and one of places, so that a triangle costs 16 bytes
/// and no object. As a list it gives and takes polygons as arrays, which are copies.
/// </summary>
internal sealed class PolygonStore : IList<int[]>
{
    private int[] _corners = [];

    // The place behind the last corner of each polygon; the first polygon starts at 0.
    private int[] _ends = [];

    /// <summary>The number of polygons.</summary>
    public int Count { get; private set; }

    /// <summary>The number of corners of all polygons.</summary>
    public int CornerCount => Count == 0 ? 0 : _ends[Count - 1];

    /// <summary>
    /// Raised with every change, so that what was derived from the polygons can be found out of date.
    /// </summary>
    public int Version { get; private set; }

    /// <summary>
    /// The corners of all polygons, one polygon after the other; valid until the next change.
    /// </summary>
    public ReadOnlySpan<int> Corners => _corners.AsSpan(0, CornerCount);

    public bool IsReadOnly => false;

    public int[] this[int index]
    {
        get => Polygon(index).ToArray();
        set
        {
            Check(value);
            CheckIndex(index, Count - 1);
            Splice(index, 1, value, inserted: 1);
        }
    }

    /// <summary>The corners of a polygon; valid until the next change.</summary>
    public ReadOnlySpan<int> Polygon(int index)
    {
        CheckIndex(index, Count - 1);
        int start = Start(index);
        return _corners.AsSpan(start, _ends[index] - start);
    }

    /// <summary>The index of the first corner of a polygon among all corners.</summary>
    public int Start(int index) => index == 0 ? 0 : _ends[index - 1];

    public int Size(int index)
    {
        CheckIndex(index, Count - 1);
        return _ends[index] - Start(index);
    }

    /// <summary>Appends a polygon.</summary>
    /// <exception cref="ArgumentException">It has fewer than three corners or a negative index.</exception>
    public void Add(ReadOnlySpan<int> polygon)
    {
        Check(polygon);
        int start = CornerCount;
        Reserve(ref _corners, start + polygon.Length);
        Reserve(ref _ends, Count + 1);
        polygon.CopyTo(_corners.AsSpan(start));
        _ends[Count++] = start + polygon.Length;
        ++Version;
    }

    public void Add(int[] item)
    {
        ArgumentNullException.ThrowIfNull(item);
        Add(item.AsSpan());
    }

    /// <summary>Makes room for many polygons at once.</summary>
    public void EnsureCapacity(int polygons, int corners)
    {
        if (_ends.Length < polygons)
            Array.Resize(ref _ends, polygons);
        if (_corners.Length < corners)
            Array.Resize(ref _corners, corners);
    }

    public void Insert(int index, int[] item)
    {
        Check(item);
        CheckIndex(index, Count);
        Splice(index, 0, item, inserted: 1);
    }

    public void RemoveAt(int index)
    {
        CheckIndex(index, Count - 1);
        Splice(index, 1, [], inserted: 0);
    }

    public bool Remove(int[] item)
    {
        int index = IndexOf(item);
        if (index < 0)
            return false;
        RemoveAt(index);
        return true;
    }

    public void Clear()
    {
        Count = 0;
        ++Version;
    }

    public bool Contains(int[] item) => IndexOf(item) >= 0;

    /// <summary>Finds the first polygon with the same corners in the same order.</summary>
    public int IndexOf(int[] item)
    {
        if (item is null)
            return -1;
        for (int i = 0; i < Count; ++i)
        {
            if (Polygon(i).SequenceEqual(item))
                return i;
        }
        return -1;
    }

    public void CopyTo(int[][] array, int arrayIndex)
    {
        ArgumentNullException.ThrowIfNull(array);
        ArgumentOutOfRangeException.ThrowIfNegative(arrayIndex);
        if (array.Length - arrayIndex < Count)
            throw new ArgumentException("The array has too little room for the polygons.", nameof(array));
        for (int i = 0; i < Count; ++i)
            array[arrayIndex + i] = this[i];
    }

    public IEnumerator<int[]> GetEnumerator()
    {
        int version = Version;
        for (int i = 0; i < Count; ++i)
        {
            yield return this[i];
            if (version != Version)
                throw new InvalidOperationException("The polygons were changed while they were enumerated.");
        }
    }

    IEnumerator IEnumerable.GetEnumerator() => GetEnumerator();

    private static void Check(int[]? polygon)
    {
        ArgumentNullException.ThrowIfNull(polygon);
        Check(polygon.AsSpan());
    }

    private static void Check(ReadOnlySpan<int> polygon)
    {
        if (polygon.Length < 3)
            throw new ArgumentException("A polygon has at least three corners.");
        foreach (int index in polygon)
        {
            if (index < 0)
                throw new ArgumentException("The index of a control point is not negative.");
        }
    }

    private static void CheckIndex(int index, int last)
    {
        if (index < 0 || index > last)
            throw new ArgumentOutOfRangeException(nameof(index), "There is no polygon of that index.");
    }

    private static void Reserve(ref int[] array, int needed)
    {
        if (array.Length < needed)
            Array.Resize(ref array, Math.Max(Math.Max(needed, 16), array.Length + array.Length / 2));
    }

    private void Splice(int index, int removed, int[] polygon, int inserted)
    {
        int start = Start(index);
        int removedCorners = removed == 0 ? 0 : _ends[index] - start;
        int oldCorners = CornerCount;
        int shift = polygon.Length - removedCorners;
        int moved = oldCorners - start - removedCorners;
        Reserve(ref _corners, oldCorners + Math.Max(shift, 0));
        Array.Copy(_corners, start + removedCorners, _corners, start + polygon.Length, moved);
        polygon.CopyTo(_corners, start);

        Reserve(ref _ends, Count + inserted - removed);
        Array.Copy(_ends, index + removed, _ends, index + inserted, Count - index - removed);
        Count += inserted - removed;
        if (inserted == 1)
            _ends[index] = start + polygon.Length;
        for (int i = index + inserted; i < Count; ++i)
            _ends[i] += shift;
        ++Version;
    }
}
