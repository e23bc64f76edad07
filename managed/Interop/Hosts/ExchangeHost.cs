using System;
using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>The service entry points: callbacks come in here at start-up, handles end here.</summary>
internal static unsafe class ExchangeHost
{
    /// <summary>
    /// The name under which the object's type is known to the native side, as a native text that the caller
    /// frees. An internal class goes by the nearest public one that it derives from.
    /// </summary>
    [UnmanagedCallersOnly]
    public static void** GetTypeName(void* handle)
    {
        try
        {
            object target = Handles.Get(handle);
            string name = TypeNames.Of(target is StructHolder holder ? holder.StructType : target.GetType());
            fixed (char* chars = name)
            {
                return PyCallbacks.fn_create_u16_buffer(chars, name.Length);
            }
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    [UnmanagedCallersOnly]
    public static void SetExceptionCallback(void* function) => PyCallbacks.SetExceptionCallback(function);

    [UnmanagedCallersOnly]
    public static void SetCatchAndClearErrorCallback(void* function) =>
        PyCallbacks.SetCatchAndClearErrorCallback(function);

    [UnmanagedCallersOnly]
    public static void SetU16StrBuilderCallback(void* function) => PyCallbacks.SetU16StrBuilderCallback(function);

    [UnmanagedCallersOnly]
    public static void SetPyStrBuilderCallback(void* function) => PyCallbacks.SetPyStrBuilderCallback(function);

    [UnmanagedCallersOnly]
    public static void SetPyUnraisableStrBuilderCallback(void* function) =>
        PyCallbacks.SetPyUnraisableStrBuilderCallback(function);

    [UnmanagedCallersOnly]
    public static void SetPyBytesBuilderCallback(void* function) => PyCallbacks.SetPyBytesBuilderCallback(function);

    [UnmanagedCallersOnly]
    public static void SetPyObjApiCallbacks(void** table) => PyCallbacks.SetPyObjApiCallbacks(table);

    [UnmanagedCallersOnly]
    public static void SetPyStaticCallbacks(void*** tables) => PyCallbacks.SetPyStaticCallbacks(tables);

    [UnmanagedCallersOnly]
    public static void SetPyGenericCallbacks(void*** tables) => GenericCallbacks.SetTables(tables);

    /// <summary>Arguments own nothing on this side, so there is nothing to free.</summary>
    [UnmanagedCallersOnly]
    public static void FreePendingArgs(VariantArg* arguments, int count)
    {
        for (int index = 0; index < count; index++)
        {
            arguments[index] = default;
        }
    }

    /// <summary>
    /// Ends a handle, of an object or of a struct. It runs from deallocation, so it never fails.
    /// </summary>
    [UnmanagedCallersOnly]
    public static void FreeInstance(void* handle)
    {
        try
        {
            Handles.Free(handle);
            PendingReleases.GiveBack();
        }
        catch (Exception e)
        {
            Errors.Report(e);
        }
    }

    /// <summary>
    /// Everything is handed over. When the runtime ends, Python is going or gone: from then on no reference is given
    /// back to it.
    /// </summary>
    [UnmanagedCallersOnly]
    public static void InitServices()
    {
        try
        {
            AppDomain.CurrentDomain.ProcessExit += static (_, _) => PendingReleases.End();
        }
        catch (Exception e)
        {
            Errors.Report(e);
        }
    }

    /// <summary>A handle of the struct as an object; the struct's own handle stays the caller's.</summary>
    [UnmanagedCallersOnly]
    public static void* BoxStcTarget(void* handle)
    {
        try
        {
            return Out.Class(Handles.Unwrap(handle));
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }
}

/// <summary>Names under which types are registered on the native side.</summary>
internal static class TypeNames
{
    /// <summary>The full name of the type, or of the nearest visible class that it derives from.</summary>
    public static string Of(Type type)
    {
        for (Type? visible = type; visible != null && visible != typeof(object); visible = visible.BaseType)
        {
            if (visible.IsVisible)
            {
                return visible.FullName ?? visible.Name;
            }
        }

        return type.FullName ?? type.Name;
    }
}
