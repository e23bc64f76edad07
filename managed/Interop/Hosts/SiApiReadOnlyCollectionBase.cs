using System;
using System.Collections;
using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>Casts of read-only collection bases. Python lists cannot become one: it is abstract.</summary>
internal static unsafe class SiApiReadOnlyCollectionBase
{
    [UnmanagedCallersOnly]
    public static void* CreateInstanceFromPyList(PyObject* list)
    {
        try
        {
            throw Untyped.IsAbstract(typeof(ReadOnlyCollectionBase));
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
            throw Untyped.IsAbstract(typeof(ReadOnlyCollectionBase));
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
            return Casts.IsInstanceOfEither<ReadOnlyCollectionBase>(handleOrRecord);
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
            return Casts.TypeOf(typeof(ReadOnlyCollectionBase), result);
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
            return Casts.ToReference<ReadOnlyCollectionBase>(value, result);
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
            return Casts.ReinterpretReference<ReadOnlyCollectionBase>(handle, result);
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
            return Casts.AsReference<ReadOnlyCollectionBase>(value, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }
}
