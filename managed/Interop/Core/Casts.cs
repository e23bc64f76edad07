using System;
using System.Collections.Concurrent;
using System.Reflection;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// The cast operations of every wrapped type. A status of 1 is success, 0 a cast that is refused, -1 one that
/// ended in an exception; the entry points answer the last themselves.
/// </summary>
internal static unsafe class Casts
{
    private static readonly ConcurrentDictionary<Conversion, MethodInfo?> s_operators = new();

    /// <summary>Gives the handle of a type.</summary>
    public static int TypeOf(Type type, void** result)
    {
        *result = Handles.New(type);
        return 1;
    }

    /// <summary>An explicit cast to a class or interface; a null reference stays one.</summary>
    public static int ToReference<T>(VariantArg* value, void** result)
        where T : class
    {
        object? source = In.Reference(value);
        *result = null;
        if (source == null)
        {
            return 1;
        }

        if ((source as T ?? Convert(source, typeof(T))) is not { } cast)
        {
            return 0;
        }

        *result = Handles.New(cast);
        return 1;
    }

    /// <summary>
    /// An explicit cast to a struct, which may run a conversion operator; a null reference is refused.
    /// </summary>
    public static int ToStruct<T>(VariantArg* value, void** result)
        where T : struct
    {
        *result = null;
        object? source = In.Reference(value);
        if (source == null || (source is T ? source : Convert(source, typeof(T))) is not T cast)
        {
            return 0;
        }

        *result = Out.Struct(cast);
        return 1;
    }

    /// <summary>The `as` operator over a class object.</summary>
    public static int AsReference<T>(void* handle, void** result)
        where T : class => AsReference<T>(Handles.Unwrap(handle), result);

    /// <summary>The `as` operator over anything that a wrapper holds.</summary>
    public static int AsReference<T>(VariantArg* value, void** result)
        where T : class => AsReference<T>(In.Reference(value), result);

    /// <summary>The `as` operator to a struct.</summary>
    public static int AsStruct<T>(VariantArg* value, void** result)
        where T : struct
    {
        *result = null;
        if (In.Reference(value) is not T cast)
        {
            return 0;
        }

        *result = Out.Struct(cast);
        return 1;
    }

    /// <summary>Whether the object is one of the type.</summary>
    public static int IsInstance<T>(void* handle) => Handles.Unwrap(handle) is T ? 1 : 0;

    /// <summary>Whether what the record holds is one of the type.</summary>
    public static int IsInstance<T>(VariantArg* value) => In.Reference(value) is T ? 1 : 0;

    /// <summary>
    /// The same where the caller gives either a handle or the address of a record.
    /// </summary>
    public static int IsInstanceOfEither<T>(void* handleOrRecord) =>
        Handles.IsHandle(handleOrRecord)
            ? IsInstance<T>(handleOrRecord)
            : IsInstance<T>((VariantArg*)handleOrRecord);

    /// <summary>Views an object as the class; one of another type is an exception.</summary>
    public static int ReinterpretReference<T>(void* handle, void** result)
        where T : class
    {
        object source = Handles.Unwrap(handle) ?? throw NothingToReinterpret();
        *result = Handles.New(source as T ?? throw CannotReinterpret(source, typeof(T)));
        return 1;
    }

    /// <summary>Views a boxed struct as the struct; an object of another type is an exception.</summary>
    public static int ReinterpretStruct<T>(void* handle, void** result)
        where T : struct
    {
        object source = Handles.Unwrap(handle) ?? throw NothingToReinterpret();
        *result = source is T value ? Out.Struct(value) : throw CannotReinterpret(source, typeof(T));
        return 1;
    }

    /// <summary>A cast to a class that has no objects: only a null reference is one.</summary>
    public static int ToNothing(VariantArg* value, void** result)
    {
        *result = null;
        return In.Reference(value) == null ? 1 : 0;
    }

    /// <summary>The `as` operator to a class that has no objects.</summary>
    public static int AsNothing(void** result)
    {
        *result = null;
        return 0;
    }

    /// <summary>No object can be viewed as a class that has none.</summary>
    public static int ReinterpretNothing(Type type, void* handle, void** result)
    {
        *result = null;
        throw CannotReinterpret(Handles.Unwrap(handle) ?? throw NothingToReinterpret(), type);
    }

    /// <summary>
    /// Casts a struct to a type that is known only now; the result is an object of that type.
    /// </summary>
    public static int From<T>(void* handle, void* type, void** result)
        where T : struct
    {
        object source = Handles.Unwrap(handle) ?? throw NothingToReinterpret();
        Type target = (Type)Handles.Get(type);
        object? cast = target.IsInstanceOfType(source) ? source : Convert(source, target);
        *result = Out.Class(cast);
        return cast == null ? 0 : 1;
    }

    /// <summary>An explicit cast to an enum: one of it, or a number.</summary>
    public static int ToEnum(Type type, VariantArg* value, int* result)
    {
        object? source = In.Reference(value);
        *result = 0;
        if (source == null || (source.GetType() != type && !IsWhole(source)))
        {
            return 0;
        }

        *result = NumberOf(Enum.ToObject(type, source is Enum other ? NumberOf(other) : source));
        return 1;
    }

    /// <summary>The `as` operator to an enum.</summary>
    public static int AsEnum(Type type, void* handle, int* result)
    {
        object? source = Handles.Unwrap(handle);
        bool fits = source?.GetType() == type;
        *result = fits ? NumberOf(source!) : 0;
        return fits ? 1 : 0;
    }

    /// <summary>Whether the object is a member of the enum.</summary>
    public static int IsEnum(Type type, void* handle) => Handles.Unwrap(handle)?.GetType() == type ? 1 : 0;

    /// <summary>The number of a boxed member; an object of another type is an exception.</summary>
    public static int ReinterpretEnum(Type type, void* handle, int* result)
    {
        object source = Handles.Unwrap(handle) ?? throw NothingToReinterpret();
        *result = source.GetType() == type ? NumberOf(source) : throw CannotReinterpret(source, type);
        return 1;
    }

    /// <summary>A handle of the boxed member with that number.</summary>
    public static int BoxEnum(Type type, int number, void** result)
    {
        *result = Handles.New(Enum.ToObject(type, number));
        return 1;
    }

    /// <summary>Stores an enum's number where the native side keeps a byte.</summary>
    public static int Narrow(int status, int number, byte* result)
    {
        *result = unchecked((byte)number);
        return status;
    }

    private static int AsReference<T>(object? source, void** result)
        where T : class
    {
        T? cast = source as T;
        *result = Out.Class(cast);
        return cast == null ? 0 : 1;
    }

    private static bool IsWhole(object value) =>
        value is Enum or int or byte or short or long or uint or ulong or ushort or sbyte;

    private static int NumberOf(object member) => ((IConvertible)member).ToInt32(null);

    /// <summary>Runs the conversion operator that either type declares; null when there is none.</summary>
    private static object? Convert(object source, Type target)
    {
        MethodInfo? conversion = s_operators.GetOrAdd(new Conversion(source.GetType(), target), FindOperator);
        return conversion?.Invoke(null, [source]);
    }

    private static MethodInfo? FindOperator(Conversion pair)
    {
        foreach (Type owner in new[] { pair.From, pair.To })
        {
            foreach (MethodInfo method in owner.GetMethods(BindingFlags.Public | BindingFlags.Static))
            {
                if (method.Name is "op_Implicit" or "op_Explicit" && method.ReturnType == pair.To &&
                    method.GetParameters() is [{ } only] && only.ParameterType.IsAssignableFrom(pair.From))
                {
                    return method;
                }
            }
        }

        return null;
    }

    /// <summary>
    /// A pair of types; a class, so that the dictionary over it is one that the framework has precompiled.
    /// </summary>
    private sealed record Conversion(Type From, Type To);

    private static InvalidCastException CannotReinterpret(object source, Type target) =>
        new($"A '{source.GetType().FullName}' is no '{target.FullName}'.");

    private static NullReferenceException NothingToReinterpret() => new("The object has no managed object.");
}
