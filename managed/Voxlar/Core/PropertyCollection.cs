using System;
using System.Collections;
using System.Collections.Generic;

namespace Velbor.Voxlar;

/// <summary>The properties of an object: its own ones first, then those that the user added, in their order.</summary>
public sealed class PropertyCollection : IEnumerable<Property>
{
    private readonly VbrObject _owner;
    private readonly List<Property> _list;
    private readonly Dictionary<string, Property> _byName = new(StringComparer.Ordinal);

    internal PropertyCollection(VbrObject owner)
    {
        _owner = owner;
        _list = [.. NativeProperty.Of(owner)];
        foreach (Property property in _list)
            _byName.Add(property.Name, property);
    }

    /// <summary>The number of properties.</summary>
    public int Count => _list.Count;

    /// <summary>The property at a place, counted from 0.</summary>
    /// <exception cref="ArgumentOutOfRangeException">There is no such place.</exception>
    public Property this[int index] => _list[index];

    /// <summary>Removes a property that the user added.</summary>
    /// <returns>True when it was there; own properties of the object stay, with false.</returns>
    /// <exception cref="ArgumentNullException"><paramref name="property"/> is null.</exception>
    public bool RemoveProperty(Property property)
    {
        ArgumentNullException.ThrowIfNull(property);
        if (property is not UserProperty || property.Owner != _owner || !_list.Remove(property))
            return false;
        _byName.Remove(property.Name);
        return true;
    }

    /// <summary>Removes a property that the user added, by its name.</summary>
    /// <returns>True when it was there; own properties of the object stay, with false.</returns>
    /// <exception cref="ArgumentNullException"><paramref name="property"/> is null.</exception>
    public bool RemoveProperty(string property)
    {
        Property? found = FindProperty(property);
        return found is not null && RemoveProperty(found);
    }

    /// <summary>The property of that name, or null.</summary>
    /// <exception cref="ArgumentNullException"><paramref name="property"/> is null.</exception>
    public Property? FindProperty(string property)
    {
        ArgumentNullException.ThrowIfNull(property);
        return _byName.GetValueOrDefault(property);
    }

    /// <summary>The value of a property; null when there is no such property.</summary>
    public object? Get(string property) => FindProperty(property)?.Value;

    /// <summary>Gives the properties in their order.</summary>
    public IEnumerator<Property> GetEnumerator() => _list.GetEnumerator();

    IEnumerator IEnumerable.GetEnumerator() => GetEnumerator();

    internal void Set(string name, object? value)
    {
        ArgumentException.ThrowIfNullOrEmpty(name);
        if (FindProperty(name) is { } found)
        {
            found.Value = value;
            return;
        }
        UserProperty added = new(_owner, name, value);
        _list.Add(added);
        _byName.Add(name, added);
    }

    internal void Rename(Property property, string name)
    {
        ArgumentException.ThrowIfNullOrEmpty(name);
        if (!_byName.TryGetValue(property.Name, out Property? present) || present != property)
            return;
        if (_byName.TryGetValue(name, out Property? other) && other != property)
            throw new ArgumentException($"There is a property '{name}' already.", nameof(name));
        _byName.Remove(property.Name);
        _byName.Add(name, property);
    }

    internal void ClearUserProperties()
    {
        foreach (Property property in _list.FindAll(p => p is UserProperty))
            RemoveProperty(property);
    }
}
