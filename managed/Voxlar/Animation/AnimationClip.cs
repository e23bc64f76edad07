using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Animation;

/// <summary>A piece of animation with a begin and an end.</summary>
public class AnimationClip : SceneObject
{
    /// <summary>Makes a clip without a name.</summary>
    public AnimationClip()
        : this("")
    {
    }

    /// <summary>Makes a clip.</summary>
    /// <param name="name">Its name.</param>
    public AnimationClip(string name)
        : base(name)
    {
    }

    /// <summary>The animation nodes of the clip.</summary>
    public IList<AnimationNode> Animations { get; } = new List<AnimationNode>();

    /// <summary>What the clip shows, in words.</summary>
    public string? Description { get; set; }

    /// <summary>The time at which the clip begins, in seconds.</summary>
    public double Start { get; set; }

    /// <summary>The time at which the clip ends, in seconds.</summary>
    public double Stop { get; set; }

    /// <summary>Makes an animation node and adds it to <see cref="Animations"/>.</summary>
    /// <param name="nodeName">The name of the new node.</param>
    public AnimationNode CreateAnimationNode(string nodeName)
    {
        ArgumentNullException.ThrowIfNull(nodeName);
        AnimationNode node = new(nodeName);
        Animations.Add(node);
        return node;
    }
}
