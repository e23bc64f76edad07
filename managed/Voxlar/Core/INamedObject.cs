namespace Velbor.Voxlar;

/// <summary>Something that has a name.</summary>
public interface INamedObject
{
    /// <summary>The name.</summary>
    string Name { get; }
}
