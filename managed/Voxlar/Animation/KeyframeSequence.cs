using System;
using System.Collections;
using System.Collections.Generic;

namespace Velbor.Voxlar.Animation;

/// <summary>
/// Key frames in order of time, which give a value for every time. Enumerating it gives the key frames.
/// </summary>
public class KeyframeSequence : VbrObject, IEnumerable<KeyFrame>
{
    private readonly List<KeyFrame> _keys = new();

    /// <summary>Makes an empty sequence.</summary>
    /// <param name="name">Its name.</param>
    public KeyframeSequence(string name)
        : base(name)
    {
    }

    /// <summary>Makes an empty sequence without a name.</summary>
    public KeyframeSequence()
        : this("")
    {
    }

    /// <summary>The bind point the sequence is bound to, or null.</summary>
    public BindPoint? BindPoint { get; internal set; }

    /// <summary>
    /// The key frames. <see cref="Add(double, float)"/> keeps them in order of time; who changes the list
    /// keeps the order.
    /// </summary>
    public IList<KeyFrame> KeyFrames => _keys;

    /// <summary>How the sequence continues after its last key.</summary>
    public Extrapolation PostBehavior { get; } = new();

    /// <summary>How the sequence continues before its first key.</summary>
    public Extrapolation PreBehavior { get; } = new();

    /// <summary>Adds a key frame with linear interpolation; a key at the same time is replaced.</summary>
    /// <param name="time">The time in seconds.</param>
    /// <param name="value">The value.</param>
    public void Add(double time, float value) => Add(time, value, Interpolation.Linear);

    /// <summary>Adds a key frame; a key at the same time is replaced.</summary>
    /// <param name="time">The time in seconds.</param>
    /// <param name="value">The value.</param>
    /// <param name="interpolation">How the values up to the next key are found.</param>
    public void Add(double time, float value, Interpolation interpolation)
    {
        if (double.IsNaN(time))
            throw new ArgumentException("The time of a key frame is a number.", nameof(time));
        KeyFrame key = new(this, time) { Value = value, Interpolation = interpolation };
        int at = FirstNotBefore(time);
        if (at < _keys.Count && _keys[at].Time == time)
            _keys[at] = key;
        else
            _keys.Insert(at, key);
    }

    /// <summary>Removes all key frames and sets both behaviors back to a constant continuation.</summary>
    public void Reset()
    {
        _keys.Clear();
        foreach (Extrapolation side in new[] { PreBehavior, PostBehavior })
        {
            side.Type = ExtrapolationType.Constant;
            side.RepeatCount = 0;
        }
    }

    IEnumerator<KeyFrame> IEnumerable<KeyFrame>.GetEnumerator() => _keys.GetEnumerator();

    IEnumerator IEnumerable.GetEnumerator() => _keys.GetEnumerator();

    /// <summary>Gives the value at a time.</summary>
    /// <param name="time">The time in seconds.</param>
    /// <exception cref="InvalidOperationException">The sequence has no key.</exception>
    internal double Evaluate(double time)
    {
        if (_keys.Count == 0)
            throw new InvalidOperationException("A keyframe sequence without keys has no value.");
        if (_keys.Count == 1)
            return _keys[0].Value;
        if (time < _keys[0].Time)
            return Extrapolate(PreBehavior, time, _keys[0].Time - time);
        if (time > _keys[^1].Time)
            return Extrapolate(PostBehavior, time, time - _keys[^1].Time);
        return Inside(time);
    }

    private double Inside(double time)
    {
        int next = Math.Clamp(FirstNotBefore(time), 1, _keys.Count - 1);
        return KeyframeSegment.Evaluate(_keys, next - 1, time);
    }

    private double Extrapolate(Extrapolation behavior, double time, double distance)
    {
        double begin = _keys[0].Time;
        double length = _keys[^1].Time - begin;
        bool before = time < begin;
        double nearest = before ? _keys[0].Value : _keys[^1].Value;
        if (behavior.Type == ExtrapolationType.Gradient)
            return nearest + (before ? -1 : 1) * distance * EdgeSlope(before);
        if (behavior.Type == ExtrapolationType.Constant || length <= 0)
            return nearest;

        double rounds = Math.Floor((time - begin) / length);
        if (behavior.RepeatCount > 0 && distance > behavior.RepeatCount * length)
            rounds = before ? -behavior.RepeatCount : behavior.RepeatCount;
        double local = Math.Clamp(time - begin - rounds * length, 0, length);
        if (behavior.RepeatCount > 0 && distance > behavior.RepeatCount * length)
            local = before ? 0 : length;
        switch (behavior.Type)
        {
            case ExtrapolationType.Oscillate:
                bool backwards = rounds % 2 != 0;
                return Inside(begin + (backwards ? length - local : local));
            case ExtrapolationType.CycleRelative:
                return Inside(begin + local) + rounds * ((double)_keys[^1].Value - _keys[0].Value);
            default:
                return Inside(begin + local);
        }
    }

    // The slope of the outermost segment at its outer end, taken over a small step, which serves every
    // interpolation.
    private double EdgeSlope(bool before)
    {
        (int left, int right) = before ? (0, 1) : (_keys.Count - 2, _keys.Count - 1);
        double length = _keys[right].Time - _keys[left].Time;
        if (length <= 0)
            return 0;
        double step = length * 1e-4;
        double from = before ? _keys[left].Time : _keys[right].Time - step;
        double to = before ? _keys[left].Time + step : _keys[right].Time;
        if (_keys[left].Interpolation == Interpolation.Constant)
            return 0;
        double rise = KeyframeSegment.Evaluate(_keys, left, to) - KeyframeSegment.Evaluate(_keys, left, from);
        return rise / step;
    }

    private int FirstNotBefore(double time)
    {
        int low = 0;
        int high = _keys.Count;
        while (low < high)
        {
            int middle = (low + high) / 2;
            if (_keys[middle].Time < time)
                low = middle + 1;
            else
                high = middle;
        }
        return low;
    }
}
