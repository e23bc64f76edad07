using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Animation;

/// <summary>
/// The tie between a property and the keyframe sequences that drive it. A property has one channel for each
/// component: "X", "Y", "Z" and "W" as far as a vector or quaternion has them, and one channel of the
/// property's own name for a single value.
/// </summary>
public class BindPoint : VbrObject
{
    private readonly List<AnimationChannel> _channels = new();

    /// <summary>Makes a bind point with the channels of the property's type.</summary>
    /// <param name="scene">The scene the property is in; may be null.</param>
    /// <param name="prop">The property.</param>
    public BindPoint(Scene? scene, Property prop)
        : base(CheckedName(prop))
    {
        Scene = scene;
        Property = prop;
        ResetChannels();
    }

    /// <summary>The property that is driven.</summary>
    public Property Property { get; }

    /// <summary>The number of channels.</summary>
    public int ChannelsCount => _channels.Count;

    /// <summary>The scene the property is in, as given at construction.</summary>
    internal Scene? Scene { get; }

    /// <summary>
    /// The object that has the property; null when the bind point was made from the property alone.
    /// </summary>
    internal VbrObject? Target { get; init; }

    internal AnimationChannel? FirstChannel => _channels.Count > 0 ? _channels[0] : null;

    internal IReadOnlyList<AnimationChannel> Channels => _channels;

    /// <summary>Adds a channel for values of the type of a default value.</summary>
    /// <param name="name">The name of the channel.</param>
    /// <param name="value">The default value; null gives a channel of any type.</param>
    /// <returns>False when there is a channel of that name already; nothing is changed then.</returns>
    public bool AddChannel(string name, object? value) =>
        AddChannel(name, value?.GetType() ?? typeof(object), value);

    /// <summary>Adds a channel.</summary>
    /// <param name="name">The name of the channel.</param>
    /// <param name="type">The type of its values.</param>
    /// <param name="value">The default value.</param>
    /// <returns>False when there is a channel of that name already; nothing is changed then.</returns>
    public bool AddChannel(string name, Type type, object? value)
    {
        ArgumentNullException.ThrowIfNull(name);
        ArgumentNullException.ThrowIfNull(type);
        if (GetChannel(name) is not null)
        {
            return false;
        }
        _channels.Add(new AnimationChannel(this, name, type, value));
        return true;
    }

    /// <summary>Gives the first keyframe sequence of a channel.</summary>
    /// <param name="channelName">The name of the channel.</param>
    /// <returns>The sequence, or null when there is no such channel or it has none.</returns>
    public KeyframeSequence? GetKeyframeSequence(string channelName)
    {
        AnimationChannel? channel = GetChannel(channelName);
        return channel is { KeyframeSequences.Count: > 0 } ? channel.KeyframeSequences[0] : null;
    }

    /// <summary>Gives the keyframe sequences of a channel.</summary>
    /// <param name="channelName">The name of the channel.</param>
    /// <returns>The channel's own list, or null when there is no such channel.</returns>
    public IList<KeyframeSequence>? GetKeyframeSequences(string channelName) =>
        GetChannel(channelName)?.KeyframeSequences;

    /// <summary>
    /// Makes a keyframe sequence and binds it to the channel of the same name, or else to the first channel;
    /// a bind point without channels gets one of that name.
    /// </summary>
    /// <param name="name">The name of the sequence.</param>
    public KeyframeSequence CreateKeyframeSequence(string name)
    {
        ArgumentNullException.ThrowIfNull(name);
        AnimationChannel? channel = GetChannel(name) ?? FirstChannel;
        if (channel is null)
        {
            channel = new AnimationChannel(this, name, typeof(double), 0.0);
            _channels.Add(channel);
        }
        KeyframeSequence sequence = new(name);
        channel.AddKeyframeSequence(sequence);
        return sequence;
    }

    /// <summary>Binds a keyframe sequence to a channel.</summary>
    /// <param name="channelName">The name of the channel.</param>
    /// <param name="sequence">The sequence.</param>
    /// <exception cref="ArgumentException">There is no such channel.</exception>
    public void BindKeyframeSequence(string channelName, KeyframeSequence sequence)
    {
        AnimationChannel channel = GetChannel(channelName)
            ?? throw new ArgumentException($"There is no channel '{channelName}'.", nameof(channelName));
        channel.AddKeyframeSequence(sequence);
    }

    /// <summary>Finds a channel.</summary>
    /// <param name="channelName">The name of the channel.</param>
    /// <returns>The channel, or null.</returns>
    public AnimationChannel? GetChannel(string channelName)
    {
        ArgumentNullException.ThrowIfNull(channelName);
        return _channels.Find(channel => channel.Name == channelName);
    }

    /// <summary>Replaces all channels by empty ones for the components of the property's type.</summary>
    public void ResetChannels()
    {
        foreach (AnimationChannel channel in _channels)
        {
            channel.KeyframeSequences.Clear();
        }
        _channels.Clear();
        switch (Property.Value)
        {
            case Vector2 v:
                AddComponents(v.x, v.y);
                break;
            case FVector2 v:
                AddComponents(v.x, v.y);
                break;
            case Vector3 v:
                AddComponents(v.x, v.y, v.z);
                break;
            case FVector3 v:
                AddComponents(v.x, v.y, v.z);
                break;
            case Vector4 v:
                AddComponents(v.x, v.y, v.z, v.w);
                break;
            case FVector4 v:
                AddComponents(v.x, v.y, v.z, v.w);
                break;
            case Quaternion q:
                AddComponents(q.x, q.y, q.z, q.w);
                break;
            default:
                AddChannel(Property.Name ?? "", Property.ValueType ?? typeof(object), Property.Value);
                break;
        }
    }

    private static string CheckedName(Property prop)
    {
        ArgumentNullException.ThrowIfNull(prop);
        return prop.Name ?? "";
    }

    private void AddComponents(params ReadOnlySpan<double> values)
    {
        const string Names = "XYZW";
        for (int i = 0; i < values.Length; ++i)
        {
            AddChannel(Names.Substring(i, 1), typeof(double), values[i]);
        }
    }
}
