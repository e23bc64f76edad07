using System;
using System.Collections;
using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>Enumerators without an element type.</summary>
internal static unsafe class SiApiEnumerator
{
    /// <summary>Status 0 gives an element, 1 is the end.</summary>
    [UnmanagedCallersOnly]
    public static int MoveNext(void* self, PyObject** result)
    {
        try
        {
            PythonThread.Enter();
            IEnumerator enumerator = (IEnumerator)Handles.Get(self);
            return enumerator.MoveNext() ? Untyped.Give(enumerator.Current, result) : 1;
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static int btp_IsAssignable(VariantArg* value)
    {
        try
        {
            return Casts.IsInstance<IEnumerator>(value);
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
            return Casts.TypeOf(typeof(IEnumerator), result);
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
            return Casts.ToReference<IEnumerator>(value, result);
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
            return Casts.AsReference<IEnumerator>(value, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }
}
