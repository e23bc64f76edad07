using System;
using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>Disposables.</summary>
internal static unsafe class SiApiDisposable
{
    [UnmanagedCallersOnly]
    public static int btp_IsAssignable(VariantArg* value)
    {
        try
        {
            return Casts.IsInstance<IDisposable>(value);
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
            return Casts.TypeOf(typeof(IDisposable), result);
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
            return Casts.ToReference<IDisposable>(value, result);
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
            return Casts.AsReference<IDisposable>(value, result);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }
}
