using System;

namespace Velbor.Voxlar.Profiles;

/// <summary>
/// A profile of letters. It keeps its values, but has no outline, as fonts cannot be read in this build.
/// </summary>
public class Text : Profile
{
    /// <summary>The letters.</summary>
    public string? Content { get; set; }

    /// <summary>The font of the letters.</summary>
    public FontFile? Font { get; set; }

    /// <summary>The height of the font's em square, in the unit of the scene; 1 at first.</summary>
    public double FontSize { get; set; } = 1;

    internal override ProfileOutline GetOutline() =>
        throw new NotSupportedException("outlines of text are not available in this build");
}
