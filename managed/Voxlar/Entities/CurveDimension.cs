namespace Velbor.Voxlar.Entities;

/// <summary>The number of coordinates a curve uses.</summary>
public enum CurveDimension
{
    TwoDimensional = 0,
    ThreeDimensional = 1,
}
