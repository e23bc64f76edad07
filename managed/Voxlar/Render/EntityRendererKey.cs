using System;

namespace Velbor.Voxlar.Render;

/// <summary>The name under which a kind of entity finds its renderer. Keys of one name are equal.</summary>
public sealed class EntityRendererKey : IEquatable<EntityRendererKey>
{
    private readonly string _name;

    /// <summary>Makes a key.</summary>
    /// <param name="name">Its name.</param>
    public EntityRendererKey(string name)
    {
        ArgumentNullException.ThrowIfNull(name);
        _name = name;
    }

    /// <inheritdoc/>
    public bool Equals(EntityRendererKey? other) => other is not null && other._name == _name;

    /// <inheritdoc/>
    public override bool Equals(object? obj) => Equals(obj as EntityRendererKey);

    /// <inheritdoc/>
    public override int GetHashCode() => _name.GetHashCode(StringComparison.Ordinal);

    /// <summary>The name of the key.</summary>
    public override string ToString() => _name;
}
