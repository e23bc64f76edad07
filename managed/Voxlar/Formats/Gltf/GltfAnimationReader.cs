using System;
using System.Collections.Generic;
using Velbor.Voxlar.Animation;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Makes an animation clip of each animation, with one animation node for each node that it moves.
/// Translation, rotation and scale drive the properties of those names of the node's transform; weights drive
/// the channel weights of the morph targets on the node. Cubic splines become Bezier keys, steps constant
/// ones.
/// </summary>
internal sealed class GltfAnimationReader
{
    private static readonly string[] ComponentNames = ["X", "Y", "Z", "W"];

    private readonly GltfJson[] _animations;
    private readonly GltfAccessors _accessors;
    private readonly Node[] _nodes;
    private readonly Func<int, List<MorphTargetChannel[]>> _morphsOf;

    /// <param name="root">The document.</param>
    /// <param name="accessors">Its data.</param>
    /// <param name="nodes">The nodes by index.</param>
    /// <param name="morphsOf">For the index of a node, the morph channels of each of its entities.</param>
    internal GltfAnimationReader(GltfJson root, GltfAccessors accessors, Node[] nodes,
        Func<int, List<MorphTargetChannel[]>> morphsOf)
    {
        _animations = root.Objects("animations");
        _accessors = accessors;
        _nodes = nodes;
        _morphsOf = morphsOf;
    }

    private readonly record struct Sampler(GltfPlace Place, float[] Times, float[] Values,
        Interpolation Interpolation)
    {
        internal int ValuesPerKey => Interpolation == Interpolation.Bezier ? 3 : 1;
    }

    internal void ReadInto(Scene scene)
    {
        foreach (GltfJson json in _animations)
        {
            AnimationClip clip = scene.CreateAnimationClip(json.StringOrNull("name") ?? string.Empty);
            Read(json, clip);
            GltfExtras.Read(json, clip);
            GltfExtensionData.Read(json, clip);
        }
    }

    private void Read(GltfJson json, AnimationClip clip)
    {
        GltfJson[] samplers = json.Objects("samplers");
        var read = new Sampler?[samplers.Length];
        var animationNodes = new Dictionary<int, AnimationNode>();
        double start = double.PositiveInfinity;
        double stop = double.NegativeInfinity;
        foreach (GltfJson channel in json.Objects("channels"))
        {
            channel.Require("sampler");
            int index = channel.Index("sampler", samplers.Length, "sampler");
            if (!channel.TryGetObject("target", out GltfJson target))
                throw channel.Place.Fault("the member \"target\" is missing");
            int node = target.Index("node", _nodes.Length, "node");
            string path = target.Require("path").AsString();
            // A channel without a node says nothing, unless an extension tells its target.
            if (node < 0)
                continue;
            Sampler sampler = read[index] ??= ReadSampler(samplers[index]);
            if (!animationNodes.TryGetValue(node, out AnimationNode? animation))
                animationNodes[node] = animation = clip.CreateAnimationNode(_nodes[node].Name);
            Bind(animation, node, path, target.Place, sampler);
            start = Math.Min(start, sampler.Times[0]);
            stop = Math.Max(stop, sampler.Times[^1]);
        }
        if (start <= stop)
        {
            clip.Start = start;
            clip.Stop = stop;
        }
    }

    private Sampler ReadSampler(GltfJson json)
    {
        json.Require("input");
        json.Require("output");
        int input = json.Index("input", _accessors.Count, "accessor");
        int output = json.Index("output", _accessors.Count, "accessor");
        string told = json.StringOrNull("interpolation") ?? "LINEAR";
        Interpolation interpolation = told switch
        {
            "LINEAR" => Interpolation.Linear,
            "STEP" => Interpolation.Constant,
            "CUBICSPLINE" => Interpolation.Bezier,
            _ => throw json.Place.Child("interpolation").Fault($"there is no interpolation \"{told}\""),
        };
        float[] times = _accessors.ReadFloats(input, 1, json.Place.Child("input"));
        for (int i = 1; i < times.Length; i++)
        {
            if (!(times[i] >= times[i - 1]))
                throw json.Place.Child("input").Fault($"key {i} is earlier than the key before it");
        }
        return new Sampler(json.Place, times, _accessors.ReadFloats(output), interpolation);
    }

    private void Bind(AnimationNode animation, int node, string path, GltfPlace place, Sampler sampler)
    {
        Transform transform = _nodes[node].Transform;
        switch (path)
        {
            case "translation":
                BindVector(animation, transform, nameof(Transform.Translation), 3, sampler);
                break;
            case "rotation":
                BindVector(animation, transform, nameof(Transform.Rotation), 4, sampler);
                break;
            case "scale":
                BindVector(animation, transform, nameof(Transform.Scale), 3, sampler);
                break;
            case "weights":
                BindWeights(animation, node, place, sampler);
                break;
            default:
                // "pointer" belongs to an extension that tells the target itself; others do not exist.
                if (path != "pointer")
                    throw place.Child("path").Fault($"there is no animated property \"{path}\"");
                break;
        }
    }

    private static void BindVector(AnimationNode animation, Transform transform, string property,
        int components, Sampler sampler)
    {
        RequireValues(sampler, components);
        BindPoint point = animation.GetBindPoint(transform, property, true)!;
        for (int component = 0; component < components; component++)
        {
            var sequence = new KeyframeSequence(ComponentNames[component]);
            Fill(sequence, sampler, components, component);
            point.BindKeyframeSequence(ComponentNames[component], sequence);
        }
    }

    private void BindWeights(AnimationNode animation, int node, GltfPlace place, Sampler sampler)
    {
        foreach (MorphTargetChannel[] channels in _morphsOf(node))
        {
            RequireValues(sampler, channels.Length);
            for (int target = 0; target < channels.Length; target++)
            {
                BindPoint point =
                    animation.GetBindPoint(channels[target], nameof(MorphTargetChannel.ChannelWeight), true)!;
                var sequence = new KeyframeSequence(nameof(MorphTargetChannel.ChannelWeight));
                Fill(sequence, sampler, channels.Length, target);
                point.BindKeyframeSequence(nameof(MorphTargetChannel.ChannelWeight), sequence);
            }
        }
    }

    private static void RequireValues(Sampler sampler, int components)
    {
        long expected = (long)sampler.Times.Length * sampler.ValuesPerKey * components;
        if (sampler.Values.Length != expected)
            throw sampler.Place.Child("output").Fault(
                $"{expected} numbers are expected for {sampler.Times.Length} keys, "
                + $"{sampler.Values.Length} are there");
    }

    private static void Fill(KeyframeSequence sequence, Sampler sampler, int components, int component)
    {
        int stride = sampler.ValuesPerKey * components;
        bool cubic = sampler.Interpolation == Interpolation.Bezier;
        for (int i = 0; i < sampler.Times.Length; i++)
        {
            int at = i * stride + component;
            var key = new KeyFrame(sequence, sampler.Times[i])
            {
                Value = sampler.Values[cubic ? at + components : at],
                Interpolation = sampler.Interpolation,
            };
            if (cubic)
            {
                // A slope, told as the change in one second; the tangent that arrives at the next key stands
                // with this one.
                key.OutTangent = new Vector2(1, sampler.Values[at + 2 * components]);
                if (i + 1 < sampler.Times.Length)
                    key.NextInTangent = new Vector2(1, sampler.Values[at + stride]);
            }
            sequence.KeyFrames.Add(key);
        }
    }
}
