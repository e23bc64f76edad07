using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Animation;

/// <summary>The animated properties of an object, and further animations below.</summary>
public class AnimationNode : VbrObject
{
    /// <summary>Makes an animation node.</summary>
    /// <param name="name">Its name.</param>
    public AnimationNode(string name)
        : base(name)
    {
    }

    /// <summary>Makes an animation node without a name.</summary>
    public AnimationNode()
        : this("")
    {
    }

    /// <summary>The bind points, one for each animated property.</summary>
    public IList<BindPoint> BindPoints { get; } = new List<BindPoint>();

    /// <summary>The animations below this one.</summary>
    public IList<AnimationNode> SubAnimations { get; } = new List<AnimationNode>();

    /// <summary>Gives the first keyframe sequence of a channel.</summary>
    /// <param name="target">The object whose property is animated.</param>
    /// <param name="propName">The name of the property.</param>
    /// <param name="channelName">The name of the channel.</param>
    /// <param name="create">
    /// Whether what is missing is made: the bind point, the channel and the sequence.
    /// </param>
    /// <returns>The sequence, or null when there is none and none is made.</returns>
    /// <exception cref="ArgumentException">
    /// A bind point is to be made, but the object has no such property.
    /// </exception>
    public KeyframeSequence? GetKeyframeSequence(VbrObject target, string propName, string channelName,
        bool create)
    {
        ArgumentNullException.ThrowIfNull(channelName);
        BindPoint? point = GetBindPoint(target, propName, create);
        if (point is null)
        {
            return null;
        }
        KeyframeSequence? found = point.GetKeyframeSequence(channelName);
        if (found is null && create)
        {
            if (point.GetChannel(channelName) is null)
            {
                point.AddChannel(channelName, typeof(double), 0.0);
            }
            found = point.CreateKeyframeSequence(channelName);
        }
        return found;
    }

    /// <summary>Gives the first keyframe sequence of the first channel of a property.</summary>
    /// <param name="target">The object whose property is animated.</param>
    /// <param name="propName">The name of the property.</param>
    /// <param name="create">Whether what is missing is made.</param>
    /// <returns>The sequence, or null when there is none and none is made.</returns>
    /// <exception cref="ArgumentException">
    /// A bind point is to be made, but the object has no such property.
    /// </exception>
    public KeyframeSequence? GetKeyframeSequence(VbrObject target, string propName, bool create)
    {
        BindPoint? point = GetBindPoint(target, propName, create);
        if (point is null)
        {
            return null;
        }
        AnimationChannel? channel = point.FirstChannel;
        if (channel is { KeyframeSequences.Count: > 0 })
        {
            return channel.KeyframeSequences[0];
        }
        return create ? point.CreateKeyframeSequence(channel?.Name ?? propName) : null;
    }

    /// <summary>Finds a bind point by its name, the name of its property.</summary>
    /// <param name="name">The name.</param>
    /// <returns>The first such bind point, or null.</returns>
    public BindPoint? FindBindPoint(string name)
    {
        foreach (BindPoint point in BindPoints)
        {
            if (point.Name == name)
            {
                return point;
            }
        }
        return null;
    }

    /// <summary>Gives the bind point of a property.</summary>
    /// <param name="target">The object whose property is animated.</param>
    /// <param name="propName">The name of the property.</param>
    /// <param name="create">Whether a missing one is made.</param>
    /// <returns>The bind point, or null when there is none and none is made.</returns>
    /// <exception cref="ArgumentException">
    /// A bind point is to be made, but the object has no such property.
    /// </exception>
    public BindPoint? GetBindPoint(VbrObject target, string propName, bool create)
    {
        ArgumentNullException.ThrowIfNull(target);
        ArgumentNullException.ThrowIfNull(propName);
        Property? property = target.FindProperty(propName);
        foreach (BindPoint point in BindPoints)
        {
            bool same = point.Target is null
                ? ReferenceEquals(point.Property, property)
                : ReferenceEquals(point.Target, target) && point.Property.Name == propName;
            if (same)
            {
                return point;
            }
        }
        return create ? CreateBindPoint(target, propName) : null;
    }

    /// <summary>Makes a bind point for a property and adds it to <see cref="BindPoints"/>.</summary>
    /// <param name="obj">The object whose property is to be animated.</param>
    /// <param name="propName">The name of the property.</param>
    /// <exception cref="ArgumentException">The object has no such property.</exception>
    public BindPoint CreateBindPoint(VbrObject obj, string propName)
    {
        ArgumentNullException.ThrowIfNull(obj);
        ArgumentNullException.ThrowIfNull(propName);
        Property property = obj.FindProperty(propName)
            ?? throw new ArgumentException($"The object has no property '{propName}'.", nameof(propName));
        BindPoint point = new((obj as SceneObject)?.Scene, property) { Target = obj };
        BindPoints.Add(point);
        return point;
    }
}
