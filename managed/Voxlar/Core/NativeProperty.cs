using System;
using System.Collections.Concurrent;
using System.Collections.Generic;
using System.Globalization;
using System.Reflection;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>
/// An object's own property: a public property of its class that can be read and written and holds plain data, that
/// is a number, a text, an enum, a date or one of the value types of this library.
/// </summary>
internal sealed class NativeProperty : Property
{
    private static readonly ConcurrentDictionary<Type, PropertyInfo[]> Declared = new();

    private readonly PropertyInfo _info;

    private NativeProperty(VbrObject owner, PropertyInfo info)
        : base(owner, info.Name) => _info = info;

    public override object? Value
    {
        get => _info.GetValue(Owner);
        set => _info.SetValue(
            Owner, Fit(value), BindingFlags.DoNotWrapExceptions, binder: null, index: null, culture: null);
    }

    public override Type ValueType => _info.PropertyType;

    internal override PropertyFlags Flags => PropertyFlags.Animatable;

    /// <summary>Makes the properties of an object, those of its base classes first.</summary>
    public static IEnumerable<Property> Of(VbrObject owner)
    {
        foreach (PropertyInfo info in Declared.GetOrAdd(owner.GetType(), Find))
            yield return new NativeProperty(owner, info);
    }

    private static PropertyInfo[] Find(Type type)
    {
        Stack<Type> line = new();
        for (Type? t = type; t is not null && t != typeof(VbrObject) && t != typeof(Property); t = t.BaseType)
            line.Push(t);
        List<PropertyInfo> result = [];
        HashSet<string> names = new(StringComparer.Ordinal);
        foreach (Type level in line)
        {
            const BindingFlags OwnMembers = BindingFlags.Public | BindingFlags.Instance | BindingFlags.DeclaredOnly;
            foreach (PropertyInfo info in level.GetProperties(OwnMembers))
            {
                bool readWrite = info.GetMethod is { IsPublic: true } && info.SetMethod is { IsPublic: true };
                if (readWrite && info.GetIndexParameters().Length == 0 && IsData(info.PropertyType)
                    && names.Add(info.Name))
                    result.Add(info);
            }
        }
        return [.. result];
    }

    private static bool IsData(Type type)
    {
        Type plain = Nullable.GetUnderlyingType(type) ?? type;
        return plain.IsPrimitive || plain.IsEnum || plain == typeof(string) || plain == typeof(DateTime)
            || (plain.IsValueType && plain.Assembly == typeof(Vector3).Assembly);
    }

    // Numbers and vectors of another precision are converted; all else must have the declared type.
    private object? Fit(object? value)
    {
        Type declared = _info.PropertyType;
        if (declared.IsInstanceOfType(value))
            return value;
        Type? nullableOf = Nullable.GetUnderlyingType(declared);
        if (value is null && (nullableOf is not null || !declared.IsValueType))
            return null;
        Type target = nullableOf ?? declared;
        object? converted = value switch
        {
            FVector2 v when target == typeof(Vector2) => new Vector2(v),
            FVector3 v when target == typeof(Vector3) => new Vector3(v),
            FVector4 v when target == typeof(Vector4) => new Vector4(v),
            FMatrix4 m when target == typeof(Matrix4) => new Matrix4(m),
            Vector2 v when target == typeof(FVector2) => new FVector2(v),
            Vector3 v when target == typeof(FVector3) => new FVector3(v),
            Vector4 v when target == typeof(FVector4) => new FVector4(v),
            IConvertible number when IsNumber(target) && IsNumber(value.GetType()) => Number(number, target),
            _ => null,
        };
        return converted ?? throw new ArgumentException(
            $"The property '{Name}' takes a {target.Name}, not {value?.GetType().Name ?? "null"}.");
    }

    private static bool IsNumber(Type type) => type.IsPrimitive && type != typeof(bool) && type != typeof(char);

    private object Number(IConvertible number, Type target)
    {
        try
        {
            return number.ToType(target, CultureInfo.InvariantCulture);
        }
        catch (OverflowException)
        {
            throw new ArgumentException($"The property '{Name}' takes a {target.Name}; {number} is too large.");
        }
    }
}
