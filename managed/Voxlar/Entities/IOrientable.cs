using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Something that looks somewhere.</summary>
public interface IOrientable
{
    /// <summary>The direction it looks in, of length 1.</summary>
    Vector3 Direction { get; set; }

    /// <summary>The node it looks at, or null.</summary>
    Node? Target { get; set; }
}
