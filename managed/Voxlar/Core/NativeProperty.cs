using System;
using System.Globalization;
using System.Reflection;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>An object's own property: a row of its class's <see cref="NativePropertyTable"/>.</summary>
internal sealed class NativeProperty : Property
{
    private readonly PropertyInfo _info;

    public NativeProperty(VbrObject owner, PropertyInfo info)
        : base(owner, info.Name) => _info = info;

    public override object? Value
    {
        get => _info.GetValue(Owner);
        set => _info.SetValue(
            Owner, Fit(value), BindingFlags.DoNotWrapExceptions, binder: null, index: null, culture: null);
    }

    public override Type ValueType => _info.PropertyType;

    internal override PropertyFlags Flags => PropertyFlags.Animatable;

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
            IConvertible number when target.IsEnum && IsNumber(value.GetType()) => Member(number, target),
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
            object converted = number.ToType(target, CultureInfo.InvariantCulture);
            if (IsWhole(target) && number is double or float && Convert.ToDouble(converted, CultureInfo.InvariantCulture)
                != number.ToDouble(CultureInfo.InvariantCulture))
                throw new ArgumentException($"The property '{Name}' takes a {target.Name}; {number} is no whole number.");
            return converted;
        }
        catch (OverflowException)
        {
            throw new ArgumentException($"The property '{Name}' takes a {target.Name}; {number} is out of its range.");
        }
    }

    // A member by its number: that is how one comes from where the enum is not known.
    private object Member(IConvertible number, Type target)
    {
        object member = Enum.ToObject(target, Number(number, Enum.GetUnderlyingType(target)));
        bool known = Enum.IsDefined(target, member) || target.IsDefined(typeof(FlagsAttribute), inherit: false);
        return known ? member : throw new ArgumentException($"The property '{Name}' takes a {target.Name}; none is {number}.");
    }

    private static bool IsWhole(Type type) => type != typeof(double) && type != typeof(float);
}
