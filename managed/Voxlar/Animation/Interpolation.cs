namespace Velbor.Voxlar.Animation;

/// <summary>How values between a key frame and the next one are found.</summary>
public enum Interpolation
{
    /// <summary>The value steps, see <see cref="StepMode"/>.</summary>
    Constant = 0,

    /// <summary>A straight line.</summary>
    Linear = 1,

    /// <summary>A cubic segment over the two tangents.</summary>
    Bezier = 2,

    /// <summary>A uniform cubic B-spline over the neighbouring keys; it does not pass through them.</summary>
    BSpline = 3,

    /// <summary>A cubic through the keys, whose tangents the tension scales.</summary>
    CardinalSpline = 4,

    /// <summary>A cubic through the keys, shaped by tension, continuity and bias.</summary>
    TcbSpline = 5,
}
