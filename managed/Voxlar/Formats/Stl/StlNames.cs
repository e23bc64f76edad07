namespace Velbor.Voxlar.Formats.Stl;

/// <summary>
/// The names of the dynamic properties of a mesh in which values of STL files stand that it has no other
/// place for.
/// </summary>
internal static class StlNames
{
    /// <summary>
    /// byte[], the 80 bytes before the facets of a binary file, where they are not all zero.
    /// </summary>
    public const string Header = "stl.header";

    /// <summary>
    /// int[], the attribute word of each facet of a binary file, where they are not all zero.
    /// </summary>
    public const string Attributes = "stl.attributes";
}
