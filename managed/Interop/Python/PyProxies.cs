using System;
using System.Collections;
using System.Collections.Generic;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// Something managed that stands for a Python object; as a result it goes back as that object.
/// </summary>
internal unsafe interface IPythonBacked
{
    /// <summary>The Python object, borrowed.</summary>
    PyObject* Python { get; }
}

/// <summary>
/// Owns one reference to a Python object; its finalizer queues the release for the next entry.
/// </summary>
internal sealed unsafe class PyReference
{
    private readonly PyObject* _python;

    /// <summary>Takes a reference of its own; runs during a call from Python.</summary>
    public PyReference(PyObject* python)
    {
        // Its own reference first: giving others back may run code that drops the one which was lent.
        PyCallbacks.fn_xinc_ref(python);
        _python = python;
        PendingReleases.GiveBack();
    }

    ~PyReference() => PendingReleases.Add(_python);

    /// <summary>The object, wherever this runs: it may only be handed on, not used.</summary>
    public PyObject* Python => _python;

    /// <summary>The object, after a test that this thread may use it.</summary>
    public PyObject* Checked()
    {
        PythonThread.Require();
        return _python;
    }
}

/// <summary>A managed stand-in for a Python object; two of one object are equal.</summary>
internal abstract unsafe class PyProxy : IPythonBacked
{
    private readonly PyReference _reference;

    protected PyProxy(PyObject* python) => _reference = new PyReference(python);

    public PyObject* Python => _reference.Python;

    /// <summary>The object, after a test that this thread may use it.</summary>
    protected PyObject* Checked() => _reference.Checked();

    public override bool Equals(object? other) => other is IPythonBacked backed && backed.Python == Python;

    public override int GetHashCode() => ((nint)Python).GetHashCode();
}

/// <summary>A Python iterable.</summary>
internal unsafe class PyEnumerableProxy<T> : PyProxy, IEnumerable<T>
{
    public PyEnumerableProxy(PyObject* python, Element<T> element)
        : base(python) => Element = element;

    protected Element<T> Element { get; }

    public virtual IEnumerator<T> GetEnumerator()
    {
        PyObject* iterator = Elements.IteratorOf(Checked());
        PyIteratorProxy<T> result = new(iterator, Element);
        PyCallbacks.fn_xdec_ref(iterator);
        return result;
    }

    IEnumerator IEnumerable.GetEnumerator() => GetEnumerator();
}

/// <summary>A Python iterator.</summary>
internal sealed unsafe class PyIteratorProxy<T> : PyProxy, IEnumerator<T>
{
    private readonly Element<T> _element;
    private T _current = default!;

    public PyIteratorProxy(PyObject* python, Element<T> element)
        : base(python) => _element = element;

    public T Current => _current;

    object? IEnumerator.Current => _current;

    public bool MoveNext() => _element.Next(Checked(), out _current);

    public void Reset() => throw new NotSupportedException("A Python iterator cannot start again.");

    public void Dispose()
    {
    }
}

/// <summary>A Python iterable that knows its length: it can be counted and walked, not changed.</summary>
internal unsafe class PyCollectionProxy<T> : PyEnumerableProxy<T>, ICollection<T>, ICollection
{
    public PyCollectionProxy(PyObject* python, Element<T> element)
        : base(python, element)
    {
    }

    public virtual int Count => Length(PyCallbacks.fn_clbk_ucol_object_length(Checked()));

    public virtual bool IsReadOnly => true;

    public bool IsSynchronized => false;

    public object SyncRoot => this;

    public virtual void Add(T item) => throw CannotChange();

    public virtual void Clear() => throw CannotChange();

    public virtual bool Remove(T item) => throw CannotChange();

    public virtual bool Contains(T item)
    {
        foreach (T one in this)
        {
            if (EqualityComparer<T>.Default.Equals(one, item))
            {
                return true;
            }
        }

        return false;
    }

    public void CopyTo(T[] array, int arrayIndex)
    {
        foreach (T one in this)
        {
            array[arrayIndex++] = one;
        }
    }

    public void CopyTo(Array array, int index)
    {
        foreach (T one in this)
        {
            array.SetValue(one, index++);
        }
    }

    protected static int Length(nint length) =>
        length < 0 ? throw Errors.TakePending() : checked((int)length);

    protected static NotSupportedException CannotChange() =>
        new("The Python object is not a list, so it cannot be changed from here.");
}

/// <summary>A Python sequence that is not a list: read access by index.</summary>
internal unsafe class PySequenceProxy<T> : PyCollectionProxy<T>, IList<T>, IList, IReadOnlyList<T>
{
    public PySequenceProxy(PyObject* python, Element<T> element)
        : base(python, element)
    {
    }

    public override int Count => Length(PyCallbacks.fn_clbk_ucol_sequence_length(Checked()));

    public bool IsFixedSize => IsReadOnly;

    public T this[int index]
    {
        get => GetItem(index);
        set => SetItem(index, value);
    }

    object? IList.this[int index]
    {
        get => GetItem(index);
        set => SetItem(index, (T)value!);
    }

    public override bool Contains(T item) => Element.SequenceContains(Checked(), item);

    public virtual int IndexOf(T item) => Element.SequenceIndexOf(Checked(), item);

    public virtual void Insert(int index, T item) => throw CannotChange();

    public virtual void RemoveAt(int index) => throw CannotChange();

    int IList.Add(object? value)
    {
        Add((T)value!);
        return Count - 1;
    }

    bool IList.Contains(object? value) => Contains((T)value!);

    int IList.IndexOf(object? value) => IndexOf((T)value!);

    void IList.Insert(int index, object? value) => Insert(index, (T)value!);

    void IList.Remove(object? value) => Remove((T)value!);

    public override IEnumerator<T> GetEnumerator() =>
        !IsReadOnly || Element.ReadsSequencesByIndex ? ByIndex() : base.GetEnumerator();

    private IEnumerator<T> ByIndex()
    {
        for (int index = 0; index < Count; index++)
        {
            yield return GetItem(index);
        }
    }

    protected virtual T GetItem(int index) => Element.GetSequenceItem(Checked(), InRange(index));

    protected virtual void SetItem(int index, T item) => throw CannotChange();

    /// <summary>
    /// A negative index means something else in Python, so it is refused before it gets there.
    /// </summary>
    protected static int InRange(int index) =>
        index >= 0 ? index : throw new ArgumentOutOfRangeException(nameof(index));
}

/// <summary>A Python list: every change is a change of that list.</summary>
internal sealed unsafe class PyListProxy<T> : PySequenceProxy<T>
{
    public PyListProxy(PyObject* python, Element<T> element)
        : base(python, element)
    {
    }

    public override int Count => Length(PyCallbacks.fn_clbk_ucol_list_length(Checked()));

    public override bool IsReadOnly => false;

    public override void Add(T item) => Element.Add(Checked(), item);

    public override void Clear() => Errors.Check(PyCallbacks.fn_clbk_ucol_clear(Checked()));

    public override bool Contains(T item) => Element.Contains(Checked(), item);

    public override int IndexOf(T item) => Element.IndexOf(Checked(), item);

    public override void Insert(int index, T item) => Element.Insert(Checked(), InRange(index), item);

    public override bool Remove(T item) => Element.Remove(Checked(), item);

    public override void RemoveAt(int index) =>
        Elements.CheckIndexed(PyCallbacks.fn_clbk_ucol_remove_at(Checked(), InRange(index)));

    protected override T GetItem(int index) => Element.GetListItem(Checked(), InRange(index));

    protected override void SetItem(int index, T item) => Element.SetItem(Checked(), InRange(index), item);
}
