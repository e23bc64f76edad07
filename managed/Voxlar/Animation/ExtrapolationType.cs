namespace Velbor.Voxlar.Animation;

/// <summary>How a keyframe sequence continues outside its first and last key.</summary>
public enum ExtrapolationType
{
    /// <summary>The value of the nearest key holds.</summary>
    Constant = 0,

    /// <summary>The slope at the nearest key goes on as a straight line.</summary>
    Gradient = 1,

    /// <summary>The sequence repeats.</summary>
    Cycle = 2,

    /// <summary>The sequence repeats, each round starting at the value where the last one ended.</summary>
    CycleRelative = 3,

    /// <summary>The sequence runs forwards and backwards in turn.</summary>
    Oscillate = 4,
}
