using System;
using System.Collections;
using System.Collections.Generic;

namespace Velbor.WrpGen.Interop;

/// <summary>What the entry points without an element type share.</summary>
internal static unsafe class Untyped
{
    /// <summary>
    /// Gives the next element to Python. The status is 0, or 1 at the end, or -1 when no Python object could be made
    /// of it.
    /// </summary>
    public static int Next(object enumerator, PyObject** result)
    {
        IEnumerator items = (IEnumerator)enumerator;
        if (!items.MoveNext())
        {
            return 1;
        }

        *result = Out.Object(items.Current);
        return *result == null ? -1 : 0;
    }

    /// <summary>How often the value stands in the collection; it stops counting at the limit.</summary>
    public static int CountOf(object collection, object? value, int limit)
    {
        object? sought = collection is IList list ? Sought(UntypedList.Over(list), value) : value;
        int count = 0;
        foreach (object? item in (IEnumerable)collection)
        {
            if (Equals(item, sought) && ++count == limit)
            {
                break;
            }
        }

        return count;
    }

    /// <summary>What to look for in a list that may hold another numeric type than Python gave.</summary>
    public static object? Sought(IList<object?> list, object? value) =>
        list is UntypedList untyped ? untyped.Sought(value) : value;

    /// <summary>Says that a Python collection cannot become an instance of the class.</summary>
    public static NotSupportedException IsAbstract(Type type) =>
        new($"'{type.FullName}' is abstract: a Python collection cannot be made into one.");
}
