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
