using System;
using System.Collections.Generic;
using Velbor.Voxlar;
using Velbor.Voxlar.Utilities;
using Velbor.WrpGen.Interop;
using WrpNs_Velbor.WrpNs_Voxlar;
using WrpNs_Velbor.WrpNs_Voxlar.WrpNs_Utilities;
using Xunit;

namespace WrpInterop.Tests;

/// <summary>Generated entry points of a class, a struct and enums, called as the native side calls them.</summary>
public unsafe class WrappedTypeTests : InteropTest
{
    private static PyStringArg Text(string text)
    {
        PyObject* python = FakePython.Borrow(text);
        PyStringArg argument;
        PyCallbacks.fn_read_py_string(python, &argument);
        return argument;
    }

    [Fact]
    public void A_class_is_constructed_read_and_written()
    {
        delegate* unmanaged<PyStringArg*, void*> make = &WrpCs_VbrObjec_37375028.ctor_000_VbrObject;
        delegate* unmanaged<void*, PyObject*> getName = &WrpCs_VbrObjec_37375028.get_Name;
        delegate* unmanaged<void*, PyStringArg*, void> setName = &WrpCs_VbrObjec_37375028.set_Name;
        PyStringArg text = Text("first");
        void* self = make(&text);
        Assert.Equal("first", FakePython.Take(getName(self)));
        text = Text("Ж second");
        setName(self, &text);
        Assert.Equal("Ж second", ((VbrObject)Handles.Get(self)).Name);
        Assert.True(getName(null) == null);
        Assert.StartsWith("Proxy error(NullReferenceException)", FakePython.TakeError().Message);
        Handles.Free(self);
    }

    [Fact]
    public void Values_of_open_type_go_into_properties_and_back()
    {
        Node node = new("n");
        With(node, handle =>
        {
            delegate* unmanaged<void*, PyStringArg*, VariantArg*, void> set = &WrpCs_VbrObjec_37375028.call_000_SetProperty;
            delegate* unmanaged<void*, PyStringArg*, PyObject*> get = &WrpCs_VbrObjec_37375028.call_000_GetProperty;
            PyStringArg name = Text("p");
            VariantArg value = FakePython.Record(2.5);
            set((void*)handle, &name, &value);
            Assert.Equal(2.5, node.GetProperty("p"));
            Assert.Equal(2.5, FakePython.Take(get((void*)handle, &name)));
        });
    }

    [Fact]
    public void A_struct_lives_in_its_holder()
    {
        delegate* unmanaged<double, double, double, void*> make = &WrpCs_Vector3_361B67C0.ctor_000_Vector3;
        delegate* unmanaged<void*, double> getX = &WrpCs_Vector3_361B67C0.get_x;
        delegate* unmanaged<void*, double, void> setX = &WrpCs_Vector3_361B67C0.set_x;
        delegate* unmanaged<void*, VariantArg*, double> dot = &WrpCs_Vector3_361B67C0.call_000_Dot;
        delegate* unmanaged<void*> origin = &WrpCs_Vector3_361B67C0.getsa_Origin;
        void* self = make(1, 2, 3);
        setX(self, 5);
        Assert.Equal(5, getX(self));
        VariantArg other = new() { Kind = 1, Payload = self };
        Assert.Equal(38, dot(self, &other));
        void* first = origin();
        setX(first, 9);
        void* second = origin();
        Assert.Equal(0, getX(second));
        foreach (nint handle in new[] { (nint)self, (nint)first, (nint)second })
        {
            Handles.Free((void*)handle);
        }

        VariantArg none = default;
        self = make(1, 2, 3);
        Assert.Equal(0, dot(self, &none));
        Assert.StartsWith("Proxy error(NullReferenceException)", FakePython.TakeError().Message);
        Handles.Free(self);
    }

    [Fact]
    public void Outputs_stand_in_the_variable_and_in_the_pin()
    {
        delegate* unmanaged<void*, double, double*, VariantArg*, void**, void**, void> convert =
            &WrpCs_Quaterni_44B6DF76.call_000_ToAngleAxis;
        void* self = Out.Struct(new Quaternion(1, 0, 0, 0));
        double angle = -1;
        VariantArg empty = default;
        void* axis = null;
        void* pin = null;
        convert(self, 0, &angle, &empty, &axis, &pin);
        Assert.Equal(0, angle, 1e-9);
        Assert.Equal((nint)axis, (nint)pin);
        Assert.IsType<Vector3>(TakeHandle(pin));
        Handles.Free(self);
    }

    [Fact]
    public void Structs_are_cast_by_their_operators()
    {
        delegate* unmanaged<VariantArg*, void**, int> toSingle = &WrpCs_FVector3_90A22F14.btp_CastTo;
        delegate* unmanaged<VariantArg*, void**, int> asSingle = &WrpCs_FVector3_90A22F14.btp_CastAs;
        delegate* unmanaged<void*, void*, void**, int> from = &WrpCs_Vector3_361B67C0.btp_CastFrom;
        delegate* unmanaged<VariantArg*, int> assignable = &WrpCs_Vector3_361B67C0.btp_IsAssignable;
        void* vector = Out.Struct(new Vector3(1, 2, 3));
        VariantArg given = new() { Kind = 1, Payload = vector };
        void* result = null;
        Assert.Equal(1, toSingle(&given, &result));
        Assert.Equal(2f, Assert.IsType<FVector3>(TakeHandle(result)).y);
        Assert.Equal(0, asSingle(&given, &result));
        Assert.Equal(1, assignable(&given));
        void* type = Handles.New(typeof(FVector3));
        Assert.Equal(1, from(vector, type, &result));
        Assert.IsType<FVector3>(TakeHandle(result));
        Handles.Free(type);
        type = Handles.New(typeof(Scene));
        Assert.Equal(0, from(vector, type, &result));
        Assert.True(result == null);
        VariantArg none = default;
        Assert.Equal(0, toSingle(&none, &result));
        Handles.Free(type);
        Handles.Free(vector);
    }

    [Fact]
    public void A_boxed_struct_is_viewed_as_the_struct()
    {
        delegate* unmanaged<void*, void**, int> view = &WrpCs_Vector3_361B67C0.btp_ReInterpretObj;
        void* result = null;
        void* boxed = Handles.New(new Vector3(1, 2, 3));
        Assert.Equal(1, view(boxed, &result));
        Assert.IsType<StructHolder<Vector3>>(Handles.Get(result));
        Handles.Free(result);
        Handles.Free(boxed);
        void* other = Handles.New("text");
        Assert.Equal(0, view(other, &result));
        Assert.StartsWith("Proxy error(InvalidCastException)", FakePython.TakeError().Message);
        Handles.Free(other);
    }

    [Fact]
    public void Enums_cross_as_numbers_and_byte_enums_as_bytes()
    {
        delegate* unmanaged<int, void**, int> box = &WrpCs_Axis_4F601FE9.btp_AsUniEnum;
        delegate* unmanaged<VariantArg*, int*, int> cast = &WrpCs_Axis_4F601FE9.btp_CastTo;
        delegate* unmanaged<void*, int> isAxis = &WrpCs_Axis_4F601FE9.btp_IsAssignable;
        delegate* unmanaged<byte, void**, int> boxFlags = &WrpCs_Property_0C71FCBC.btp_AsUniEnum;
        delegate* unmanaged<void*, byte*, int> asFlags = &WrpCs_Property_0C71FCBC.btp_CastAs;
        delegate* unmanaged<void*, byte*, int> viewFlags = &WrpCs_Property_0C71FCBC.btp_ReInterpretObj;
        void* axis = null;
        Assert.Equal(1, box(2, &axis));
        Assert.Equal(Axis.ZAxis, Handles.Get(axis));
        VariantArg given = new() { Payload = axis };
        int number = -1;
        Assert.Equal(1, cast(&given, &number));
        Assert.Equal(2, number);
        Assert.Equal(1, isAxis(axis));
        void* flags = null;
        Assert.Equal(1, boxFlags(24, &flags));
        Assert.Equal((PropertyFlags)24, Handles.Get(flags));
        byte* room = stackalloc byte[] { 0, 77 };
        Assert.Equal(1, asFlags(flags, room));
        Assert.Equal(24, room[0]);
        Assert.Equal(77, room[1]);
        Assert.Equal(0, asFlags(axis, room));
        Assert.Equal(0, viewFlags(axis, room));
        Assert.StartsWith("Proxy error(InvalidCastException)", FakePython.TakeError().Message);
        Assert.Equal(0, isAxis(flags));
        Handles.Free(axis);
        Handles.Free(flags);
    }

    [Fact]
    public void A_collection_property_comes_out_as_its_list()
    {
        Node node = new("n");
        With(node, handle =>
        {
            delegate* unmanaged<void*, PyCollectionArg*, void> get = &WrpCs_Node_F44BC945.get_ChildNodes;
            PyCollectionArg result = default;
            get((void*)handle, &result);
            Assert.Equal(0, result.Kind);
            Assert.Same(node.ChildNodes, Assert.IsAssignableFrom<IList<Node>>(TakeHandle(result.Handle)));
        });
    }

    [Fact]
    public void Nullable_members_tell_their_flag()
    {
        AssetInfo info = new();
        With(info, handle =>
        {
            void* self = (void*)handle;
            delegate* unmanaged<void*, int, long, void> set = &WrpCs_AssetInf_22F9CF93.set_CreationTime;
            delegate* unmanaged<void*, int*, long*, void> get = &WrpCs_AssetInf_22F9CF93.get_CreationTime;
            delegate* unmanaged<void*, int*, int> getAxis = &WrpCs_AssetInf_22F9CF93.get_UpVector;
            delegate* unmanaged<void*, int*, void*> getAmbient = &WrpCs_AssetInf_22F9CF93.get_Ambient;
            int has = 1;
            long* pair = stackalloc long[2];
            get(self, &has, pair);
            Assert.Equal(0, has);
            set(self, 1, new DateTime(2020, 1, 2).Ticks);
            get(self, &has, pair);
            Assert.Equal(1, has);
            Assert.Equal(new DateTime(2020, 1, 2).Ticks, pair[0]);
            set(self, 0, 0);
            Assert.Null(info.CreationTime);
            has = 1;
            getAxis(self, &has);
            Assert.Equal(0, has);
            has = 1;
            Assert.True(getAmbient(self, &has) == null);
            Assert.Equal(0, has);
        });
    }
}
