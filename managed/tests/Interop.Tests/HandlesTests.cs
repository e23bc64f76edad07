using System;
using System.Collections.Generic;
using Velbor.WrpGen.Interop;
using Xunit;

namespace WrpInterop.Tests;

public unsafe class HandlesTests : InteropTest
{
    [Fact]
    public void A_handle_gives_its_object_until_it_is_freed()
    {
        object target = new();
        int living = Handles.Living;
        void* handle = Handles.New(target);
        Assert.Same(target, Handles.Get(handle));
        Assert.Equal(living + 1, Handles.Living);
        Handles.Free(handle);
        Assert.Equal(living, Handles.Living);
        Assert.Throws<ObjectDisposedException>(() => Handles.Get(handle));
    }

    [Fact]
    public void Two_handles_of_one_object_end_apart()
    {
        object target = new();
        void* first = Handles.New(target);
        void* second = Handles.New(target);
        Assert.NotEqual((nint)first, (nint)second);
        Handles.Free(first);
        Assert.Same(target, Handles.Get(second));
        Handles.Free(second);
    }

    [Fact]
    public void A_null_handle_is_a_clear_exception_and_freeing_it_does_nothing()
    {
        NullReferenceException error = Assert.Throws<NullReferenceException>(() => Handles.Get(null));
        Assert.Contains("constructor", error.Message);
        Handles.Free(null);
        Assert.Null(Handles.GetOrNull(null));
    }

    [Fact]
    public void An_address_of_a_record_is_no_handle()
    {
        VariantArg record = default;
        nint address = (nint)(&record);
        Assert.False(Handles.IsHandle((void*)address));
        Assert.Throws<ObjectDisposedException>(() => Handles.Get((void*)address));
    }

    [Fact]
    public void The_table_grows_and_uses_freed_slots_again()
    {
        List<nint> handles = [];
        for (int i = 0; i < 5000; i++)
        {
            handles.Add((nint)Handles.New(i));
        }

        for (int i = 0; i < handles.Count; i++)
        {
            Assert.Equal(i, Handles.Get((void*)handles[i]));
        }

        nint freed = handles[1234];
        Handles.Free((void*)freed);
        void* again = Handles.New("again");
        Assert.Equal(freed, (nint)again);
        foreach (nint handle in handles)
        {
            Handles.Free((void*)handle);
        }
    }

    [Fact]
    public void A_struct_changes_in_its_holder_and_answers_as_itself()
    {
        StructHolder<(int X, int Y)> holder = new((1, 2));
        holder.Value.X = 5;
        Assert.Equal((5, 2), holder.Box());
        Assert.Equal((5, 2).GetHashCode(), holder.GetHashCode());
        Assert.Equal("(5, 2)", holder.ToString());
        Assert.True(holder.Equals(new StructHolder<(int, int)>((5, 2))));
        Assert.True(holder.Equals((object)(5, 2)));
        Assert.False(holder.Equals(null));
    }
}
