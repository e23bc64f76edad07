using System;
using System.Collections.Generic;
using System.Collections.ObjectModel;

namespace Velbor.Voxlar;

/// <summary>A list that its owner watches. Null and doubles are refused.</summary>
internal abstract class OwnedList<T> : Collection<T>
    where T : class
{
    protected OwnedList()
        : base(new List<T>())
    {
    }

    /// <summary>Whether the list holds the element.</summary>
    public virtual bool Holds(T item) => Contains(item);

    /// <summary>Called before an element enters; it may throw to refuse it.</summary>
    protected abstract void Entering(T item);

    /// <summary>Called after an element has left.</summary>
    protected abstract void Left(T item);

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
        Left(old);
    }

    protected override void RemoveItem(int index)
    {
        T old = this[index];
        base.RemoveItem(index);
        Left(old);
    }

    protected override void ClearItems()
    {
        T[] old = [.. this];
        base.ClearItems();
        foreach (T item in old)
            Left(item);
    }

    private void Admit(T item)
    {
        ArgumentNullException.ThrowIfNull(item);
        if (Holds(item))
            throw new ArgumentException($"The list holds {item} already.");
        Entering(item);
    }
}
