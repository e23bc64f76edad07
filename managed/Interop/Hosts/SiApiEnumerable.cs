using System;
using System.Collections;
using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>Enumerables without an element type.</summary>
internal static unsafe class SiApiEnumerable
{
    [UnmanagedCallersOnly]
    public static int GetEnumerator(void* self, PyObjectOutArg* result)
    {
        try
        {
            PythonThread.Enter();
            Out.Interface(((IEnumerable)Handles.Get(self)).GetEnumerator(), result);
            return 0;
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static void* CreateInstanceFromPyIterable(PyObject* iterable)
    {
        try
        {
            return Handles.New(new PyEnumerableProxy<object?>(iterable, Elements.Object));
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
            return Casts.IsInstance<IEnumerable>(value);
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
            return Casts.TypeOf(typeof(IEnumerable), result);
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
            return Casts.ToReference<IEnumerable>(value, result);
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
            return Casts.AsReference<IEnumerable>(value, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }
}
