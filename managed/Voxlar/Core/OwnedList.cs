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
    private readonly Predicate<T> _holds;

    /// <summary>Makes an empty list.</summary>
    /// <param name="entering">Called before an element enters; it may throw to refuse it.</param>
    /// <param name="left">Called after an element has left.</param>
    /// <param name="holds">A faster way to tell that the list holds an element; null for a search.</param>
    public OwnedList(Action<T> entering, Action<T> left, Predicate<T>? holds = null)
        : base(new List<T>())
    {
        _holds = holds ?? Contains;
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
        if (_holds(item))
            throw new ArgumentException($"The list holds {item} already.");
        _entering(item);
    }
}
