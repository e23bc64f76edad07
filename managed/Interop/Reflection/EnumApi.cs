using System;
using System.Runtime.InteropServices;
using Velbor.WrpGen.Interop;

namespace Velbor.WrpGen.Reflection;

/// <summary>The wrapper of an enum's boxed value.</summary>
internal static unsafe class EnumApi
{
    [UnmanagedCallersOnly]
    public static int btp_TypeOf(void** result)
    {
        try
        {
            PythonThread.Enter();
            return Casts.TypeOf(typeof(Enum), result);
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
            PythonThread.Enter();
            return Casts.ToReference<Enum>(value, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static int btp_CastAs(void* value, void** result)
    {
        try
        {
            PythonThread.Enter();
            return Casts.AsReference<Enum>(value, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static int btp_IsAssignable(void* value)
    {
        try
        {
            PythonThread.Enter();
            return Casts.IsInstance<Enum>(value);
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int btp_ReInterpretObj(void* handle, void** result)
    {
        try
        {
            PythonThread.Enter();
            return Casts.ReinterpretReference<Enum>(handle, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static PyObject* get_Name(void* self)
    {
        try
        {
            PythonThread.Enter();
            Enum member = Of(self);
            return Out.String(Enum.GetName(member.GetType(), member));
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    [UnmanagedCallersOnly]
    public static long get_Value(void* self)
    {
        try
        {
            PythonThread.Enter();
            return ((IConvertible)Of(self)).ToInt64(null);
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int call_HasFlag(void* self, void* flag)
    {
        try
        {
            PythonThread.Enter();
            return Of(self).HasFlag(Of(flag)) ? 1 : 0;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    private static Enum Of(void* handle) => (Enum)Handles.Get(handle);
}
