using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Animation;

/// <summary>
/// A value at a time, and the shape of the segment up to the next key. The constructor does not put the key
/// into the sequence: add it to <see cref="KeyframeSequence.KeyFrames"/>, or let
/// <see cref="KeyframeSequence.Add(double, float)"/> make it.
/// </summary>
public class KeyFrame
{
    /// <summary>Makes a key of the value 0.</summary>
    /// <param name="curve">The sequence the key is meant for.</param>
    /// <param name="time">The time in seconds.</param>
    public KeyFrame(KeyframeSequence curve, double time)
    {
        ArgumentNullException.ThrowIfNull(curve);
        Time = time;
    }

    /// <summary>The time in seconds.</summary>
    public double Time { get; set; }

    /// <summary>The value at that time.</summary>
    public float Value { get; set; }

    /// <summary>How the values up to the next key are found; linear at first.</summary>
    public Interpolation Interpolation { get; set; } = Interpolation.Linear;

    /// <summary>Which of the two tangent weights count; where one does not, 1/3 stands for it.</summary>
    public WeightedMode TangentWeightMode { get; set; }

    /// <summary>Which key gives the value of a constant segment.</summary>
    public StepMode StepMode { get; set; }

    /// <summary>
    /// The direction in which the next key is reached: x is time in seconds, y the change of value.
    /// </summary>
    public Vector2 NextInTangent { get; set; }

    /// <summary>
    /// The direction in which this key is left: x is time in seconds, y the change of value.
    /// </summary>
    public Vector2 OutTangent { get; set; }

    /// <summary>The length of the out tangent in time, as a share of the segment.</summary>
    public float OutWeight { get; set; } = 1f / 3;

    /// <summary>The length of the next in tangent in time, as a share of the segment.</summary>
    public float NextInWeight { get; set; } = 1f / 3;

    /// <summary>The tension of a cardinal or TCB segment, from -1 to 1.</summary>
    public float Tension { get; set; }

    /// <summary>The continuity of a TCB segment, from -1 to 1.</summary>
    public float Continuity { get; set; }

    /// <summary>The bias of a TCB segment, from -1 to 1.</summary>
    public float Bias { get; set; }

    /// <summary>Whether the tangents on both sides of the key are set apart from each other.</summary>
    public bool IndependentTangent { get; set; }

    /// <summary>Whether the curve is flat at this key: both tangents that meet here are level.</summary>
    public bool Flat { get; set; }

    /// <summary>Whether the tangents stay as they are when the time of the key changes.</summary>
    public bool TimeIndependentTangent { get; set; }

    /// <inheritdoc/>
    public override string ToString() => FormattableString.Invariant($"{Time}: {Value}");
}
