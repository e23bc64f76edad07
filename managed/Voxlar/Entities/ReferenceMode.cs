namespace Velbor.Voxlar.Entities;

/// <summary>How the values of a vertex element are found.</summary>
public enum ReferenceMode
{
    /// <summary>The n-th item has the n-th value.</summary>
    Direct = 0,

    /// <summary>
    /// The n-th item has the n-th index, which is the value itself, such as a material number.
    /// </summary>
    Index = 1,

    /// <summary>The n-th item has the n-th index, which selects the value.</summary>
    IndexToDirect = 2,
}
