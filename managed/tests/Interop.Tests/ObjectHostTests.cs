using System;
using System.IO;
using Velbor.WrpGen.Interop;
using Xunit;

namespace WrpInterop.Tests;

public unsafe class ObjectHostTests : InteropTest
{
    [Fact]
    public void Text_hash_and_type_are_the_objects()
    {
        With(new Version(1, 2), handle =>
        {
            delegate* unmanaged<void*, void**, int> text = &ObjectHost.ToStringOfObj;
            delegate* unmanaged<void*, int> hash = &ObjectHost.GetHashOfObj;
            delegate* unmanaged<void*, void**, int> type = &ObjectHost.GetObjType;
            void* result = null;
            Assert.Equal(1, text((void*)handle, &result));
            Assert.Equal("1.2", FakePython.Take(result));
            Assert.Equal(new Version(1, 2).GetHashCode(), hash((void*)handle));
            Assert.Equal(1, type((void*)handle, &result));
            Assert.Same(typeof(Version), TakeHandle(result));
        });
    }

    [Fact]
    public void A_holder_answers_for_its_struct()
    {
        With(new StructHolder<int>(7), handle =>
        {
            delegate* unmanaged<void*, void**, int> type = &ObjectHost.GetStcType;
            delegate* unmanaged<void*, VariantArg*, int> equals = &ObjectHost.IsEqualsOfStc;
            void* result = null;
            Assert.Equal(1, type((void*)handle, &result));
            Assert.Same(typeof(int), TakeHandle(result));
            VariantArg same = new() { Kind = 1, Payload = Out.Struct(7) };
            Assert.Equal(1, equals((void*)handle, &same));
            Handles.Free(same.Payload);
            VariantArg none = default;
            Assert.Equal(0, equals((void*)handle, &none));
        });
    }

    [Fact]
    public void Type_tests_and_names_take_a_type()
    {
        void* type = Handles.New(typeof(Version));
        VariantArg given = new() { Payload = type };
        void* text = null;
        delegate* unmanaged<VariantArg*, void**, int> name = &ObjectHost.GetTypeName;
        Assert.Equal(1, name(&given, &text));
        Assert.Equal("System.Version", FakePython.Take(text));
        delegate* unmanaged<void*, VariantArg*, int> isType = &ObjectHost.IsTypeOf;
        void* version = Handles.New(new Version());
        Assert.Equal(1, isType(version, &given));
        void* other = Handles.New("other");
        Assert.Equal(0, isType(other, &given));
        Handles.Free(version);
        Handles.Free(other);
        Handles.Free(type);
    }

    [Fact]
    public void Disposing_reaches_the_object()
    {
        MemoryStream stream = new();
        With(stream, handle =>
        {
            delegate* unmanaged<void*, void> dispose = &ObjectHost.Dispose;
            dispose((void*)handle);
        });
        Assert.False(stream.CanRead);
        Assert.Null(FakePython.Pending);
    }

    [Fact]
    public void The_exchange_names_boxes_and_frees()
    {
        delegate* unmanaged<void*, void**> name = &ExchangeHost.GetTypeName;
        delegate* unmanaged<void*, void*> box = &ExchangeHost.BoxStcTarget;
        delegate* unmanaged<void*, void> free = &ExchangeHost.FreeInstance;
        void* holder = Out.Struct(3);
        void** text = name(holder);
        Assert.Equal("System.Int32", FakePython.Take(*text));
        System.Runtime.InteropServices.NativeMemory.Free(text);
        void* boxed = box(holder);
        Assert.Equal(3, Handles.Get(boxed));
        free(boxed);
        free(holder);
        free(null);
    }

    [Fact]
    public void An_internal_class_goes_by_its_nearest_public_one()
    {
        Assert.Equal("System.IO.Stream", TypeNames.Of(typeof(PyStream)));
        Assert.Equal(typeof(StructHolder<int>).FullName, TypeNames.Of(typeof(StructHolder<int>)));
    }

    [Fact]
    public void Type_keys_are_of_the_run_time_type()
    {
        Assert.Equal(TypeKeys.Of("a"), TypeKeys.Of("b"));
        Assert.NotEqual(TypeKeys.Of("a"), TypeKeys.Of(new object()));
        Assert.Equal(TypeKeys.Of(5), TypeKeys.Of(new StructHolder<int>(1)));
    }
}
