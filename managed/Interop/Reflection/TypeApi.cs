using System;
using System.Runtime.InteropServices;
using Velbor.WrpGen.Interop;

namespace Velbor.WrpGen.Reflection;

/// <summary>What the wrapper of a type can be asked.</summary>
internal static unsafe partial class TypeApi
{
    [UnmanagedCallersOnly]
    public static PyObject* get_Name(void* self)
    {
        try
        {
            return Out.String(Of(self).Name);
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    [UnmanagedCallersOnly]
    public static PyObject* get_FullName(void* self)
    {
        try
        {
            return Out.String(Of(self).FullName);
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    [UnmanagedCallersOnly]
    public static PyObject* get_Namespace(void* self)
    {
        try
        {
            return Out.String(Of(self).Namespace);
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    [UnmanagedCallersOnly]
    public static PyObject* get_AssemblyName(void* self)
    {
        try
        {
            return Out.String(Of(self).Assembly.GetName().Name);
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    [UnmanagedCallersOnly]
    public static void* get_BaseType(void* self)
    {
        try
        {
            return Out.Class(Of(self).BaseType);
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    [UnmanagedCallersOnly]
    public static void* get_ElementType(void* self)
    {
        try
        {
            return Out.Class(Of(self).GetElementType());
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return null;
        }
    }

    [UnmanagedCallersOnly]
    public static int get_Traits(void* self)
    {
        try
        {
            return TraitsOf(Of(self));
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int call_CountInterfaces(void* self)
    {
        try
        {
            return Of(self).GetInterfaces().Length;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int call_GetInterfaces(void* self, void** handles, int count)
    {
        try
        {
            Type[] interfaces = Of(self).GetInterfaces();
            for (int i = 0; i < count; i++)
            {
                handles[i] = Handles.New(interfaces[i]);
            }

            return 1;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int call_IsAssignableFrom(void* self, void* other)
    {
        try
        {
            return Of(self).IsAssignableFrom(other == null ? null : Of(other)) ? 1 : 0;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int call_IsSubclassOf(void* self, void* other)
    {
        try
        {
            return Of(self).IsSubclassOf(Of(other)) ? 1 : 0;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    [UnmanagedCallersOnly]
    public static int call_IsInstanceOfType(void* self, VariantArg* value)
    {
        try
        {
            return Of(self).IsInstanceOfType(In.Reference(value)) ? 1 : 0;
        }
        catch (Exception e)
        {
            return Errors.Report(e, 0);
        }
    }

    private static Type Of(void* handle) => (Type)Handles.Get(handle);

    /// <summary>What kind of type it is, a bit for each question; the native side has the same table.</summary>
    private static int TraitsOf(Type type) =>
        (type.IsAbstract ? 1 << 0 : 0) |
        (type.IsArray ? 1 << 1 : 0) |
        (type.IsClass ? 1 << 2 : 0) |
        (type.IsEnum ? 1 << 3 : 0) |
        (type.IsGenericType ? 1 << 4 : 0) |
        (type.IsInterface ? 1 << 5 : 0) |
        (type.IsSealed ? 1 << 6 : 0) |
        (type.IsValueType ? 1 << 7 : 0);
}
