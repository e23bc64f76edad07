namespace Velbor.Voxlar.Animation;

/// <summary>How a keyframe sequence continues on one side.</summary>
public class Extrapolation
{
    internal Extrapolation()
    {
    }

    /// <summary>The way it continues.</summary>
    public ExtrapolationType Type { get; set; }

    /// <summary>How often a repeating sequence repeats; 0 for without end.</summary>
    public int RepeatCount { get; set; }
}
