using System;

namespace Velbor.WrpGen.Interop;

/// <summary>Holds one struct for a native wrapper.</summary>
internal abstract class StructHolder
{
    /// <summary>The type of the struct.</summary>
    public abstract Type StructType { get; }

    /// <summary>A copy of the struct as an object.</summary>
    public abstract object Box();
}

/// <summary>Holds one struct of a known type; equality, hash and text are those of the struct.</summary>
internal sealed class StructHolder<T> : StructHolder
    where T : struct
{
    /// <summary>The struct itself; members work on it in place.</summary>
    public T Value;

    public StructHolder(T value) => Value = value;

    public override Type StructType => typeof(T);

    public override object Box() => Value;

    public override bool Equals(object? other) =>
        Value.Equals(other is StructHolder holder ? holder.Box() : other);

    public override int GetHashCode() => Value.GetHashCode();

    public override string ToString() => Value.ToString() ?? "";
}
