using System;
using System.Collections.Concurrent;
using System.Collections.Generic;
using System.Reflection;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>
/// The own properties of a class, those of its base classes first: the public properties that can be read and
/// written and hold plain data, that is a number, a text, an enum, a date or one of the value types of this
/// library.
/// </summary>
internal sealed class NativePropertyTable
{
    private static readonly ConcurrentDictionary<Type, NativePropertyTable> Tables = new();

    private readonly Dictionary<string, int> _places = new(StringComparer.Ordinal);
    private readonly List<PropertyInfo> _rows = [];

    private NativePropertyTable(Type type)
    {
        Stack<Type> line = new();
        for (Type? t = type; t is not null && t != typeof(VbrObject) && t != typeof(Property); t = t.BaseType)
            line.Push(t);
        const BindingFlags OwnMembers = BindingFlags.Public | BindingFlags.Instance | BindingFlags.DeclaredOnly;
        foreach (Type level in line)
        {
            foreach (PropertyInfo info in level.GetProperties(OwnMembers))
            {
                bool readWrite = info.GetMethod is { IsPublic: true } && info.SetMethod is { IsPublic: true };
                if (readWrite && info.GetIndexParameters().Length == 0 && IsData(info.PropertyType)
                    && _places.TryAdd(info.Name, _rows.Count))
                    _rows.Add(info);
            }
        }
    }

    /// <summary>The number of properties.</summary>
    public int Count => _rows.Count;

    /// <summary>The property at a place.</summary>
    public PropertyInfo this[int place] => _rows[place];

    /// <summary>The table of an object's class.</summary>
    public static NativePropertyTable Of(VbrObject owner) =>
        Tables.GetOrAdd(owner.GetType(), type => new NativePropertyTable(type));

    /// <summary>The place of a property, or -1.</summary>
    public int IndexOf(string name) => _places.TryGetValue(name, out int place) ? place : -1;

    private static bool IsData(Type type)
    {
        Type plain = Nullable.GetUnderlyingType(type) ?? type;
        return plain.IsPrimitive || plain.IsEnum || plain == typeof(string) || plain == typeof(DateTime)
            || (plain.IsValueType && plain.Assembly == typeof(Vector3).Assembly);
    }
}
