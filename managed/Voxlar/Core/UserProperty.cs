using System;

namespace Velbor.Voxlar;

/// <summary>A property that the user added; it holds any value.</summary>
internal sealed class UserProperty : Property
{
    public UserProperty(VbrObject owner, string name, object? value)
        : base(owner, name) => Value = value;

    public override object? Value { get; set; }

    public override Type ValueType => Value?.GetType() ?? typeof(object);

    internal override PropertyFlags Flags => PropertyFlags.UserDefined | PropertyFlags.Animatable;
}
