using System;
using System.Runtime.InteropServices;
using Velbor.WrpGen.Interop;

namespace Velbor.WrpGen.Reflection;

/// <summary>The wrapper of an enum's boxed value.</summary>
internal static unsafe partial class EnumApi
{
    [UnmanagedCallersOnly]
    public static PyObject* get_Name(void* self)
    {
        try
        {
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
            return Of(self).HasFlag(Of(flag)) ? 1 : 0;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    private static Enum Of(void* handle) => (Enum)Handles.Get(handle);
}
