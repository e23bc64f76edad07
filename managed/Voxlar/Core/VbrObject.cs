using System;

namespace Velbor.Voxlar;

/// <summary>
/// The base of all objects of a scene: a name, the object's own properties by name, and properties that the
/// user adds.
/// </summary>
public class VbrObject : INamedObject
{
    private string _name;
    private PropertyCollection? _properties;

    /// <summary>Makes an object with a name.</summary>
    /// <param name="name">The name; null counts as the empty one.</param>
    public VbrObject(string name) => _name = name ?? "";

    /// <summary>Makes an object with an empty name.</summary>
    public VbrObject()
        : this("")
    {
    }

    /// <summary>The name; never null, and not necessarily unique.</summary>
    public virtual string Name
    {
        get => _name;
        set => _name = value ?? "";
    }

    /// <summary>The properties: the object's own ones first, then those that the user added.</summary>
    public PropertyCollection Properties => _properties ??= new PropertyCollection(this);

    /// <summary>Removes a property that the user added.</summary>
    /// <returns>True when it was there; own properties of the object stay, with false.</returns>
    public bool RemoveProperty(Property property) => Properties.RemoveProperty(property);

    /// <summary>Removes a property that the user added, by its name.</summary>
    /// <returns>True when it was there; own properties of the object stay, with false.</returns>
    public bool RemoveProperty(string property) => Properties.RemoveProperty(property);

    /// <summary>The value of a property.</summary>
    /// <returns>The value; null when there is no such property.</returns>
    public object? GetProperty(string property) => Properties.Get(property);

    /// <summary>Sets the value of a property, and adds the property when there is none of that
    /// name.</summary>
    /// <param name="property">The name of the property.</param>
    /// <param name="value">The value; any object or null.</param>
    /// <exception cref="ArgumentException">The name is empty, or an own property takes no such
    /// value.</exception>
    public void SetProperty(string property, object? value) => Properties.Set(property, value);

    /// <summary>The property of that name, or null.</summary>
    public Property? FindProperty(string propertyName) => Properties.FindProperty(propertyName);

    /// <summary>The type and the name.</summary>
    public override string ToString() => Name.Length == 0 ? GetType().Name : $"{GetType().Name} '{Name}'";

    /// <summary>Drops all properties that the user added.</summary>
    internal void ClearUserProperties() => _properties?.ClearUserProperties();
}
