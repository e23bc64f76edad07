using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using Xunit;

namespace WrpInterop.Tests;

/// <summary>One statement of the catalogue about the scene library.</summary>
internal abstract record ApiRow(Type Owner)
{
    /// <summary>What is wrong with it, null when it holds.</summary>
    public abstract string? Fault();

    protected const BindingFlags Public =
        BindingFlags.Public | BindingFlags.Instance | BindingFlags.Static | BindingFlags.FlattenHierarchy;

    /// <summary>
    /// Whether a result of one type serves as one of another: a reference of a derived class does.
    /// </summary>
    protected static bool Serves(Type wanted, Type given) =>
        wanted == given || (!given.IsValueType && wanted.IsAssignableFrom(given));
}

/// <summary>A type is there, public, and can be constructed or not.</summary>
internal sealed record ApiType(Type Owner, bool Constructible) : ApiRow(Owner)
{
    public override string? Fault() =>
        !Owner.IsVisible ? "is not public"
        : Constructible && Owner.IsAbstract ? "is abstract"
        : !Constructible && !Owner.IsValueType && Owner.GetConstructors().Length > 0 ? "has a public constructor"
        : null;
}

/// <summary>A base class or an interface.</summary>
internal sealed record ApiBase(Type Owner, Type Base) : ApiRow(Owner)
{
    public override string? Fault() => Base.IsAssignableFrom(Owner) ? null : $"is no {Base}";
}

/// <summary>A method or constructor.</summary>
internal sealed record ApiMethod(Type Owner, string Name, bool IsStatic, Type Result, params Type[] Parameters)
    : ApiRow(Owner)
{
    public override string? Fault()
    {
        string told = $"{Name}({string.Join(", ", Parameters.Select(type => type.Name))})";
        if (Name == ".ctor")
        {
            return Owner.GetConstructor(Parameters) == null ? $"has no {told}" : null;
        }

        if (Owner.GetMethod(Name, Public, Parameters) is not { } method)
        {
            return $"has no {told}";
        }

        return method.IsStatic != IsStatic ? $"{told} is {(IsStatic ? "not " : "")}static"
            : !Serves(Result, method.ReturnType) ? $"{told} gives {method.ReturnType}, not {Result}"
            : null;
    }
}

/// <summary>A property; on structs and for constants a field serves, too.</summary>
internal sealed record ApiProperty(Type Owner, string Name, bool IsStatic, Type Type, bool Writable)
    : ApiRow(Owner)
{
    public override string? Fault()
    {
        BindingFlags flags = Public & ~(IsStatic ? BindingFlags.Instance : BindingFlags.Static);
        if (Owner.GetField(Name, flags) is { } field)
        {
            return field.FieldType != Type ? $"{Name} is {field.FieldType}, not {Type}"
                : Writable == (field.IsInitOnly || field.IsLiteral) ? $"{Name} is writable: {!Writable}"
                : null;
        }

        PropertyInfo? property = Owner.GetProperties(flags).Where(one => one.Name == Name)
            .OrderBy(one => one.DeclaringType == Owner ? 0 : 1).FirstOrDefault();
        if (property == null)
        {
            return $"has no {Name}";
        }

        bool writable = property.SetMethod?.IsPublic == true;
        return !(Writable ? Type == property.PropertyType : Serves(Type, property.PropertyType))
                ? $"{Name} is {property.PropertyType}, not {Type}"
            : Writable != writable ? $"{Name} is writable: {writable}"
            : null;
    }
}

/// <summary>An enum with its numbers.</summary>
internal sealed record ApiEnum(Type Owner, bool IsByte, params long[] Numbers) : ApiRow(Owner)
{
    public override string? Fault()
    {
        if (Enum.GetUnderlyingType(Owner) != (IsByte ? typeof(byte) : typeof(int)))
        {
            return $"is of {Enum.GetUnderlyingType(Owner)}";
        }

        IEnumerable<long> given = Enum.GetValues(Owner).Cast<IConvertible>().Select(value => value.ToInt64(null));
        return given.Order().SequenceEqual(Numbers.Order()) ? null : $"has the numbers {string.Join(", ", given)}";
    }
}

/// <summary>The scene library's public types are those of the catalogue, member by member.</summary>
public class ApiTests
{
    [Fact]
    public void Every_row_of_the_catalogue_holds()
    {
        string[] faults = [.. Api.Rows.Select(row => (row.Owner, Fault: row.Fault())).Where(one => one.Fault != null)
            .Select(one => $"{one.Owner.FullName}: {one.Fault}")];
        Assert.True(faults.Length == 0, string.Join(Environment.NewLine, faults));
        Assert.True(Api.Rows.Length > 1500, $"only {Api.Rows.Length} rows were compared");
    }
}
