using System;
using System.Runtime.CompilerServices;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// The callbacks over one element type. A table is named by its place in the table of tables; values go by
/// address, since their form differs from table to table. Each call sits in a helper of its own, so that
/// callers with an exception block stay precompiled.
/// </summary>
internal static unsafe class GenericCallbacks
{
    /// <summary>
    /// Stands for "no such table": the element is then read through the open-typed callbacks.
    /// </summary>
    public const int None = -1;

    private static void*** s_tables;

    public static void SetTables(void*** tables) => s_tables = tables;

    [MethodImpl(MethodImplOptions.NoInlining)]
    public static int IterNext(int table, PyObject* iterator, PyObject** item, void* value) =>
        ((delegate* unmanaged<PyObject*, PyObject**, void*, int>)Slot(table, 0))(iterator, item, value);

    [MethodImpl(MethodImplOptions.NoInlining)]
    public static int ListGetItem(int table, PyObject* list, int index, void* value) =>
        ((delegate* unmanaged<PyObject*, int, void*, int>)Slot(table, 0))(list, index, value);

    [MethodImpl(MethodImplOptions.NoInlining)]
    public static int ListSetItem(int table, PyObject* list, int index, void* element) =>
        ((delegate* unmanaged<PyObject*, int, void*, int>)Slot(table, 1))(list, index, element);

    [MethodImpl(MethodImplOptions.NoInlining)]
    public static int ListAdd(int table, PyObject* list, void* element) =>
        ((delegate* unmanaged<PyObject*, void*, int>)Slot(table, 2))(list, element);

    [MethodImpl(MethodImplOptions.NoInlining)]
    public static int ListInsert(int table, PyObject* list, int index, void* element) =>
        ((delegate* unmanaged<PyObject*, int, void*, int>)Slot(table, 3))(list, index, element);

    [MethodImpl(MethodImplOptions.NoInlining)]
    public static int ListRemove(int table, PyObject* list, void* element) =>
        ((delegate* unmanaged<PyObject*, void*, int>)Slot(table, 4))(list, element);

    [MethodImpl(MethodImplOptions.NoInlining)]
    public static int ListContains(int table, PyObject* list, void* element) =>
        ((delegate* unmanaged<PyObject*, void*, int>)Slot(table, 5))(list, element);

    [MethodImpl(MethodImplOptions.NoInlining)]
    public static int ListIndexOf(int table, PyObject* list, void* element) =>
        ((delegate* unmanaged<PyObject*, void*, int>)Slot(table, 6))(list, element);

    [MethodImpl(MethodImplOptions.NoInlining)]
    public static int SequenceGetItem(int table, PyObject* sequence, int index, PyObject** item, void* value) =>
        ((delegate* unmanaged<PyObject*, int, PyObject**, void*, int>)Slot(table, 0))(sequence, index, item, value);

    [MethodImpl(MethodImplOptions.NoInlining)]
    public static int SequenceContains(int table, PyObject* sequence, void* element) =>
        ((delegate* unmanaged<PyObject*, void*, int>)Slot(table, 1))(sequence, element);

    [MethodImpl(MethodImplOptions.NoInlining)]
    public static int SequenceIndexOf(int table, PyObject* sequence, void* element) =>
        ((delegate* unmanaged<PyObject*, void*, int>)Slot(table, 2))(sequence, element);

    private static void* Slot(int table, int slot)
    {
        void*** tables = s_tables;
        if (tables == null)
        {
            throw new InvalidOperationException("The generic callbacks of Python have not been handed over.");
        }

        return tables[table][slot];
    }
}
