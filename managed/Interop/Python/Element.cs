using System;
using System.Collections.Generic;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// How one element type goes between Python collections and managed ones. The element's own callback tables
/// are used where there are some, the open-typed ones otherwise; either way each change is one of the Python
/// object.
/// </summary>
internal abstract unsafe class Element<T>
{
    private readonly int _iterTable;

    protected Element(int iterTable) => _iterTable = iterTable;

    /// <summary>Whether the iterator has given one more element.</summary>
    public bool Next(PyObject* iterator, out T value)
    {
        PyObject* item = null;
        Room record = default;
        int status = _iterTable == GenericCallbacks.None
            ? PyCallbacks.fn_clbk_iter_next(iterator, &item, (VariantArg*)&record)
            : GenericCallbacks.IterNext(_iterTable, iterator, &item, &record);
        switch (status)
        {
            case 0:
                try
                {
                    value = _iterTable == GenericCallbacks.None
                        ? FromValue((VariantArg*)&record)
                        : FromRecord(&record);
                    return true;
                }
                finally
                {
                    // The record borrows from the item until here.
                    PyCallbacks.fn_xdec_ref(item);
                }

            case 1:
                value = default!;
                return false;
            default:
                throw Errors.TakePending();
        }
    }

    /// <summary>Whether a read by index costs the same at every index of a sequence.</summary>
    public virtual bool ReadsSequencesByIndex => true;

    public abstract T GetListItem(PyObject* list, int index);

    public abstract T GetSequenceItem(PyObject* sequence, int index);

    public virtual void SetItem(PyObject* list, int index, T value) =>
        Elements.CheckIndexed(PyCallbacks.fn_clbk_olist_set_item(list, index, Given(value)));

    public virtual void Add(PyObject* list, T value) =>
        Errors.Check(PyCallbacks.fn_clbk_olist_add(list, Given(value)));

    public virtual void Insert(PyObject* list, int index, T value) =>
        Elements.CheckIndexed(PyCallbacks.fn_clbk_olist_insert(list, index, Given(value)));

    public virtual bool Remove(PyObject* list, T value)
    {
        // The open-typed removal does not tell an absent element from a failure, the search does.
        int index = IndexOf(list, value);
        if (index < 0)
        {
            return false;
        }

        Elements.CheckIndexed(PyCallbacks.fn_clbk_ucol_remove_at(list, index));
        return true;
    }

    public virtual bool Contains(PyObject* list, T value) =>
        Elements.Truth(PyCallbacks.fn_clbk_olist_contains(list, Given(value)));

    public virtual int IndexOf(PyObject* list, T value) =>
        Elements.Position(PyCallbacks.fn_clbk_olist_index_of(list, Given(value)));

    public virtual bool SequenceContains(PyObject* sequence, T value) =>
        Elements.Truth(PyCallbacks.fn_clbk_oseq_contains(sequence, Given(value)));

    public virtual int SequenceIndexOf(PyObject* sequence, T value) =>
        Elements.Position(PyCallbacks.fn_clbk_oseq_index_of(sequence, Given(value)));

    /// <summary>A copy of a Python list.</summary>
    public T[] ListToArray(PyObject* list)
    {
        T[] array = new T[Length(PyCallbacks.fn_clbk_ucol_list_length(list))];
        for (int index = 0; index < array.Length; index++)
        {
            array[index] = GetListItem(list, index);
        }

        return array;
    }

    /// <summary>A copy of a Python sequence.</summary>
    public virtual T[] SequenceToArray(PyObject* sequence)
    {
        T[] array = new T[Length(PyCallbacks.fn_clbk_ucol_sequence_length(sequence))];
        for (int index = 0; index < array.Length; index++)
        {
            array[index] = GetSequenceItem(sequence, index);
        }

        return array;
    }

    /// <summary>A new Python object for the element; null with the Python error pending.</summary>
    public abstract PyObject* ToPython(T value);

    /// <summary>The element from the form that its own callbacks fill in.</summary>
    protected abstract T FromRecord(void* record);

    /// <summary>The element from an open-typed value.</summary>
    protected virtual T FromValue(VariantArg* value) => Elements.Coerce<T>(Variants.Read(value));

    /// <summary>A Python object whose reference a callback takes over.</summary>
    protected PyObject* Given(T value)
    {
        PyObject* python = ToPython(value);
        return python != null ? python : throw Errors.TakePending();
    }

    protected static int Length(nint length) => length < 0 ? throw Errors.TakePending() : checked((int)length);
}

/// <summary>
/// Holds an item of a Python list while it is read by code of Python's, which may take it out of the list that alone
/// keeps it.
/// </summary>
internal readonly unsafe ref struct HeldItem
{
    private readonly PyObject* _item;

    public HeldItem(PyObject* item)
    {
        PyCallbacks.fn_xinc_ref(item);
        _item = item;
    }

    public void Dispose() => PyCallbacks.fn_xdec_ref(_item);
}

/// <summary>Room for the largest record that a callback fills in.</summary>
internal struct Room
{
    public long First;
    public long Second;
}

/// <summary>
/// An element that has no callbacks of its own: everything goes through the open-typed ones.
/// </summary>
internal class OpenElement<T> : Element<T>
{
    public OpenElement()
        : base(GenericCallbacks.None)
    {
    }

    public override bool ReadsSequencesByIndex => false;

    public override unsafe T GetListItem(PyObject* list, int index)
    {
        VariantArg value = default;
        Elements.CheckIndexed(PyCallbacks.fn_clbk_olist_get_item(list, index, &value));
        if (!Variants.ReadRunsPython(&value))
        {
            return FromValue(&value);
        }

        using HeldItem held = new((PyObject*)value.Payload);
        return FromValue(&value);
    }

    public override unsafe T GetSequenceItem(PyObject* sequence, int index)
    {
        VariantArg value = default;
        Elements.CheckIndexed(PyCallbacks.fn_clbk_oseq_get_item(sequence, index, &value));
        try
        {
            return FromValue(&value);
        }
        finally
        {
            // The callback leaves the reference to the item to whoever has read the record.
            PyObject* item = IsWrapper(&value) ? FindWrapper(sequence, value.Payload) : (PyObject*)value.Payload;
            PyCallbacks.fn_xdec_ref(item);
        }
    }

    /// <summary>Walked by Python's own iterator, which hands each item out together with its record.</summary>
    public override unsafe T[] SequenceToArray(PyObject* sequence)
    {
        List<T> items = new(Length(PyCallbacks.fn_clbk_ucol_sequence_length(sequence)));
        PyObject* iterator = Elements.IteratorOf(sequence);
        try
        {
            while (Next(iterator, out T item))
            {
                items.Add(item);
            }
        }
        finally
        {
            PyCallbacks.fn_xdec_ref(iterator);
        }

        return [.. items];
    }

    private static unsafe bool IsWrapper(VariantArg* value) =>
        (ValueKind)value->Kind is ValueKind.Object or ValueKind.Struct;

    /// <summary>
    /// The item whose handle the record names, borrowed: a wrapper's record does not tell the wrapper, but no two
    /// wrappers share a handle. Null, with nothing pending, when the sequence does not show it a second time: one
    /// that makes its items anew each time, or that cannot be walked. Its item then stays allocated.
    /// </summary>
    private static unsafe PyObject* FindWrapper(PyObject* sequence, void* handle)
    {
        PyObject* iterator = PyCallbacks.fn_clbk_ucol_get_enumerator(sequence);
        if (iterator == null)
        {
            Errors.TakePending();
            return null;
        }

        try
        {
            PyObject* item;
            VariantArg value;
            int status;
            while ((status = PyCallbacks.fn_clbk_iter_next(iterator, &item, &value)) == 0)
            {
                bool found = IsWrapper(&value) && value.Payload == handle;
                // The reference that the read has left keeps the item alive beyond this.
                PyCallbacks.fn_xdec_ref(item);
                if (found)
                {
                    return item;
                }
            }

            if (status != 1)
            {
                Errors.TakePending();
            }

            return null;
        }
        finally
        {
            PyCallbacks.fn_xdec_ref(iterator);
        }
    }

    public override unsafe PyObject* ToPython(T value) => Variants.Write(value);

    protected override unsafe T FromRecord(void* record) => FromValue((VariantArg*)record);
}

/// <summary>An element with callbacks of its own for reading.</summary>
internal abstract unsafe class TableElement<T> : Element<T>
{
    private readonly int _listTable;
    private readonly int _sequenceTable;

    protected TableElement(int listTable, int sequenceTable, int iterTable = GenericCallbacks.None)
        : base(iterTable)
    {
        _listTable = listTable;
        _sequenceTable = sequenceTable;
    }

    protected int ListTable => _listTable;

    protected int SequenceTable => _sequenceTable;

    public override T GetListItem(PyObject* list, int index)
    {
        Room record = default;
        Elements.CheckIndexed(GenericCallbacks.ListGetItem(_listTable, list, index, &record));
        return FromRecord(&record);
    }

    public override T GetSequenceItem(PyObject* sequence, int index)
    {
        Room record = default;
        PyObject* item = null;
        Elements.CheckIndexed(GenericCallbacks.SequenceGetItem(_sequenceTable, sequence, index, &item, &record));
        try
        {
            return FromRecord(&record);
        }
        finally
        {
            // The record borrows from the item until here.
            PyCallbacks.fn_xdec_ref(item);
        }
    }
}

/// <summary>
/// An element whose callbacks write, too: it goes in as a handle that the callback consumes.
/// </summary>
internal abstract unsafe class WritableElement<T> : TableElement<T>
{
    protected WritableElement(int listTable, int sequenceTable, int iterTable)
        : base(listTable, sequenceTable, iterTable)
    {
    }

    public override void SetItem(PyObject* list, int index, T value) =>
        Elements.CheckIndexed(GenericCallbacks.ListSetItem(ListTable, list, index, ToHandle(value)));

    public override void Add(PyObject* list, T value) =>
        Errors.Check(GenericCallbacks.ListAdd(ListTable, list, ToHandle(value)));

    public override void Insert(PyObject* list, int index, T value) =>
        Elements.CheckIndexed(GenericCallbacks.ListInsert(ListTable, list, index, ToHandle(value)));

    public override bool Remove(PyObject* list, T value) =>
        Elements.Truth(GenericCallbacks.ListRemove(ListTable, list, ToHandle(value)));

    public override bool Contains(PyObject* list, T value) =>
        Elements.Truth(GenericCallbacks.ListContains(ListTable, list, ToHandle(value)));

    public override int IndexOf(PyObject* list, T value) =>
        Elements.Position(GenericCallbacks.ListIndexOf(ListTable, list, ToHandle(value)));

    public override bool SequenceContains(PyObject* sequence, T value) =>
        Elements.Truth(GenericCallbacks.SequenceContains(SequenceTable, sequence, ToHandle(value)));

    public override int SequenceIndexOf(PyObject* sequence, T value) =>
        Elements.Position(GenericCallbacks.SequenceIndexOf(SequenceTable, sequence, ToHandle(value)));

    public override PyObject* ToPython(T value) => Variants.Write(value);

    protected abstract void* ToHandle(T value);
}

/// <summary>A class element: the record is a borrowed handle.</summary>
internal sealed unsafe class ClassElement<T> : WritableElement<T?>
    where T : class
{
    public ClassElement(int listTable, int sequenceTable, int iterTable)
        : base(listTable, sequenceTable, iterTable)
    {
    }

    protected override T? FromRecord(void* record) => In.Class<T>(*(void**)record);

    protected override void* ToHandle(T? value) => Out.Class(value);
}

/// <summary>A struct element whose callbacks only read.</summary>
internal sealed unsafe class StructElement<T> : TableElement<T>
    where T : struct
{
    public StructElement(int listTable, int sequenceTable, int iterTable)
        : base(listTable, sequenceTable, iterTable)
    {
    }

    public override PyObject* ToPython(T value) => Variants.Write(value);

    protected override T FromRecord(void* record) => In.Struct<T>((VariantArg*)record);
}

/// <summary>A struct element whose callbacks write, too.</summary>
internal sealed unsafe class WritableStructElement<T> : WritableElement<T>
    where T : struct
{
    public WritableStructElement(int listTable, int sequenceTable, int iterTable)
        : base(listTable, sequenceTable, iterTable)
    {
    }

    protected override T FromRecord(void* record) => In.Struct<T>((VariantArg*)record);

    protected override void* ToHandle(T value) => Out.Struct(value);
}

/// <summary>An array of 32-bit integers as an element.</summary>
internal sealed unsafe class Int32ArrayElement : WritableElement<int[]?>
{
    public Int32ArrayElement(int listTable, int sequenceTable, int iterTable)
        : base(listTable, sequenceTable, iterTable)
    {
    }

    protected override int[]? FromRecord(void* record)
    {
        VariantArg* value = (VariantArg*)record;
        if ((ReferenceKind)value->Kind is not (ReferenceKind.Python or ReferenceKind.Sequence))
        {
            return In.Array(value, Elements.Int32);
        }

        using HeldItem held = new((PyObject*)value->Payload);
        return In.Array(value, Elements.Int32);
    }

    protected override void* ToHandle(int[]? value) => Out.Class(value);
}

/// <summary>A string element.</summary>
internal sealed unsafe class StringElement : TableElement<string?>
{
    public StringElement(int listTable, int sequenceTable)
        : base(listTable, sequenceTable)
    {
    }

    public override PyObject* ToPython(string? value) => Strings.Write(value);

    protected override string? FromRecord(void* record) => Strings.Read((PyStringArg*)record);
}

/// <summary>An element that the callbacks fill in as a machine value.</summary>
internal sealed unsafe class ScalarElement<T> : TableElement<T>
    where T : unmanaged
{
    public ScalarElement(int listTable, int sequenceTable)
        : base(listTable, sequenceTable)
    {
    }

    public override PyObject* ToPython(T value) => Variants.Write(value);

    protected override T FromRecord(void* record) => *(T*)record;
}

/// <summary>The element types, and what their callbacks' answers mean.</summary>
internal static partial class Elements
{
    private static OpenElement<object?>? s_object;

    /// <summary>An element of any type.</summary>
    public static OpenElement<object?> Object => s_object ??= new OpenElement<object?>();

    /// <summary>An element without callbacks of its own.</summary>
    public static OpenElement<T> Open<T>() => new();

    /// <summary>A new iterator over a Python object.</summary>
    public static unsafe PyObject* IteratorOf(PyObject* python)
    {
        PyObject* iterator = PyCallbacks.fn_clbk_ucol_get_enumerator(python);
        return iterator != null ? iterator : throw Errors.TakePending();
    }

    /// <summary>Throws what a status of an indexed operation says.</summary>
    public static void CheckIndexed(int status)
    {
        if (status >= 0)
        {
            return;
        }

        PythonException error = Errors.TakePending();
        throw status == -2 ? new ArgumentOutOfRangeException("index", error.Message) : error;
    }

    /// <summary>Whether a search has found the element.</summary>
    public static bool Truth(int status) => status < 0 ? throw Errors.TakePending() : status != 0;

    /// <summary>Where a search has found the element; -1 is "not at all".</summary>
    public static int Position(int status) => status < -1 ? throw Errors.TakePending() : status;

    /// <summary>A value as the element type; a number may change its type when nothing is lost.</summary>
    public static T Coerce<T>(object? value) => value is T fitting ? fitting : (T)Coercion.To(typeof(T), value)!;
}
