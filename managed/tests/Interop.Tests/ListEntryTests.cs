using System;
using System.Collections;
using System.Collections.Generic;
using Velbor.WrpGen.Generic;
using Velbor.WrpGen.Interop;
using Xunit;

namespace WrpInterop.Tests;

/// <summary>
/// The statuses and index rules of list entry points, without an element type and with one.
/// </summary>
public unsafe class ListEntryTests : InteropTest
{
    [Fact]
    public void Untyped_items_are_read_and_written_with_their_statuses()
    {
        ArrayList list = [1, "two"];
        With(list, handle =>
        {
            void* self = (void*)handle;
            delegate* unmanaged<void*, int, PyObject**, int> get = &SiApiCntList.SqGetItem;
            delegate* unmanaged<void*, int, VariantArg*, int> set = &SiApiCntList.SqSetItem;
            PyObject* item = null;
            Assert.Equal(0, get(self, 1, &item));
            Assert.Equal("two", FakePython.Take(item));
            Assert.Equal(2, get(self, 2, &item));
            Assert.Equal(2, get(self, -1, &item));
            VariantArg value = FakePython.Record(5);
            Assert.Equal(0, set(self, 0, &value));
            Assert.Equal(2, set(self, 9, &value));
            Assert.Equal(5, list[0]);
            Assert.Equal(-1, get(null, 0, &item));
            Assert.StartsWith("Proxy error(NullReferenceException)", FakePython.TakeError().Message);
        });
    }

    [Fact]
    public void Pop_counts_from_the_end_and_tells_an_empty_list()
    {
        ArrayList list = [1, 2, 3];
        With(list, handle =>
        {
            void* self = (void*)handle;
            delegate* unmanaged<void*, int, int, PyObject**, int> pop = &SiApiCntList.Pop;
            PyObject* item = null;
            Assert.Equal(0, pop(self, 0, 0, &item));
            Assert.Equal(3, FakePython.Take(item));
            Assert.Equal(0, pop(self, 1, -2, &item));
            Assert.Equal(1, FakePython.Take(item));
            Assert.Equal(2, pop(self, 1, 1, &item));
            Assert.Equal(0, pop(self, 1, 0, &item));
            Assert.Equal(2, FakePython.Take(item));
            Assert.Equal(1, pop(self, 0, 0, &item));
        });
    }

    [Fact]
    public void Two_untyped_classes_get_different_starts_for_one_slice()
    {
        ArrayList byItems = [0, 1, 2, 3];
        ArrayList byRun = [0, 1, 2, 3];
        With(byItems, handle =>
        {
            delegate* unmanaged<void*, int, int, int, void> remove = &SiApiCntList.MpRemoveItems;
            remove((void*)handle, 2, 2, -1);
        });
        With(byRun, handle =>
        {
            delegate* unmanaged<void*, int, int, int, void> remove = &SiApiArrayList.MpRemoveItems;
            remove((void*)handle, 1, 2, -1);
        });
        Assert.Equal(new ArrayList { 0, 3 }, byItems);
        Assert.Equal(new ArrayList { 0, 3 }, byRun);
    }

    [Fact]
    public void A_number_is_converted_to_what_a_typed_list_holds()
    {
        double[] array = [1.5, 2.0];
        With(array, handle =>
        {
            void* self = (void*)handle;
            delegate* unmanaged<void*, int, VariantArg*, int> set = &SiApiArray.SqSetItem;
            delegate* unmanaged<void*, VariantArg*, int> contains = &SiApiArray.SqContains;
            VariantArg value = FakePython.Record(7);
            Assert.Equal(0, set(self, 0, &value));
            Assert.Equal(7.0, array[0]);
            value = FakePython.Record(2);
            Assert.Equal(1, contains(self, &value));
            value = FakePython.Record("text");
            Assert.Equal(0, contains(self, &value));
            Assert.Equal(-1, set(self, 0, &value));
            Assert.StartsWith("Proxy error(InvalidCastException)", FakePython.TakeError().Message);
        });
    }

    [Fact]
    public void Assignability_takes_a_handle_or_a_record()
    {
        delegate* unmanaged<void*, int> assignable = &SiApiArray.btp_IsAssignable;
        With(new int[1], handle =>
        {
            VariantArg record = new() { Payload = (void*)handle };
            Assert.Equal(1, assignable((void*)handle));
            Assert.Equal(1, assignable(&record));
        });
        With("no array", handle =>
        {
            VariantArg record = new() { Payload = (void*)handle };
            Assert.Equal(0, assignable((void*)handle));
            Assert.Equal(0, assignable(&record));
        });
    }

    [Fact]
    public void Enumerators_give_elements_and_their_end()
    {
        With(new ArrayList { 1 }, handle =>
        {
            delegate* unmanaged<void*, PyObjectOutArg*, int> start = &SiApiEnumerable.GetEnumerator;
            delegate* unmanaged<void*, PyObject**, int> next = &SiApiEnumerator.MoveNext;
            PyObjectOutArg made = default;
            Assert.Equal(0, start((void*)handle, &made));
            PyObject* item = null;
            Assert.Equal(0, next(made.Handle, &item));
            Assert.Equal(1, FakePython.Take(item));
            Assert.Equal(1, next(made.Handle, &item));
            Handles.Free(made.Handle);
        });
    }

    [Fact]
    public void Casts_tell_what_they_refuse()
    {
        delegate* unmanaged<VariantArg*, void**, int> cast = &SiApiCntList.btp_CastTo;
        delegate* unmanaged<VariantArg*, void**, int> asCast = &SiApiCntList.btp_CastAs;
        void* result = null;
        VariantArg none = default;
        Assert.Equal(1, cast(&none, &result));
        Assert.True(result == null);
        With("text", handle =>
        {
            VariantArg text = new() { Payload = (void*)handle };
            void* refused = null;
            delegate* unmanaged<VariantArg*, void**, int> again = &SiApiCntList.btp_CastTo;
            Assert.Equal(0, again(&text, &refused));
        });
        Assert.Equal(0, asCast(&none, &result));
    }

    [Fact]
    public void Doubles_cross_as_machine_values()
    {
        List<double> list = [1, 2];
        With(list, handle =>
        {
            void* self = (void*)handle;
            delegate* unmanaged<void*, int, double*, int> get = &SiApiCntList_1BA766B5.SqGetItem;
            delegate* unmanaged<void*, double, void> add = &SiApiCntCollection_1BA766B5.Add;
            delegate* unmanaged<void*, int, int, int, int, double, int> indexBy = &SiApiCntList_1BA766B5.IndexBy;
            delegate* unmanaged<void*, int, double, void> insert = &SiApiCntList_1BA766B5.Insert;
            delegate* unmanaged<void*, int, void> repeat = &SiApiCntList_1BA766B5.SqInplaceRepeat;
            delegate* unmanaged<void*, int, void> sort = &SiApiCntList_1BA766B5.Sort;
            delegate* unmanaged<void*, double, int> count = &SiApiCntList_1BA766B5.CountOf;
            double item = 0;
            Assert.Equal(0, get(self, 1, &item));
            Assert.Equal(2.0, item);
            Assert.Equal(2, get(self, 2, &item));
            add(self, 3);
            insert(self, -1, 9);
            insert(self, 99, 8);
            insert(self, -99, 7);
            Assert.Equal([7, 1, 2, 9, 3, 8], list);
            Assert.Equal(3, indexBy(self, 0, 0, 0, 0, 9));
            Assert.Equal(-1, indexBy(self, 1, 4, 0, 0, 9));
            Assert.Equal(3, indexBy(self, 1, -3, 1, -1, 9));
            sort(self, 1);
            Assert.Equal([9, 8, 7, 3, 2, 1], list);
            repeat(self, 2);
            Assert.Equal(12, list.Count);
            Assert.Equal(2, count(self, 7));
            repeat(self, -1);
            Assert.Empty(list);
        });
    }

    [Fact]
    public void Lists_join_in_one_crossing()
    {
        List<double> list = [1, 2];
        With(list, handle =>
        {
            void* self = (void*)handle;
            delegate* unmanaged<void*, VariantArg*, int> concat = &SiApiCntList_1BA766B5.SqInplaceConcat;
            delegate* unmanaged<void*, VariantArg*, int, int, int, int> set = &SiApiCntList_1BA766B5.MpSetItems;
            VariantArg own = new() { Payload = self };
            Assert.Equal(1, concat(self, &own));
            Assert.Equal([1, 2, 1, 2], list);
            With(new double[] { 8, 9 }, other =>
            {
                VariantArg source = new() { Payload = (void*)other };
                delegate* unmanaged<void*, VariantArg*, int, int, int, int> again = &SiApiCntList_1BA766B5.MpSetItems;
                Assert.Equal(1, again((void*)handle, &source, 3, 2, -2));
                Assert.Equal(0, again((void*)handle, &source, 0, 1, 1));
            });
            Assert.Equal([1, 9, 1, 8], list);
            With(new[] { "x" }, other =>
            {
                VariantArg source = new() { Payload = (void*)other };
                delegate* unmanaged<void*, VariantArg*, int> again = &SiApiCntList_1BA766B5.SqInplaceConcat;
                Assert.Equal(0, again((void*)handle, &source));
            });
            Assert.Equal(-1, set(null, &own, 0, 0, 1));
            FakePython.TakeError();
        });
    }

    [Fact]
    public void Strings_cross_as_python_objects()
    {
        List<string?> list = ["b", "a", null];
        With(list, handle =>
        {
            void* self = (void*)handle;
            delegate* unmanaged<void*, int, PyObject*> get = &SiApiList_CBE911FC.SqGetItemNoCheck;
            delegate* unmanaged<void*, int, int, int, void> remove = &SiApiList_CBE911FC.MpRemoveItems;
            delegate* unmanaged<void*, void> reverse = &SiApiList_CBE911FC.Reverse;
            Assert.Equal("a", FakePython.Take(get(self, 1)));
            Assert.Null(FakePython.Take(get(self, 2)));
            Assert.True(get(self, 3) == null);
            Assert.StartsWith("Proxy error(ArgumentOutOfRangeException)", FakePython.TakeError().Message);
            reverse(self);
            Assert.Equal([null, "a", "b"], list);
            remove(self, 0, 2, -1);
            Assert.Equal(["b"], list);
        });
    }

    [Fact]
    public void Equal_elements_keep_their_order_when_sorted()
    {
        List<Ranked> list = [new(1, "a"), new(0, "b"), new(1, "c"), new(0, "d")];
        Lists.Sort(list, reverse: false);
        Assert.Equal(["b", "d", "a", "c"], list.ConvertAll(one => one.Name));
        Lists.Sort(list, reverse: true);
        Assert.Equal(["a", "c", "b", "d"], list.ConvertAll(one => one.Name));
    }

    private sealed record Ranked(int Rank, string Name) : IComparable<Ranked>
    {
        public int CompareTo(Ranked? other) => Rank.CompareTo(other!.Rank);
    }
}
