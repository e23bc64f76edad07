using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Deformers;

/// <summary>A bone of a skin: a node and its weight on each control point.</summary>
public class Bone : VbrObject
{
    private readonly List<double> _weights = new();

    /// <summary>Makes a bone.</summary>
    /// <param name="name">Its name.</param>
    public Bone(string name)
        : base(name)
    {
    }

    /// <summary>Makes a bone without a name.</summary>
    public Bone()
        : this("")
    {
    }

    /// <summary>
    /// The number of control points with a stored weight: the highest index set so far and one.
    /// </summary>
    public int WeightCount => _weights.Count;

    /// <summary>The transform of the geometry's node when the bone was bound.</summary>
    public Matrix4 Transform { get; set; } = Matrix4.Identity;

    /// <summary>The global transform of the bone's node when the bone was bound.</summary>
    public Matrix4 BoneTransform { get; set; } = Matrix4.Identity;

    /// <summary>The node that moves the bone.</summary>
    public Node? Node { get; set; }

    /// <summary>The weight on a control point, as <see cref="SetWeight"/> stores it.</summary>
    /// <param name="index">The index of the control point.</param>
    /// <exception cref="ArgumentOutOfRangeException">
    /// The index is negative or, when reading, not below <see cref="WeightCount"/>.
    /// </exception>
    public double this[int index]
    {
        get => _weights[index];
        set => SetWeight(index, value);
    }

    /// <summary>Gives the weight on a control point; 0 where none was set.</summary>
    /// <param name="index">The index of the control point.</param>
    public double GetWeight(int index)
    {
        ArgumentOutOfRangeException.ThrowIfNegative(index);
        return index < _weights.Count ? _weights[index] : 0;
    }

    /// <summary>Sets the weight on a control point; the points before it that had none get 0.</summary>
    /// <param name="index">The index of the control point.</param>
    /// <param name="weight">The weight, usually from 0 to 1.</param>
    public void SetWeight(int index, double weight)
    {
        ArgumentOutOfRangeException.ThrowIfNegative(index);
        ArgumentOutOfRangeException.ThrowIfEqual(index, int.MaxValue);
        while (_weights.Count <= index)
        {
            _weights.Add(0);
        }
        _weights[index] = weight;
    }
}
