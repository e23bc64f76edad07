using System;
using System.Collections;
using System.Collections.Generic;

namespace Velbor.Voxlar;

/// <summary>The properties of an object: its own ones first, then those that the user added, in their
/// order.</summary>
public sealed class PropertyCollection : IEnumerable<Property>
{
    // Up to so many added properties are searched faster than hashed.
    private const int FewProperties = 8;

    private readonly VbrObject _owner;
    private readonly NativePropertyTable _ownTable;
    private readonly List<Property> _added = [];
    private Property?[]? _own;
    private Dictionary<string, Property>? _addedByName;

    internal PropertyCollection(VbrObject owner)
    {
        _owner = owner;
        _ownTable = NativePropertyTable.Of(owner);
    }

    /// <summary>The number of properties.</summary>
    public int Count => _ownTable.Count + _added.Count;

    /// <summary>The property at a place, counted from 0.</summary>
    /// <exception cref="ArgumentOutOfRangeException">There is no such place.</exception>
    public Property this[int index]
    {
        get
        {
            ArgumentOutOfRangeException.ThrowIfNegative(index);
            return index < _ownTable.Count ? Own(index) : _added[index - _ownTable.Count];
        }
    }

    /// <summary>Removes a property that the user added.</summary>
    /// <returns>True when it was there; own properties of the object stay, with false.</returns>
    /// <exception cref="ArgumentNullException"><paramref name="property"/> is null.</exception>
    public bool RemoveProperty(Property property)
    {
        ArgumentNullException.ThrowIfNull(property);
        if (property.Owner != _owner || !_added.Remove(property))
            return false;
        _addedByName?.Remove(property.Name);
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
        int place = _ownTable.IndexOf(property);
        return place >= 0 ? Own(place) : FindAdded(property);
    }

    /// <summary>The value of a property; null when there is no such property.</summary>
    public object? Get(string property) => FindProperty(property)?.Value;

    /// <summary>Gives the properties in their order.</summary>
    public IEnumerator<Property> GetEnumerator()
    {
        for (int i = 0; i < _ownTable.Count; i++)
            yield return Own(i);
        foreach (Property property in _added)
            yield return property;
    }

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
        _added.Add(added);
        _addedByName?.Add(name, added);
    }

    internal void Rename(Property property, string name)
    {
        ArgumentException.ThrowIfNullOrEmpty(name);
        if (!_added.Contains(property))
            return;
        if (FindProperty(name) is { } other && other != property)
            throw new ArgumentException($"There is a property '{name}' already.", nameof(name));
        _addedByName?.Remove(property.Name);
        _addedByName?.Add(name, property);
    }

    internal void ClearUserProperties()
    {
        _added.Clear();
        _addedByName = null;
    }

    // Made once and kept, since a property is known by its identity.
    private Property Own(int place)
    {
        _own ??= new Property?[_ownTable.Count];
        return _own[place] ??= new NativeProperty(_owner, _ownTable[place]);
    }

    private Property? FindAdded(string name)
    {
        if (_added.Count > FewProperties && _addedByName is null)
        {
            _addedByName = new Dictionary<string, Property>(StringComparer.Ordinal);
            foreach (Property property in _added)
                _addedByName.Add(property.Name, property);
        }
        return _addedByName is not null
            ? _addedByName.GetValueOrDefault(name)
            : _added.Find(property => property.Name == name);
    }
}
