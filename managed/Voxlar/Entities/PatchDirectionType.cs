namespace Velbor.Voxlar.Entities;

/// <summary>The basis of a patch in one direction.</summary>
public enum PatchDirectionType
{
    Bezier = 0,
    QuadraticBezier = 1,
    CardinalSpline = 2,
    BasisSpline = 3,
    Linear = 4,
}
