using System;
using System.Collections.Generic;
using System.Collections.ObjectModel;
using Velbor.Voxlar.Entities;

namespace Velbor.Voxlar.Deformers;

/// <summary>
/// Target shapes that one weight blends through: each target has the weight at which it is reached in full.
/// </summary>
public class MorphTargetChannel : VbrObject
{
    /// <summary>The weight a target has when none was set.</summary>
    public static readonly double DefaultWeight = 1.0;

    private readonly WeightList _weights = new();
    private readonly TargetList _targets;

    /// <summary>Makes a channel.</summary>
    /// <param name="name">Its name.</param>
    public MorphTargetChannel(string name)
        : base(name)
    {
        _targets = new TargetList(_weights);
    }

    /// <summary>Makes a channel without a name.</summary>
    public MorphTargetChannel()
        : this("")
    {
    }

    /// <summary>
    /// The weights of the targets, one for each entry of <see cref="Targets"/>. They can be replaced, but
    /// come and go with the targets alone: adding or removing one here throws <see
    /// cref="NotSupportedException"/>.
    /// </summary>
    public IList<double> Weights => _weights;

    /// <summary>The weight of the channel, which says how far the blend has gone.</summary>
    public double ChannelWeight { get; set; }

    /// <summary>The target shapes. A new one gets <see cref="DefaultWeight"/>.</summary>
    public IList<Shape> Targets => _targets;

    /// <summary>Gives the weight of a target.</summary>
    /// <param name="target">A shape among <see cref="Targets"/>.</param>
    /// <exception cref="ArgumentException">The shape is no target of this channel.</exception>
    public double GetWeight(Shape target) => _weights[IndexOf(target)];

    /// <summary>Sets the weight of a target.</summary>
    /// <param name="target">A shape among <see cref="Targets"/>.</param>
    /// <param name="weight">The weight at which the target is reached in full.</param>
    /// <exception cref="ArgumentException">The shape is no target of this channel.</exception>
    public void SetWeight(Shape target, double weight) => _weights[IndexOf(target)] = weight;

    private int IndexOf(Shape target)
    {
        ArgumentNullException.ThrowIfNull(target);
        int at = _targets.IndexOf(target);
        return at >= 0
            ? at
            : throw new ArgumentException("The shape is no target of this channel.", nameof(target));
    }

    private sealed class WeightList : Collection<double>
    {
        // The list of targets alone changes the number of weights; it works on the items below the
        // collection's guards.
        public IList<double> Raw => Items;

        protected override void InsertItem(int index, double item) => throw Fixed();

        protected override void RemoveItem(int index) => throw Fixed();

        protected override void ClearItems() => throw Fixed();

        private static NotSupportedException Fixed() =>
            new("Weights come and go with the targets of the channel.");
    }

    private sealed class TargetList(WeightList weights) : Collection<Shape>
    {
        protected override void InsertItem(int index, Shape item)
        {
            ArgumentNullException.ThrowIfNull(item);
            base.InsertItem(index, item);
            weights.Raw.Insert(index, DefaultWeight);
        }

        protected override void SetItem(int index, Shape item)
        {
            ArgumentNullException.ThrowIfNull(item);
            base.SetItem(index, item);
        }

        protected override void RemoveItem(int index)
        {
            base.RemoveItem(index);
            weights.Raw.RemoveAt(index);
        }

        protected override void ClearItems()
        {
            base.ClearItems();
            weights.Raw.Clear();
        }
    }
}
