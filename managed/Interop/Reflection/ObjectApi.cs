using System;
using System.Runtime.InteropServices;
using Velbor.WrpGen.Interop;

namespace Velbor.WrpGen.Reflection;

/// <summary>The wrapper of any object. A struct comes in by its holder, and is boxed by a cast.</summary>
internal static unsafe class ObjectApi
{
    [UnmanagedCallersOnly]
    public static int btp_TypeOf(void** result)
    {
        try
        {
            PythonThread.Enter();
            return Casts.TypeOf(typeof(object), result);
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
            return Casts.ToReference<object>(value, result);
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
            PythonThread.Enter();
            return Casts.AsReference<object>(value, result);
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
            PythonThread.Enter();
            return Casts.IsInstance<object>(value);
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
            return Casts.ReinterpretReference<object>(handle, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int call_ReferenceEquals(VariantArg* left, VariantArg* right)
    {
        try
        {
            PythonThread.Enter();
            return ReferenceEquals(Handles.GetOrNull(left->Payload), Handles.GetOrNull(right->Payload)) ? 1 : 0;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }
}
