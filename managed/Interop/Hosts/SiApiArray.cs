using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>Arrays of any element type.</summary>
internal static unsafe class SiApiArray
{
    [UnmanagedCallersOnly]
    public static int SqLength(void* self)
    {
        try
        {
            return ((Array)Handles.Get(self)).Length;
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static int SqContains(void* self, VariantArg* value)
    {
        try
        {
            return Untyped.CountOf(Handles.Get(self), In.Value(value), 1);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static int SqGetItem(void* self, int index, PyObject** result)
    {
        try
        {
            IList<object?> list = UntypedList.Over(Handles.Get(self));
            int status = Lists.Get(list, index, out object? value);
            return status == Lists.Done ? Untyped.Give(value, result) : status;
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static PyObject* SqGetItemNoCheck(void* self, int index)
    {
        try
        {
            IList<object?> list = UntypedList.Over(Handles.Get(self));
            return Out.Object(list[index]);
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    [UnmanagedCallersOnly]
    public static int SqSetItem(void* self, int index, VariantArg* value)
    {
        try
        {
            IList<object?> list = UntypedList.Over(Handles.Get(self));
            return Lists.Set(list, index, In.Value(value));
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static void SqSetItemNoChek(void* self, int index, VariantArg* value)
    {
        try
        {
            IList<object?> list = UntypedList.Over(Handles.Get(self));
            list[index] = In.Value(value);
        }
        catch (Exception e)
        {
            Errors.Report(e);
        }
    }

    [UnmanagedCallersOnly]
    public static int MpSetItems(void* self, VariantArg* source, int start, int count, int step)
    {
        try
        {
            IList<object?> list = UntypedList.Over(Handles.Get(self));
            return Lists.SetItems(list, In.Reference(source), start, count, step);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static void Reverse(void* self)
    {
        try
        {
            Lists.Reverse(UntypedList.Over(Handles.Get(self)));
        }
        catch (Exception e)
        {
            Errors.Report(e);
        }
    }

    [UnmanagedCallersOnly]
    public static void Sort(void* self, int reverse)
    {
        try
        {
            Lists.Sort(UntypedList.Over(Handles.Get(self)), reverse != 0);
        }
        catch (Exception e)
        {
            Errors.Report(e);
        }
    }

    [UnmanagedCallersOnly]
    public static int IndexBy(void* self, int hasStart, int start, int hasStop, int stop, VariantArg* value)
    {
        try
        {
            IList<object?> list = UntypedList.Over(Handles.Get(self));
            return Lists.IndexBy(list, hasStart, start, hasStop, stop, Untyped.Sought(list, In.Value(value)));
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static int CountOf(void* self, VariantArg* value)
    {
        try
        {
            return Untyped.CountOf(Handles.Get(self), In.Value(value), int.MaxValue);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static void* CreateInstanceFromPyList(PyObject* list)
    {
        try
        {
            return Handles.New(Elements.Object.ListToArray(list));
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    [UnmanagedCallersOnly]
    public static void* CreateInstanceFromPySequence(PyObject* sequence)
    {
        try
        {
            return Handles.New(Elements.Object.SequenceToArray(sequence));
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    /// <summary>The caller gives a handle or the address of a record.</summary>
    [UnmanagedCallersOnly]
    public static int btp_IsAssignable(void* handleOrRecord)
    {
        try
        {
            return Casts.IsInstanceOfEither<Array>(handleOrRecord);
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int btp_TypeOf(void** result)
    {
        try
        {
            return Casts.TypeOf(typeof(Array), result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int btp_CastTo(VariantArg* value, void** result)
    {
        try
        {
            return Casts.ToReference<Array>(value, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static int btp_ReInterpretObj(void* handle, void** result)
    {
        try
        {
            return Casts.ReinterpretReference<Array>(handle, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int btp_CastAs(VariantArg* value, void** result)
    {
        try
        {
            return Casts.AsReference<Array>(value, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }
}
