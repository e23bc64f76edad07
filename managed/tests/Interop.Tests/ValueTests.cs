using System;
using System.Collections;
using System.Collections.Generic;
using System.Numerics;
using Velbor.WrpGen.Interop;
using Xunit;

namespace WrpInterop.Tests;

public unsafe class ValueTests : InteropTest
{
    public static TheoryData<object?> Values => new()
    {
        null,
        "",
        "plain",
        "ÿ latin",
        "Ж ucs-2",
        "𐍈 ucs-4 😀",
        true,
        false,
        -1,
        int.MaxValue,
        1L << 40,
        ulong.MaxValue,
        1.5,
        79228162514264337593543950335m,
        -0.001m,
        new DateTime(2024, 2, 29, 12, 30, 15, DateTimeKind.Utc),
        new DateTime(1, 1, 1),
        new DateTimeOffset(2024, 2, 29, 12, 30, 15, TimeSpan.FromHours(-5)),
        TimeSpan.FromTicks(-10),
        new Guid("00112233-4455-6677-8899-aabbccddeeff"),
        new byte[] { 1, 2, 255 },
        Array.Empty<byte>(),
    };

    [Theory]
    [MemberData(nameof(Values))]
    public void A_value_goes_through_both_ways(object? value)
    {
        VariantArg record = FakePython.Record(value);
        object? read = Variants.Read(&record);
        Assert.Equal(value, read);
        Assert.Equal(value?.GetType(), read?.GetType());
        PyObject* written = Variants.Write(read);
        Assert.Equal(value, FakePython.Take(written));
        Assert.Equal(0, FakePython.References);
    }

    [Fact]
    public void An_integer_that_fits_nowhere_brings_the_text_of_the_python_error()
    {
        VariantArg record = FakePython.Record(BigInteger.Pow(2, 70));
        nint address = (nint)(&record);
        PythonException error = Assert.Throws<PythonException>(() => Variants.Read((VariantArg*)address));
        Assert.Equal("TypeError: can't build integer value from 'int'", error.Message);
        Assert.Null(FakePython.Pending);
    }

    [Fact]
    public void A_date_and_a_time_become_a_date_and_time()
    {
        VariantArg date = FakePython.Record(new DateOnly(2000, 1, 2));
        Assert.Equal(new DateTime(2000, 1, 2), Variants.Read(&date));
        VariantArg time = FakePython.Record(new TimeOnly(1, 2, 3));
        Assert.Equal(new DateTime(1, 1, 1, 1, 2, 3), Variants.Read(&time));
    }

    [Fact]
    public void A_wrapper_gives_its_object_and_a_struct_boxed()
    {
        object target = new();
        void* handle = Handles.New(target);
        VariantArg record = FakePython.Record(new PyWrapper((nint)handle, false, "x"));
        Assert.Same(target, Variants.Read(&record));
        Handles.Free(handle);

        handle = Out.Struct(42);
        record = FakePython.Record(new PyWrapper((nint)handle, true, "x"));
        Assert.Equal(42, Variants.Read(&record));
        Handles.Free(handle);
    }

    [Fact]
    public void Lists_and_tuples_become_proxies_that_go_back_as_themselves()
    {
        List<object?> list = [1, "two"];
        VariantArg record = FakePython.Record(list);
        IList proxy = Assert.IsAssignableFrom<IList>(Variants.Read(&record));
        Assert.Equal(2, proxy.Count);
        Assert.Equal("two", proxy[1]);
        PyObject* back = Variants.Write(proxy);
        Assert.Equal((nint)record.Payload, (nint)back);

        record = FakePython.Record(new PyTuple([1, 2.5]));
        proxy = Assert.IsAssignableFrom<IList>(Variants.Read(&record));
        Assert.Equal(2.5, proxy[1]);
        Assert.True(proxy.IsReadOnly);
    }

    [Fact]
    public void Numbers_of_other_widths_become_pythons()
    {
        Assert.Equal(7, FakePython.Take(Variants.Write((byte)7)));
        Assert.Equal(-7, FakePython.Take(Variants.Write((sbyte)-7)));
        Assert.Equal(4000000000L, FakePython.Take(Variants.Write(4000000000u)));
        Assert.Equal(0.5, FakePython.Take(Variants.Write(0.5f)));
        Assert.Equal("x", FakePython.Take(Variants.Write('x')));
        Assert.Equal(1, FakePython.Take(Variants.Write(DayOfWeek.Monday)));
    }

    [Fact]
    public void A_registered_type_gets_its_wrapper_and_any_other_its_text()
    {
        FakePython.Registered.Add(typeof(Version).FullName!);
        PyWrapper wrapper = Assert.IsType<PyWrapper>(FakePython.Take(Variants.Write(new Version(1, 2))));
        Assert.Equal(new Version(1, 2), TakeHandle((void*)wrapper.Handle));
        FakePython.Registered.Clear();
        Assert.Equal("1.2", FakePython.Take(Variants.Write(new Version(1, 2))));
        Assert.Equal("System.String", FakePython.Take(Variants.Write(typeof(string))));
    }

    [Fact]
    public void Collections_get_list_wrappers()
    {
        foreach ((object list, string name) in new (object, string)[]
        {
            (new int[] { 1 }, "_ArrayWrapper"),
            (new ArrayList { 1 }, "_ArrListWrapper"),
            (new List<int> { 1 }, "_IListWrapper"),
        })
        {
            PyWrapper wrapper = Assert.IsType<PyWrapper>(FakePython.Take(Variants.Write(list)));
            Assert.Equal(name, wrapper.TypeName);
            Assert.Same(list, TakeHandle((void*)wrapper.Handle));
        }
    }

    [Fact]
    public void A_text_that_python_cannot_hold_leaves_its_error_pending()
    {
        Assert.True(Strings.Write("\ud800") == null);
        Assert.Equal("UnicodeDecodeError", FakePython.TakeError().Type);
        Assert.Equal("a\ufffdb", Strings.Mend("a\ud800b"));
        Assert.Equal("a😀b", Strings.Mend("a😀b"));
    }

    [Fact]
    public void A_null_string_and_an_empty_one_differ()
    {
        PyStringArg text = new() { Length = -1 };
        Assert.Null(Strings.Read(&text));
        text.Length = 0;
        Assert.Equal("", Strings.Read(&text));
    }

    [Fact]
    public void An_unknown_kind_is_refused()
    {
        VariantArg record = new() { Kind = 99 };
        nint address = (nint)(&record);
        Assert.Throws<ArgumentException>(() => Variants.Read((VariantArg*)address));
    }

    [Fact]
    public void Dates_carry_their_kind_in_the_top_bits()
    {
        long* pair = stackalloc long[2];
        Ticks.FromDateTime(new DateTime(10, DateTimeKind.Utc), pair);
        Assert.Equal(10 | (1L << 62), pair[0]);
        Ticks.FromDateTime(new DateTime(10, DateTimeKind.Local), pair);
        Assert.Equal(10, pair[0] & 0xFF);
        Assert.True(pair[0] < 0);
        Assert.Equal(DateTimeKind.Local, Ticks.ToDateTime(pair[0]).Kind);
    }

    [Fact]
    public void Versions_tell_how_many_parts_they_have()
    {
        PySysVersionArg result;
        Out.Version(null, &result);
        Assert.Equal(-1, result.Count);
        Out.Version(new Version(1, 2), &result);
        Assert.Equal(2, result.Count);
        Out.Version(new Version(1, 2, 3, 4), &result);
        Assert.Equal(4, result.Count);
        Assert.Equal(4, result.Parts[3]);
    }

    [Fact]
    public void Bytes_are_copied_and_null_stays_null()
    {
        byte* data = stackalloc byte[] { 1, 2 };
        PyBytesArg bytes = new() { Length = 2, Bytes = data };
        Assert.Equal([1, 2], In.Bytes(&bytes)!);
        bytes.Length = -1;
        Assert.Null(In.Bytes(&bytes));
        Assert.Null(FakePython.Take(Out.Bytes(null)));
    }
}
