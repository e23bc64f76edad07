using System;
using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// What every object offers. The forms for structs do the same, since a holder answers for its struct; they
/// exist because the native side binds both names.
/// </summary>
internal static unsafe class ObjectHost
{
    [UnmanagedCallersOnly]
    public static int ToStringOfObj(void* handle, void** text) => TextOf(handle, text);

    [UnmanagedCallersOnly]
    public static int ToStringOfStc(void* handle, void** text) => TextOf(handle, text);

    [UnmanagedCallersOnly]
    public static int GetHashOfObj(void* handle) => HashOf(handle);

    [UnmanagedCallersOnly]
    public static int GetHashOfStc(void* handle) => HashOf(handle);

    [UnmanagedCallersOnly]
    public static int IsEqualsOfObj(void* handle, VariantArg* other) => AreEqual(handle, other);

    [UnmanagedCallersOnly]
    public static int IsEqualsOfStc(void* handle, VariantArg* other) => AreEqual(handle, other);

    [UnmanagedCallersOnly]
    public static int IsTypeOf(void* handle, VariantArg* type)
    {
        try
        {
            return TypeIn(type).IsInstanceOfType(Handles.Unwrap(handle)) ? 1 : 0;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int GetTypeName(VariantArg* type, void** text)
    {
        try
        {
            *text = Strings.Write(TypeIn(type).FullName);
            return *text == null ? 0 : 1;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int GetObjType(void* handle, void** type) => TypeOf(handle, type);

    [UnmanagedCallersOnly]
    public static int GetStcType(void* handle, void** type) => TypeOf(handle, type);

    [UnmanagedCallersOnly]
    public static void Dispose(void* handle)
    {
        try
        {
            object target = Handles.Get(handle);
            if (target is not IDisposable disposable)
            {
                throw new InvalidCastException($"A '{target.GetType().FullName}' cannot be disposed.");
            }

            disposable.Dispose();
        }
        catch (Exception e)
        {
            Errors.Report(e);
        }
    }

    private static int TextOf(void* handle, void** text)
    {
        try
        {
            *text = Strings.Write(Handles.Get(handle).ToString() ?? "");
            return *text == null ? 0 : 1;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    private static int HashOf(void* handle)
    {
        try
        {
            return Handles.Get(handle).GetHashCode();
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    private static int AreEqual(void* handle, VariantArg* other)
    {
        try
        {
            return Handles.Get(handle).Equals(Handles.Unwrap(other->Payload)) ? 1 : 0;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    private static int TypeOf(void* handle, void** type)
    {
        try
        {
            object target = Handles.Get(handle);
            *type = Handles.New(target is StructHolder holder ? holder.StructType : target.GetType());
            return 1;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    private static Type TypeIn(VariantArg* type) => (Type)Handles.Get(type->Payload);
}
