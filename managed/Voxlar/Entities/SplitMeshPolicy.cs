namespace Velbor.Voxlar.Entities;

/// <summary>What the parts of a split mesh hold.</summary>
public enum SplitMeshPolicy
{
    /// <summary>Every part has all control points and element values of the source.</summary>
    CloneData = 0,

    /// <summary>Every part has only the control points and element values that it uses.</summary>
    CompactData = 1,
}
