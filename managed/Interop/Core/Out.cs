using System;
using System.Collections.Generic;
using System.IO;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// Makes the native form of a managed result. Every handle that leaves is a new one that the caller owns.
/// </summary>
internal static unsafe class Out
{
    /// <summary>A handle of the object, null for a null reference.</summary>
    public static void* Class(object? value) => value == null ? null : Handles.New(value);

    /// <summary>A handle of a new holder of the struct.</summary>
    public static void* Struct<T>(T value)
        where T : struct => Handles.New(new StructHolder<T>(value));

    /// <summary>A nullable struct: the flag is told, the handle is null without a value.</summary>
    public static void* NullableStruct<T>(T? value, int* hasValue)
        where T : struct
    {
        *hasValue = value.HasValue ? 1 : 0;
        return value.HasValue ? Struct(value.GetValueOrDefault()) : null;
    }

    /// <summary>A nullable date and time: the flag, then the pair of ticks and local offset.</summary>
    public static void NullableDateTime(DateTime? value, int* hasValue, long* pair)
    {
        *hasValue = value.HasValue ? 1 : 0;
        if (value.HasValue)
        {
            Ticks.FromDateTime(value.GetValueOrDefault(), pair);
        }
    }

    /// <summary>A new Python string, `None` for null.</summary>
    public static PyObject* String(string? value) => Strings.Write(value);

    /// <summary>A new Python `bytearray`, `None` for null.</summary>
    public static PyObject* Bytes(byte[]? value)
    {
        if (value == null)
        {
            return PyCallbacks.fn_get_py_none();
        }

        byte nothing = 0;
        fixed (byte* bytes = value)
        {
            return PyCallbacks.fn_conv_clr_bytes_to_py_bytes(bytes == null ? &nothing : bytes, value.Length);
        }
    }

    /// <summary>A new Python object for a value of open type.</summary>
    public static PyObject* Object(object? value) => Variants.Write(value);

    /// <summary>An interface-typed result with the key of its run-time type.</summary>
    public static void Interface(object? value, PyObjectOutArg* result)
    {
        result->Handle = Class(value);
        result->TypeKey = value == null ? 0 : TypeKeys.Of(value);
    }

    /// <summary>A collection behind an interface; a Python object that came in goes back as itself.</summary>
    public static void Collection(object? value, PyCollectionArg* result) =>
        Abstract(value, result, isDeclaredType: true);

    /// <summary>A list; a class derived from it asks for its own wrapper.</summary>
    public static void List<T>(List<T>? value, PyCollectionArg* result) =>
        Abstract(value, result, value == null || value.GetType() == typeof(List<T>));

    /// <summary>A stream; a Python file object that came in goes back as itself.</summary>
    public static void Stream(Stream? value, PyCollectionArg* result) =>
        Abstract(value, result, isDeclaredType: true);

    /// <summary>A version, component by component.</summary>
    public static void Version(Version? value, PySysVersionArg* result)
    {
        if (value == null)
        {
            result->Count = -1;
            return;
        }

        result->Parts[0] = value.Major;
        result->Parts[1] = value.Minor;
        result->Parts[2] = value.Build;
        result->Parts[3] = value.Revision;
        result->Count = value.Build < 0 ? 2 : value.Revision < 0 ? 3 : 4;
    }

    private static void Abstract(object? value, PyCollectionArg* result, bool isDeclaredType)
    {
        if (value is IPythonBacked backed)
        {
            result->Kind = 2;
            result->Handle = backed.Python;
            result->TypeKey = 0;
            return;
        }

        result->Kind = isDeclaredType ? 0 : 1;
        result->Handle = Class(value);
        result->TypeKey = value == null ? 0 : TypeKeys.Of(value);
    }
}

/// <summary>Keys that stand for run-time types, the same for the life of the process.</summary>
internal static class TypeKeys
{
    /// <summary>The key of an object's type; that of the struct for a holder.</summary>
    public static long Of(object value) =>
        (value is StructHolder holder ? holder.StructType : value.GetType()).TypeHandle.Value;
}
