using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Runtime.CompilerServices;
using System.Threading;
using Velbor.WrpGen.Interop;
using Xunit;

namespace WrpInterop.Tests;

public unsafe class ProxyTests : InteropTest
{
    private static VariantArg Python(object value, int kind = 2) =>
        new() { Kind = kind, Payload = FakePython.Borrow(value) };

    [Fact]
    public void A_list_is_read_and_changed_in_place()
    {
        List<object?> python = [1.0, 2.0];
        VariantArg record = Python(python);
        IList<double> list = In.IList(&record, Elements.Double)!;
        Assert.Equal(2, list.Count);
        Assert.Equal(2.0, list[1]);
        list.Add(3.0);
        list.Insert(0, 0.5);
        list[1] = 1.5;
        Assert.Equal(new object?[] { 0.5, 1.5, 2.0, 3.0 }, python);
        Assert.Equal(2, list.IndexOf(2.0));
        Assert.True(list.Contains(3.0));
        Assert.True(list.Remove(2.0));
        Assert.False(list.Remove(77.0));
        list.RemoveAt(0);
        Assert.Equal([1.5, 3.0], list);
        list.Clear();
        Assert.Empty(python);
    }

    [Fact]
    public void An_index_out_of_range_is_that_exception()
    {
        VariantArg record = Python(new List<object?> { 1.0 });
        IList<double> list = In.IList(&record, Elements.Double)!;
        Assert.Throws<ArgumentOutOfRangeException>(() => list[1]);
        Assert.Throws<ArgumentOutOfRangeException>(() => list[-1]);
        Assert.Throws<ArgumentOutOfRangeException>(() => list.RemoveAt(5));
        Assert.Null(FakePython.Pending);
    }

    [Fact]
    public void An_element_of_another_type_shows_when_it_is_read()
    {
        VariantArg record = Python(new List<object?> { 1.0, "two" });
        IList<double> list = In.IList(&record, Elements.Double)!;
        Assert.Equal(1.0, list[0]);
        PythonException error = Assert.Throws<PythonException>(() => list[1]);
        Assert.Contains("can't build 'Double'", error.Message);
    }

    [Fact]
    public void A_sequence_is_read_and_cannot_be_changed()
    {
        VariantArg record = Python(new PyTuple([1, 2, 3]), 3);
        IList<int> list = In.IList(&record, Elements.Int32)!;
        Assert.Equal([1, 2, 3], list);
        Assert.Equal(1, list.IndexOf(2));
        Assert.Throws<NotSupportedException>(() => list.Add(4));
        Assert.Throws<NotSupportedException>(() => list[0] = 4);
    }

    [Fact]
    public void Reading_a_sequence_of_any_type_leaves_no_reference()
    {
        object target = new();
        With(target, handle =>
        {
            VariantArg record = Python(new PyTuple(["a", 1.5, new PyWrapper((nint)handle, false, "x")]), 3);
            IList<object?> list = In.IList(&record, Elements.Object)!;
            int before = FakePython.References;
            Assert.Equal("a", list[0]);
            Assert.Same(target, list[2]);
            Assert.Equal(before, FakePython.References);
            Assert.Equal(["a", 1.5, target], In.Array(&record, Elements.Object)!);
            Assert.Equal(before, FakePython.References);
        });
    }

    [Fact]
    public void Arrays_and_lists_are_copies()
    {
        List<object?> python = ["a", null];
        VariantArg record = Python(python);
        string?[] array = In.Array(&record, Elements.String)!;
        Assert.Equal(2, array.Length);
        Assert.Equal("a", array[0]);
        Assert.Null(array[1]);
        List<string?> list = In.List(&record, Elements.String)!;
        python.Clear();
        Assert.Equal(2, list.Count);
        VariantArg tuple = Python(new PyTuple([1, 2]), 3);
        Assert.Equal([1, 2], In.Array(&tuple, Elements.Int32)!);
        VariantArg none = default;
        Assert.Null(In.Array(&none, Elements.Int32));
        Assert.Null(In.IList(&none, Elements.Int32));
    }

    [Fact]
    public void Managed_collections_pass_as_themselves()
    {
        int[] array = [1, 2];
        With(array, handle =>
        {
            VariantArg record = new() { Payload = (void*)handle };
            Assert.Same(array, In.Array(&record, Elements.Int32));
            Assert.Same(array, In.IList(&record, Elements.Int32));
            nint address = (nint)(&record);
            Assert.Throws<InvalidCastException>(() => In.List((VariantArg*)address, Elements.Int32));
        });
    }

    [Fact]
    public void Iterables_collections_and_iterators_are_walked()
    {
        VariantArg record = Python(new PySet([1, 2]));
        ICollection<object?> set = In.ICollection(&record, Elements.Object)!;
        Assert.Equal(2, set.Count);
        Assert.True(set.Contains(2));
        Assert.Equal(new object?[] { 1, 2 }, set);
        Assert.Throws<NotSupportedException>(() => set.Add(3));
        IEnumerable<int> numbers = In.Iterable(&record, Elements.Open<int>())!;
        Assert.Equal([1, 2], numbers);
        VariantArg iterator = Python(new PyIterator(((IEnumerable<object?>)["x"]).GetEnumerator()));
        using IEnumerator<object?> items = In.Iterator(&iterator, Elements.Object)!;
        Assert.True(items.MoveNext());
        Assert.Equal("x", items.Current);
        Assert.False(items.MoveNext());
    }

    [Fact]
    public void An_iteration_that_raises_ends_with_the_text()
    {
        IEnumerable<object?> Failing()
        {
            yield return 1;
            throw new PyError("ValueError", "in the middle");
        }

        VariantArg record = Python(Failing());
        IEnumerable<object?> items = In.Iterable(&record, Elements.Object)!;
        PythonException error = Assert.Throws<PythonException>(() => items.Count());
        Assert.Equal("ValueError: in the middle", error.Message);
    }

    [Fact]
    public void A_proxy_goes_back_as_its_object()
    {
        VariantArg record = Python(new List<object?>());
        IList<double> list = In.IList(&record, Elements.Double)!;
        PyCollectionArg result = default;
        Out.Collection(list, &result);
        Assert.Equal(2, result.Kind);
        Assert.Equal((nint)record.Payload, (nint)result.Handle);
        Out.Collection(new List<double>(), &result);
        Assert.Equal(0, result.Kind);
        Assert.NotEqual(0, result.TypeKey);
        Handles.Free(result.Handle);
        Out.List<double>(null, &result);
        Assert.True(result.Handle == null);
    }

    [Fact]
    public void A_proxy_holds_a_reference_and_gives_it_back_at_an_entry()
    {
        PyObject* python = FakePython.New(new List<object?>());
        MakeAndForget(python);
        for (int round = 0; round < 20 && !PendingReleases.Any; round++)
        {
            GC.Collect();
            GC.WaitForPendingFinalizers();
        }

        Assert.Equal(2, FakePython.ReferencesOf(python));
        PendingReleases.GiveBack();
        Assert.Equal(1, FakePython.ReferencesOf(python));
    }

    [Fact]
    public void A_proxy_has_its_own_reference_before_it_gives_others_back()
    {
        PyObject* lent = FakePython.New(new List<object?>());
        PyObject* ending = FakePython.New("ending");
        PendingReleases.Add(ending);
        bool dropped = false;
        FakePython.OnRelease = python =>
        {
            if (python == (nint)ending && !dropped)
            {
                dropped = true;
                FakePython.Release(lent);
                Assert.Equal(1, FakePython.ReferencesOf(lent));
            }
        };
        try
        {
            PyListProxy<double> proxy = new(lent, Elements.Double);
            Assert.True(dropped);
            GC.KeepAlive(proxy);
        }
        finally
        {
            FakePython.OnRelease = null;
        }
    }

    [Fact]
    public void Another_thread_is_refused()
    {
        VariantArg record = Python(new List<object?> { 1.0 });
        IList<double> list = In.IList(&record, Elements.Double)!;
        Stream stream = new PyStream((PyObject*)FakePython.Borrow(new FakeFile()));
        Exception? fromList = null;
        Exception? fromStream = null;
        Thread thread = new(() =>
        {
            fromList = Record.Exception(() => list.Count);
            fromStream = Record.Exception(() => stream.Length);
        });
        thread.Start();
        thread.Join();
        Assert.IsType<InvalidOperationException>(fromList);
        Assert.IsType<InvalidOperationException>(fromStream);
    }

    [MethodImpl(MethodImplOptions.NoInlining)]
    private static void MakeAndForget(PyObject* python) =>
        Assert.Empty(new PyListProxy<double>(python, Elements.Double));
}
