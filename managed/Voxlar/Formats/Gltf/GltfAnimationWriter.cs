using System;
using System.Collections.Generic;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Animation;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Writes animation clips: translation, rotation, Euler angles and scale of transforms, and weights of morph
/// channels; glTF animates nothing else. Keys are kept where all components have the same key times and one
/// interpolation that glTF has. Everything else is sampled, at the keys and thirty times a second between
/// them, and told as linear keys.
/// </summary>
internal sealed class GltfAnimationWriter
{
    private const double SamplesPerSecond = 30;
    private const int MaximumSamples = 1 << 20;

    private readonly GltfDocument _document;
    private readonly IReadOnlyDictionary<Transform, int> _nodeOfTransform;
    private readonly IReadOnlyDictionary<MorphTargetChannel, GltfMorphPlace> _placeOfMorph;
    private readonly bool _saveExtras;

    internal GltfAnimationWriter(GltfDocument document, IReadOnlyDictionary<Transform, int> nodeOfTransform,
        IReadOnlyDictionary<MorphTargetChannel, GltfMorphPlace> placeOfMorph,
            bool saveExtras)
    {
        _document = document;
        _nodeOfTransform = nodeOfTransform;
        _placeOfMorph = placeOfMorph;
        _saveExtras = saveExtras;
    }

    /// <summary>One component of what is animated: a sequence, or the value it keeps without one.</summary>
    private readonly record struct Curve(KeyframeSequence? Sequence, double Constant, double Scale = 1)
    {
        internal IList<KeyFrame>? Keys => Sequence is { KeyFrames.Count: > 0 } ? Sequence.KeyFrames : null;

        internal double At(double time) => Scale * (Keys is null ? Constant : Sequence!.Evaluate(time));
    }

    private readonly record struct Sampled(float[] Times, float[] Values, string Interpolation);

    internal void Write(AnimationClip clip)
    {
        var json = new JsonObject();
        if (clip.Name.Length > 0)
            json["name"] = clip.Name;
        var channels = new JsonArray();
        var samplers = new JsonArray();
        var animated = new HashSet<(int Node, string Path)>();
        var weights = new Dictionary<int, Curve[]>();
        foreach (BindPoint point in AllBindPoints(clip))
        {
            if (point.Property.Owner is Transform transform
                && _nodeOfTransform.TryGetValue(transform, out int node))
                WriteTransform(point, transform, node);
            else if (point.Property.Owner is MorphTargetChannel morph
                && _placeOfMorph.TryGetValue(morph, out GltfMorphPlace? place))
                CollectWeight(point, place);
        }
        foreach ((int node, Curve[] curves) in weights)
            Add(node, "weights", Sample(curves, curves.Length, null));
        if (channels.Count == 0)
            return;
        json["channels"] = channels;
        json["samplers"] = samplers;
        if (_saveExtras)
            GltfExtras.Write(json, clip);
        GltfExtensionData.Write(_document, json, clip);
        _document.Add("animations", json);

        void WriteTransform(BindPoint point, Transform transform, int node)
        {
            switch (point.Property.Name)
            {
                case nameof(Transform.Translation):
                    Add(node, "translation", Sample(Curves(point, 3), 3, null));
                    break;
                case nameof(Transform.Scale):
                    Add(node, "scale", Sample(Curves(point, 3), 3, null));
                    break;
                case nameof(Transform.Rotation):
                    Add(node, "rotation", Sample(Curves(point, 4), 4, RotationOf(transform, false)));
                    break;
                case nameof(Transform.EulerAngles):
                    Add(node, "rotation", Sample(Curves(point, 3), 4, RotationOf(transform, true)));
                    break;
            }
        }

        void CollectWeight(BindPoint point, GltfMorphPlace place)
        {
            Curve curve = Curves(point, 1)[0] with { Scale = place.Scale };
            foreach (int node in place.Nodes)
            {
                if (!weights.TryGetValue(node, out Curve[]? all))
                    weights[node] = all =
                        Array.ConvertAll(place.Defaults, static weight => new Curve(null, weight));
                all[place.Index] = curve;
            }
        }

        void Add(int node, string path, Sampled? sampled)
        {
            if (sampled is not { } data || !animated.Add((node, path)))
                return;
            int components = path switch { "rotation" => 4, "weights" => 1, _ => 3 };
            samplers.Add((JsonNode)new JsonObject
            {
                ["input"] = _document.AddNumbers(data.Times, 1, true),
                ["interpolation"] = data.Interpolation,
                ["output"] = _document.AddNumbers(data.Values, components, false),
            });
            channels.Add((JsonNode)new JsonObject
            {
                ["sampler"] = samplers.Count - 1,
                ["target"] = new JsonObject { ["node"] = node, ["path"] = path },
            });
        }
    }

    private static IEnumerable<BindPoint> AllBindPoints(AnimationClip clip)
    {
        var open = new Stack<AnimationNode>();
        for (int i = clip.Animations.Count - 1; i >= 0; i--)
            open.Push(clip.Animations[i]);
        var seen = new HashSet<AnimationNode>(ReferenceEqualityComparer.Instance);
        while (open.TryPop(out AnimationNode? node))
        {
            if (!seen.Add(node))
                continue;
            foreach (BindPoint point in node.BindPoints)
                yield return point;
            for (int i = node.SubAnimations.Count - 1; i >= 0; i--)
                open.Push(node.SubAnimations[i]);
        }
    }

    private static Curve[] Curves(BindPoint point, int count)
    {
        var curves = new Curve[count];
        for (int i = 0; i < count; i++)
        {
            AnimationChannel? channel = i < point.ChannelsCount ? point.Channels[i] : null;
            KeyframeSequence? sequence = channel is { KeyframeSequences.Count: > 0 }
                ? channel.KeyframeSequences[0] : null;
            double otherwise = channel?.DefaultValue is IConvertible value
                ? value.ToDouble(System.Globalization.CultureInfo.InvariantCulture) : 0;
            curves[i] = new Curve(sequence, otherwise);
        }
        return curves;
    }

    /// <summary>
    /// Makes the rotation of the node out of the animated part and the fixed rotations around it.
    /// </summary>
    private static Func<double[], Quaternion>? RotationOf(Transform transform, bool isEuler)
    {
        bool isPlain = transform.PreRotation == Vector3.Origin && transform.PostRotation == Vector3.Origin;
        if (isPlain && !isEuler)
            return null;
        Quaternion before = FromDegrees(transform.PostRotation).Conjugate();
        Quaternion after = FromDegrees(transform.PreRotation);
        return values =>
        {
            Quaternion rotation = isEuler ? FromDegrees(new Vector3(values[0], values[1], values[2]))
                : new Quaternion(values[3], values[0], values[1], values[2]);
            return before.Concat(rotation).Concat(after);
        };
    }

    private static Quaternion FromDegrees(Vector3 angles) =>
        Quaternion.FromEulerAngle(MathUtils.ToRadian(angles));

    private static Sampled? Sample(Curve[] curves, int components, Func<double[], Quaternion>? toRotation)
    {
        IList<KeyFrame>? first = null;
        foreach (Curve curve in curves)
            first ??= curve.Keys;
        if (first is null)
            return null;
        Interpolation? common = CommonInterpolation(curves, first);
        if (toRotation is null && common is Interpolation known)
        {
            bool isTooShort = known == Interpolation.Bezier && first.Count < 2;
            return Direct(curves, first, isTooShort ? Interpolation.Linear : known);
        }
        bool isStep = common == Interpolation.Constant;
        float[] times = isStep ? Array.ConvertAll([.. first], static key => (float)key.Time)
            : SampleTimes(curves, toRotation is null);
        var values = new float[times.Length * components];
        var at = new double[curves.Length];
        Quaternion previous = Quaternion.Identity;
        for (int i = 0; i < times.Length; i++)
        {
            for (int k = 0; k < curves.Length; k++)
                at[k] = curves[k].At(isStep ? first[i].Time : times[i]);
            if (toRotation is null)
            {
                for (int k = 0; k < components; k++)
                    values[i * components + k] = (float)at[k];
                continue;
            }
            Quaternion rotation = toRotation(at).Normalize();
            // Of the two quaternions for one rotation the one near the last key is taken, so that the way
            // between is short.
            if (i > 0 && rotation.Dot(previous) < 0)
                rotation = new Quaternion(-rotation.w, -rotation.x, -rotation.y, -rotation.z);
            previous = rotation;
            values[i * 4] = (float)rotation.x;
            values[i * 4 + 1] = (float)rotation.y;
            values[i * 4 + 2] = (float)rotation.z;
            values[i * 4 + 3] = (float)rotation.w;
        }
        return new Sampled(times, values, isStep ? "STEP" : "LINEAR");
    }

    /// <summary>
    /// The interpolation of all keys of all curves when they have one, glTF has it too and the times are the
    /// same.
    /// </summary>
    private static Interpolation? CommonInterpolation(Curve[] curves, IList<KeyFrame> first)
    {
        Interpolation interpolation = first[0].Interpolation;
        if (interpolation is not (Interpolation.Linear or Interpolation.Constant or Interpolation.Bezier))
            return null;
        foreach (Curve curve in curves)
        {
            if (curve.Keys is not IList<KeyFrame> keys || keys.Count != first.Count)
                return null;
            for (int i = 0; i < keys.Count; i++)
            {
                KeyFrame key = keys[i];
                bool hasWeights = key.TangentWeightMode != WeightedMode.None;
                bool fits = key.Interpolation == interpolation && key.Time == first[i].Time
                    && (i == 0 || (float)key.Time > (float)keys[i - 1].Time)
                    && !(interpolation == Interpolation.Bezier && hasWeights)
                    && !(interpolation == Interpolation.Constant && key.StepMode == StepMode.NextValue);
                if (!fits)
                    return null;
            }
        }
        return interpolation;
    }

    private static Sampled Direct(Curve[] curves, IList<KeyFrame> first, Interpolation interpolation)
    {
        int components = curves.Length;
        bool cubic = interpolation == Interpolation.Bezier;
        int stride = cubic ? components * 3 : components;
        var times = new float[first.Count];
        var values = new float[first.Count * stride];
        for (int i = 0; i < times.Length; i++)
            times[i] = (float)first[i].Time;
        for (int k = 0; k < components; k++)
        {
            IList<KeyFrame> keys = curves[k].Keys!;
            double scale = curves[k].Scale;
            for (int i = 0; i < keys.Count; i++)
            {
                int at = i * stride + k;
                if (!cubic)
                {
                    values[at] = (float)(scale * keys[i].Value);
                    continue;
                }
                values[at + components] = (float)(scale * keys[i].Value);
                if (i + 1 < keys.Count)
                {
                    KeyFrame key = keys[i];
                    KeyFrame next = keys[i + 1];
                    double chord = (next.Value - (double)key.Value) / (next.Time - key.Time);
                    double leaving = key.Flat ? 0 : Slope(key.OutTangent, chord);
                    double arriving = next.Flat ? 0 : Slope(key.NextInTangent, chord);
                    values[at + 2 * components] = (float)(scale * leaving);
                    values[at + stride] = (float)(scale * arriving);
                }
                else
                {
                    // Nothing follows the last key; its tangent is kept for those who read it.
                    values[at + 2 * components] = (float)(scale * Slope(keys[i].OutTangent, 0));
                }
            }
        }
        string told = cubic ? "CUBICSPLINE" : interpolation == Interpolation.Constant ? "STEP" : "LINEAR";
        return new Sampled(times, values, told);
    }

    private static double Slope(Vector2 tangent, double otherwise) =>
        tangent.x == 0 ? otherwise : tangent.y / tangent.x;

    private static float[] SampleTimes(Curve[] curves, bool linearIsExact)
    {
        var times = new SortedSet<float>();
        bool isLinear = linearIsExact;
        foreach (Curve curve in curves)
        {
            if (curve.Keys is not IList<KeyFrame> keys)
                continue;
            for (int i = 0; i < keys.Count; i++)
            {
                var time = (float)keys[i].Time;
                times.Add(time);
                isLinear &= keys[i].Interpolation == Interpolation.Linear || i == keys.Count - 1;
                // A step is told by a second key just before it.
                if (i > 0 && keys[i - 1].Interpolation == Interpolation.Constant)
                    times.Add(MathF.BitDecrement(time));
            }
        }
        if (isLinear || times.Count < 2)
            return [.. times];
        double start = times.Min;
        double stop = times.Max;
        double step = Math.Max(1 / SamplesPerSecond, (stop - start) / MaximumSamples);
        for (double time = start + step; time < stop; time += step)
            times.Add((float)time);
        return [.. times];
    }
}

/// <summary>
/// Where a morph channel stands in the document: the nodes that show it, and its number among their weights.
/// </summary>
/// <param name="Nodes">The indices of the nodes.</param>
/// <param name="Index">The number of the channel.</param>
/// <param name="Defaults">The weights of all channels of the mesh without animation, as the document tells
/// them.</param>
/// <param name="Scale">The factor from the weight of the channel to the weight in the document.</param>
internal sealed record GltfMorphPlace(List<int> Nodes, int Index, double[] Defaults, double Scale);
