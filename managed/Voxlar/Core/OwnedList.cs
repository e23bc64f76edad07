using System;
using System.Collections.Generic;
using System.Collections.ObjectModel;

namespace Velbor.Voxlar;

/// <summary>A list that tells its owner what enters and leaves it. Null and doubles are refused.</summary>
internal sealed class OwnedList<T> : Collection<T>
    where T : class
{
    private readonly Action<T> _entering;
    private readonly Action<T> _left;

    /// <summary>Makes an empty list.</summary>
    /// <param name="entering">Called before an element enters; it may throw to refuse it.</param>
    /// <param name="left">Called after an element has left.</param>
    public OwnedList(Action<T> entering, Action<T> left)
        : base(new List<T>())
    {
        _entering = entering;
        _left = left;
    }

    protected override void InsertItem(int index, T item)
    {
        Admit(item);
        base.InsertItem(index, item);
    }

    protected override void SetItem(int index, T item)
    {
        T old = this[index];
        if (ReferenceEquals(old, item))
            return;
        Admit(item);
        base.SetItem(index, item);
        _left(old);
    }

    protected override void RemoveItem(int index)
    {
        T old = this[index];
        base.RemoveItem(index);
        _left(old);
    }

    protected override void ClearItems()
    {
        T[] old = [.. this];
        base.ClearItems();
        foreach (T item in old)
            _left(item);
    }

    private void Admit(T item)
    {
        ArgumentNullException.ThrowIfNull(item);
        if (Contains(item))
            throw new ArgumentException($"The list holds {item} already.");
        _entering(item);
    }
}
