using System;
using System.Collections;
using System.Collections.Generic;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// What Python does with a list, over any managed list. Indices arrive as Python wrote them unless told
/// otherwise; statuses are those of the entry points: 0 done, 1 the list is empty, 2 the index is out of
/// range.
/// </summary>
internal static class Lists
{
    public const int Done = 0;
    public const int Empty = 1;
    public const int OutOfRange = 2;

    // Entry points are compiled once and never again, while these become faster with use: the runtime learns which
    // classes come and calls them directly. So what an element takes is asked for here.

    /// <summary>Whether the enumerator has one more element.</summary>
    public static bool Next<T>(IEnumerator<T> items, out T item)
    {
        bool found = items.MoveNext();
        item = found ? items.Current : default!;
        return found;
    }

    /// <summary>The element at an index that the caller has made non-negative.</summary>
    public static int Get<T>(IList<T> list, int index, out T value)
    {
        if ((uint)index >= (uint)list.Count)
        {
            value = default!;
            return OutOfRange;
        }

        value = list[index];
        return Done;
    }

    /// <summary>The same over an array, which need not be asked through an interface.</summary>
    public static int Get<T>(T[] array, int index, out T value)
    {
        if ((uint)index >= (uint)array.Length)
        {
            value = default!;
            return OutOfRange;
        }

        value = array[index];
        return Done;
    }

    /// <summary>Writes the element at an index of an array.</summary>
    public static int Set<T>(T[] array, int index, T value)
    {
        if ((uint)index >= (uint)array.Length)
        {
            return OutOfRange;
        }

        array[index] = value;
        return Done;
    }

    /// <summary>Writes the element at an index that the caller has made non-negative.</summary>
    public static int Set<T>(IList<T> list, int index, T value)
    {
        if ((uint)index >= (uint)list.Count)
        {
            return OutOfRange;
        }

        list[index] = value;
        return Done;
    }

    public static int RemoveAt<T>(IList<T> list, int index)
    {
        if ((uint)index >= (uint)list.Count)
        {
            return OutOfRange;
        }

        list.RemoveAt(index);
        return Done;
    }

    /// <summary>
    /// Inserts as Python does: a negative index counts from the end, one beyond an end means that end.
    /// </summary>
    public static void Insert<T>(IList<T> list, int index, T value) => list.Insert(Clamp(index, list.Count), value);

    /// <summary>
    /// Takes out one element, the last without an index; a negative index counts from the end.
    /// </summary>
    public static int Pop<T>(IList<T> list, int hasIndex, int index, out T value)
    {
        value = default!;
        int count = list.Count;
        if (count == 0)
        {
            return Empty;
        }

        int at = hasIndex == 0 ? count - 1 : index < 0 ? index + count : index;
        if ((uint)at >= (uint)count)
        {
            return OutOfRange;
        }

        value = list[at];
        list.RemoveAt(at);
        return Done;
    }

    /// <summary>
    /// The first position of the value between start and stop, which count as Python's do; -1 for none.
    /// </summary>
    public static int IndexBy<T>(IList<T> list, int hasStart, int start, int hasStop, int stop, T value)
    {
        int count = list.Count;
        int first = hasStart == 0 ? 0 : Clamp(start, count);
        int last = hasStop == 0 ? count : Clamp(stop, count);
        EqualityComparer<T> comparer = EqualityComparer<T>.Default;
        for (int index = first; index < last; index++)
        {
            if (comparer.Equals(list[index], value))
            {
                return index;
            }
        }

        return -1;
    }

    public static int CountOf<T>(IEnumerable<T> items, T value)
    {
        int count = 0;
        EqualityComparer<T> comparer = EqualityComparer<T>.Default;
        foreach (T item in items)
        {
            if (comparer.Equals(item, value))
            {
                count++;
            }
        }

        return count;
    }

    /// <summary>
    /// Adds all of another managed collection; 0 when the object is none of this element type.
    /// </summary>
    public static int Concat<T>(ICollection<T> target, object? source)
    {
        if (Items<T>(source) is not { } items)
        {
            return 0;
        }

        if (target is List<T> list)
        {
            list.AddRange(ReferenceEquals(items, list) ? [.. items] : items);
            return 1;
        }

        // A copy first: the source may be the target, or a view of it.
        foreach (T item in new List<T>(items))
        {
            target.Add(item);
        }

        return 1;
    }

    /// <summary>Repeats the elements so often in all; none are left for a count below 1.</summary>
    public static void Repeat<T>(ICollection<T> target, int count)
    {
        if (count < 1)
        {
            target.Clear();
            return;
        }

        T[] items = [.. target];
        for (int round = 1; round < count; round++)
        {
            foreach (T item in items)
            {
                target.Add(item);
            }
        }
    }

    /// <summary>
    /// Writes the elements of another managed list at start, start + step and so on; 0 when the object is
    /// none of this element type or not of that size.
    /// </summary>
    public static int SetItems<T>(IList<T> target, object? source, int start, int count, int step)
    {
        if (Items<T>(source) is not { } items)
        {
            return 0;
        }

        T[] values = [.. items];
        if (values.Length != count)
        {
            return 0;
        }

        if (step == 1 && target is T[] array)
        {
            Array.Copy(values, 0, array, start, count);
            return 1;
        }

        for (int done = 0, index = start; done < count; done++, index += step)
        {
            target[index] = values[done];
        }

        return 1;
    }

    /// <summary>Removes count elements at start, start + step and so on; the step walks down.</summary>
    public static void RemoveItems<T>(IList<T> list, int start, int count, int step)
    {
        for (int done = 0, index = start; done < count; done++, index += step)
        {
            list.RemoveAt(index);
        }
    }

    /// <summary>The same, but a step of -1 stands for one run whose lowest index is start.</summary>
    public static void RemoveRun<T>(IList<T> list, int start, int count, int step)
    {
        if (step != -1)
        {
            RemoveItems(list, start, count, step);
        }
        else if (list is List<T> own)
        {
            own.RemoveRange(start, count);
        }
        else
        {
            RemoveItems(list, start + count - 1, count, -1);
        }
    }

    public static void Reverse<T>(IList<T> list)
    {
        switch (list)
        {
            case T[] array:
                Array.Reverse(array);
                break;
            case List<T> own:
                own.Reverse();
                break;
            default:
                for (int low = 0, high = list.Count - 1; low < high; low++, high--)
                {
                    (list[low], list[high]) = (list[high], list[low]);
                }

                break;
        }
    }

    /// <summary>
    /// Sorts by the elements' own order, and keeps equal ones in their order, as Python does.
    /// </summary>
    public static void Sort<T>(IList<T> list, bool reverse)
    {
        T[] items = [.. list];
        int[] places = new int[items.Length];
        for (int index = 0; index < places.Length; index++)
        {
            places[index] = index;
        }

        Comparer<T> comparer = Comparer<T>.Default;
        Array.Sort(places, (left, right) =>
        {
            int order = comparer.Compare(items[left], items[right]);
            order = reverse ? -order : order;
            return order != 0 ? order : left.CompareTo(right);
        });
        for (int index = 0; index < places.Length; index++)
        {
            list[index] = items[places[index]];
        }
    }

    /// <summary>Makes room for so many more elements.</summary>
    public static void EnsureRoom<T>(List<T> list, int count)
    {
        if (count > 0)
        {
            list.EnsureCapacity(checked(list.Count + count));
        }
    }

    /// <summary>The same for a list without an element type.</summary>
    public static void EnsureRoom(ArrayList list, int count)
    {
        if (list.Capacity - list.Count < count)
        {
            list.Capacity = checked(list.Count + count);
        }
    }

    /// <summary>
    /// The elements of another object if it is a collection of this element type, or of objects that are.
    /// </summary>
    private static IEnumerable<T>? Items<T>(object? source) => source switch
    {
        IEnumerable<T> items => items,
        string => null,
        IEnumerable items when typeof(T) == typeof(object) => Untyped<T>(items),
        _ => null,
    };

    private static IEnumerable<T> Untyped<T>(IEnumerable items)
    {
        foreach (object? item in items)
        {
            yield return (T)item!;
        }
    }

    private static int Clamp(int index, int count)
    {
        if (index < 0)
        {
            index += count;
        }

        return Math.Clamp(index, 0, count);
    }
}

/// <summary>
/// A list without an element type as one of objects. Numbers that go in are converted to what the list holds,
/// since Python's integers and reals arrive in the type that fits their value.
/// </summary>
internal sealed class UntypedList : IList<object?>
{
    private readonly IList _list;

    public UntypedList(IList list) => _list = list;

    /// <summary>The list itself; it need not be changed in type when its elements are objects.</summary>
    public static IList<object?> Over(object list) =>
        list is IList<object?> objects and not Array ? objects : new UntypedList((IList)list);

    public int Count => _list.Count;

    public bool IsReadOnly => _list.IsReadOnly;

    public object? this[int index]
    {
        get => _list[index];
        set => _list[index] = Coercion.To(ElementType, value);
    }

    private Type? ElementType => ElementTypes.Of(_list.GetType());

    public void Add(object? item) => _list.Add(Coercion.To(ElementType, item));

    public void Clear() => _list.Clear();

    public bool Contains(object? item) => IndexOf(item) >= 0;

    public int IndexOf(object? item) => _list.IndexOf(Sought(item));

    public void Insert(int index, object? item) => _list.Insert(index, Coercion.To(ElementType, item));

    public bool Remove(object? item)
    {
        int index = IndexOf(item);
        if (index >= 0)
        {
            _list.RemoveAt(index);
        }

        return index >= 0;
    }

    public void RemoveAt(int index) => _list.RemoveAt(index);

    public void CopyTo(object?[] array, int arrayIndex) => _list.CopyTo(array, arrayIndex);

    public IEnumerator<object?> GetEnumerator()
    {
        foreach (object? item in _list)
        {
            yield return item;
        }
    }

    IEnumerator IEnumerable.GetEnumerator() => _list.GetEnumerator();

    /// <summary>What to look for: a number that the list could hold in that type.</summary>
    public object? Sought(object? item) =>
        item != null && ElementType is { } type ? Coercion.TryTo(type, item) ?? item : item;
}

/// <summary>The element types of list classes, found once each.</summary>
internal static class ElementTypes
{
    private static readonly System.Collections.Concurrent.ConcurrentDictionary<Type, Type?> s_known = new();

    /// <summary>What a list of that class holds; null when it holds anything.</summary>
    public static Type? Of(Type list) => s_known.GetOrAdd(list, static type =>
    {
        if (type.IsArray)
        {
            return type.GetElementType();
        }

        foreach (Type face in type.GetInterfaces())
        {
            if (face.IsGenericType && face.GetGenericTypeDefinition() == typeof(IList<>))
            {
                return face.GetGenericArguments()[0];
            }
        }

        return null;
    });
}
