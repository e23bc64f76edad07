using System;
using System.Collections;
using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>Collections without an element type.</summary>
internal static unsafe class SiApiCntCollection
{
    [UnmanagedCallersOnly]
    public static int SqLength(void* self)
    {
        try
        {
            return ((ICollection)Handles.Get(self)).Count;
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
            return Handles.New(new PyListProxy<object?>(list, Elements.Object));
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    [UnmanagedCallersOnly]
    public static void* CreateInstanceFromPyIterable(PyObject* iterable)
    {
        try
        {
            return Handles.New(new PyCollectionProxy<object?>(iterable, Elements.Object));
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    [UnmanagedCallersOnly]
    public static int btp_IsAssignable(VariantArg* value)
    {
        try
        {
            return Casts.IsInstance<ICollection>(value);
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
            return Casts.TypeOf(typeof(ICollection), result);
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
            return Casts.ToReference<ICollection>(value, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static int btp_CastAs(VariantArg* value, void** result)
    {
        try
        {
            return Casts.AsReference<ICollection>(value, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }
}
