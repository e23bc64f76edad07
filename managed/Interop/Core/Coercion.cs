using System;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// Python has one integer type and one real type, so an open-typed value may arrive in another numeric type
/// than the collection holds. Such a number is converted when nothing is lost.
/// </summary>
internal static class Coercion
{
    /// <summary>The value as an instance of the type; an exception when it cannot be one.</summary>
    public static object? To(Type? type, object? value)
    {
        if (type == null || value == null || type.IsInstanceOfType(value))
        {
            return value;
        }

        return TryTo(type, value) ??
            throw new InvalidCastException(
                $"A '{type.FullName}' is wanted, a '{value.GetType().FullName}' is given.");
    }

    /// <summary>The number in another numeric type, null when it does not fit there.</summary>
    public static object? TryTo(Type type, object value)
    {
        if (type.IsEnum || !IsNumber(Type.GetTypeCode(type)) || !IsNumber(Type.GetTypeCode(value.GetType())))
        {
            return null;
        }

        object converted;
        try
        {
            converted = ((IConvertible)value).ToType(type, null);
        }
        catch (OverflowException)
        {
            return null;
        }

        // Rounding on the way to an integer type would lose something; a real type takes its nearest value.
        return type == typeof(float) || type == typeof(double) || ((IConvertible)converted).ToDouble(null)
            .Equals(((IConvertible)value).ToDouble(null)) ? converted : null;
    }

    private static bool IsNumber(TypeCode code) => code is >= TypeCode.SByte and <= TypeCode.Decimal;
}
