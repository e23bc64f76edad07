using System;
using System.Collections;
using System.Collections.Generic;
using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>The list class without an element type.</summary>
internal static unsafe class SiApiArrayList
{
    [UnmanagedCallersOnly]
    public static int SqLength(void* self)
    {
        try
        {
            return ((ArrayList)Handles.Get(self)).Count;
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static void Add(void* self, VariantArg* value)
    {
        try
        {
            UntypedList.Over(Handles.Get(self)).Add(In.Value(value));
        }
        catch (Exception e)
        {
            Errors.Report(e);
        }
    }

    [UnmanagedCallersOnly]
    public static int Remove(void* self, VariantArg* value)
    {
        try
        {
            return UntypedList.Over(Handles.Get(self)).Remove(In.Value(value)) ? 1 : 0;
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static void Clear(void* self)
    {
        try
        {
            ((IList)Handles.Get(self)).Clear();
        }
        catch (Exception e)
        {
            Errors.Report(e);
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
    public static void Insert(void* self, int index, VariantArg* value)
    {
        try
        {
            Lists.Insert(UntypedList.Over(Handles.Get(self)), index, In.Value(value));
        }
        catch (Exception e)
        {
            Errors.Report(e);
        }
    }

    [UnmanagedCallersOnly]
    public static int RemoveAt(void* self, int index)
    {
        try
        {
            return Lists.RemoveAt(UntypedList.Over(Handles.Get(self)), index);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static int Pop(void* self, int hasIndex, int index, PyObject** result)
    {
        try
        {
            IList<object?> list = UntypedList.Over(Handles.Get(self));
            int status = Lists.Pop(list, hasIndex, index, out object? value);
            return status == Lists.Done ? Untyped.Give(value, result) : status;
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static int SqInplaceConcat(void* self, VariantArg* source)
    {
        try
        {
            return Lists.Concat(UntypedList.Over(Handles.Get(self)), In.Reference(source));
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static void SqInplaceRepeat(void* self, int count)
    {
        try
        {
            Lists.Repeat(UntypedList.Over(Handles.Get(self)), count);
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

    /// <summary>A step of -1 stands for one run whose lowest index is start.</summary>
    [UnmanagedCallersOnly]
    public static void MpRemoveItems(void* self, int start, int count, int step)
    {
        try
        {
            Lists.RemoveRun(UntypedList.Over(Handles.Get(self)), start, count, step);
        }
        catch (Exception e)
        {
            Errors.Report(e);
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

    /// <summary>Makes room for so many more elements.</summary>
    [UnmanagedCallersOnly]
    public static void EnsureCapacity(void* self, int count)
    {
        try
        {
            ArrayList list = (ArrayList)Handles.Get(self);
            if (list.Capacity - list.Count < count)
            {
                list.Capacity = checked(list.Count + count);
            }
        }
        catch (Exception e)
        {
            Errors.Report(e);
        }
    }

    [UnmanagedCallersOnly]
    public static void* CreateInstanceFromPyList(PyObject* list)
    {
        try
        {
            return Handles.New(new ArrayList(Elements.Object.ListToArray(list)));
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
            return Handles.New(new ArrayList(Elements.Object.SequenceToArray(sequence)));
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
            return Casts.IsInstanceOfEither<ArrayList>(handleOrRecord);
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
            return Casts.TypeOf(typeof(ArrayList), result);
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
            return Casts.ToReference<ArrayList>(value, result);
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
            return Casts.ReinterpretReference<ArrayList>(handle, result);
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
            return Casts.AsReference<ArrayList>(value, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }
}
