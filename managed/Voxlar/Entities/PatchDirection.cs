namespace Velbor.Voxlar.Entities;

/// <summary>What a patch is in one direction.</summary>
public class PatchDirection
{
    /// <summary>The basis.</summary>
    public PatchDirectionType Type { get; set; }

    /// <summary>The number of pieces that a span is drawn in.</summary>
    public int Divisions { get; set; } = 4;

    /// <summary>The number of control points.</summary>
    public int ControlPoints { get; set; }

    /// <summary>Whether the end meets the begin.</summary>
    public bool Closed { get; set; }
}
