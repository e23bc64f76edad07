using System;
using Velbor.Voxlar.Animation;

namespace Velbor.Voxlar;

/// <summary>A property of an object: one of its own or one that the user added.</summary>
public abstract class Property : VbrObject
{
    private protected Property(VbrObject owner, string name)
        : base(name) => Owner = owner;

    /// <summary>The name. The name of an object's own property cannot be changed.</summary>
    /// <exception cref="InvalidOperationException">The property is one of the object's own.</exception>
    /// <exception cref="ArgumentException">The name is empty or taken.</exception>
    public override string Name
    {
        get => base.Name;
        set
        {
            if (!Flags.HasFlag(PropertyFlags.UserDefined))
                throw new InvalidOperationException($"The property '{Name}' cannot be renamed.");
            Owner.Properties.Rename(this, value);
            base.Name = value;
        }
    }

    /// <summary>The value; an added property takes any object or null, an own one values of its
    /// type.</summary>
    /// <exception cref="ArgumentException">An own property takes no such value.</exception>
    public abstract object? Value { get; set; }

    /// <summary>The type of the value: the declared one, or that of the present value of an added
    /// property.</summary>
    public abstract Type ValueType { get; }

    internal VbrObject Owner { get; }

    internal abstract PropertyFlags Flags { get; }

    /// <summary>The bind point that animates this property in an animation.</summary>
    /// <param name="anim">The animation.</param>
    /// <param name="create">Whether a missing bind point is made.</param>
    /// <returns>The bind point, or null when there is none and none was to be made.</returns>
    public BindPoint? GetBindPoint(AnimationNode anim, bool create)
    {
        ArgumentNullException.ThrowIfNull(anim);
        return anim.GetBindPoint(Owner, Name, create);
    }

    /// <summary>The first key frame sequence that animates this property in an animation.</summary>
    /// <param name="anim">The animation.</param>
    /// <param name="create">Whether a missing sequence is made.</param>
    /// <returns>The sequence, or null when there is none and none was to be made.</returns>
    public KeyframeSequence? GetKeyframeSequence(AnimationNode anim, bool create)
    {
        ArgumentNullException.ThrowIfNull(anim);
        return anim.GetKeyframeSequence(Owner, Name, create);
    }

    /// <summary>The name and the value; a value that is itself a property is told by its name alone, since
    /// properties may hold each other.</summary>
    public override string ToString() => $"{Name} = {(Value is Property other ? other.Name : Value ?? "null")}";
}
