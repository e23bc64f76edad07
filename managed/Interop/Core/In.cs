using System;
using System.Collections;
using System.Collections.Generic;
using System.IO;
using System.Runtime.CompilerServices;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// Makes the managed argument from its native form. What a record borrows is read before the call ends.
/// </summary>
internal static unsafe class In
{
    /// <summary>The class object of a handle, null for `None`.</summary>
    public static T? Class<T>(void* handle)
        where T : class => handle == null ? null : Handles.Get<T>(handle);

    /// <summary>The struct behind a wrapper of it.</summary>
    [MethodImpl(MethodImplOptions.AggressiveInlining)]
    public static T Struct<T>(VariantArg* value)
        where T : struct
    {
        object target = Handles.Get(value->Payload);
        return target.GetType() == typeof(StructHolder<T>)
            ? Unsafe.As<StructHolder<T>>(target).Value
            : Unboxed<T>(target);
    }

    /// <summary>
    /// The struct that a by-list parameter brings, or the cleared value when its list is empty.
    /// </summary>
    public static T StructOrDefault<T>(VariantArg* value)
        where T : struct => value->Payload == null ? default : Struct<T>(value);

    /// <summary>A nullable struct: the flag first, then the record.</summary>
    public static T? NullableStruct<T>(int hasValue, VariantArg* value)
        where T : struct => hasValue == 0 ? null : Struct<T>(value);

    /// <summary>A nullable date and time: the flag, then ticks with the kind in the two top bits.</summary>
    public static DateTime? NullableDateTime(int hasValue, long value) =>
        hasValue == 0 ? null : Ticks.ToDateTime(value);

    /// <summary>The implementation of an interface, null for `None`; a struct is boxed.</summary>
    public static T? Interface<T>(VariantArg* value)
        where T : class
    {
        object? target = Handles.Unwrap(value->Payload);
        return target is null ? null : target as T ?? throw Mismatch(typeof(T), target);
    }

    /// <summary>A text, null for `None`.</summary>
    public static string? String(PyStringArg* text) => Strings.Read(text);

    /// <summary>A copy of the bytes, null for `None`.</summary>
    public static byte[]? Bytes(PyBytesArg* bytes) =>
        bytes->Length < 0 ? null : new ReadOnlySpan<byte>(bytes->Bytes, bytes->Length).ToArray();

    /// <summary>An argument of open type.</summary>
    public static object? Value(VariantArg* value) => Variants.Read(value);

    /// <summary>A stream: a managed one, or an adapter over a Python file object.</summary>
    public static Stream? Stream(VariantArg* value) => (ReferenceKind)value->Kind switch
    {
        ReferenceKind.Python => new PyStream((PyObject*)value->Payload),
        _ => Interface<Stream>(value),
    };

    /// <summary>An array: a managed one as it is, a Python list or sequence copied.</summary>
    public static T[]? Array<T>(VariantArg* value, Element<T> element)
    {
        switch ((ReferenceKind)value->Kind)
        {
            case ReferenceKind.Python:
                return element.ListToArray((PyObject*)value->Payload);
            case ReferenceKind.Sequence:
                return element.SequenceToArray((PyObject*)value->Payload);
            default:
                return Handles.Unwrap(value->Payload) switch
                {
                    null => null,
                    T[] array => array,
                    { } other => throw Mismatch(typeof(T[]), other),
                };
        }
    }

    /// <summary>An array of any element type; a Python list or sequence becomes one of objects.</summary>
    public static Array? SystemArray(VariantArg* value) => (ReferenceKind)value->Kind switch
    {
        ReferenceKind.Python => Elements.Object.ListToArray((PyObject*)value->Payload),
        ReferenceKind.Sequence => Elements.Object.SequenceToArray((PyObject*)value->Payload),
        _ => Interface<Array>(value),
    };

    /// <summary>A list of its own class: a managed one as it is, a Python list or sequence copied.</summary>
    public static List<T>? List<T>(VariantArg* value, Element<T> element)
    {
        switch ((ReferenceKind)value->Kind)
        {
            case ReferenceKind.Python:
            case ReferenceKind.Sequence:
                return [.. Array(value, element)!];
            default:
                return Handles.Unwrap(value->Payload) switch
                {
                    null => null,
                    List<T> list => list,
                    { } other => throw Mismatch(typeof(List<T>), other),
                };
        }
    }

    /// <summary>
    /// A list interface: a managed list as it is, a proxy that keeps the Python list or sequence.
    /// </summary>
    public static IList<T>? IList<T>(VariantArg* value, Element<T> element) => (ReferenceKind)value->Kind switch
    {
        ReferenceKind.Python => new PyListProxy<T>((PyObject*)value->Payload, element),
        ReferenceKind.Sequence => new PySequenceProxy<T>((PyObject*)value->Payload, element),
        _ => Interface<IList<T>>(value),
    };

    /// <summary>
    /// A collection interface: a managed one as it is, or a proxy over a sized Python iterable.
    /// </summary>
    public static ICollection<T>? ICollection<T>(VariantArg* value, Element<T> element) =>
        (ReferenceKind)value->Kind switch
        {
            ReferenceKind.Python => new PyCollectionProxy<T>((PyObject*)value->Payload, element),
            _ => Interface<ICollection<T>>(value),
        };

    /// <summary>An enumerable: a managed one as it is, or a proxy over a Python iterable.</summary>
    public static IEnumerable<T>? Iterable<T>(VariantArg* value, Element<T> element) =>
        (ReferenceKind)value->Kind switch
        {
            ReferenceKind.Python => new PyEnumerableProxy<T>((PyObject*)value->Payload, element),
            _ => Interface<IEnumerable<T>>(value),
        };

    /// <summary>An enumerator: a managed one as it is, or a proxy over a Python iterator.</summary>
    public static IEnumerator<T>? Iterator<T>(VariantArg* value, Element<T> element) =>
        (ReferenceKind)value->Kind switch
        {
            ReferenceKind.Python => new PyIteratorProxy<T>((PyObject*)value->Payload, element),
            _ => Interface<IEnumerator<T>>(value),
        };

    /// <summary>A managed object that another wrapper holds, a struct boxed; null for `None`.</summary>
    public static object? Reference(VariantArg* value) => (ReferenceKind)value->Kind switch
    {
        ReferenceKind.Object or ReferenceKind.Struct => Handles.Unwrap(value->Payload),
        ReferenceKind.Python => new PyListProxy<object?>((PyObject*)value->Payload, Elements.Object),
        _ => new PySequenceProxy<object?>((PyObject*)value->Payload, Elements.Object),
    };

    [MethodImpl(MethodImplOptions.NoInlining)]
    private static T Unboxed<T>(object target)
        where T : struct => target is T boxed ? boxed : throw Mismatch(typeof(T), target);

    [MethodImpl(MethodImplOptions.NoInlining)]
    private static InvalidCastException Mismatch(Type wanted, object given) =>
        new($"A '{wanted.FullName}' is wanted, a '{given.GetType().FullName}' is given.");
}
