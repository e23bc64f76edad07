using System;
using System.Linq;
using Velbor.Voxlar.Animation;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Animation;

public class AnimationTests
{
    private static KeyframeSequence Sequence(Interpolation interpolation,
        params (double Time, float Value)[] keys)
    {
        KeyframeSequence sequence = new("s");
        foreach ((double time, float value) in keys)
            sequence.Add(time, value, interpolation);
        return sequence;
    }

    [Fact]
    public void KeysStandInOrderOfTime()
    {
        KeyframeSequence sequence = Sequence(Interpolation.Linear, (2, 20), (0, 5), (1, 10), (2, 30));
        Assert.Equal([0.0, 1, 2], sequence.Select(k => k.Time));
        Assert.Equal(30, sequence.KeyFrames[2].Value);
        Assert.Throws<ArgumentException>(() => sequence.Add(double.NaN, 1));
        sequence.PostBehavior.Type = ExtrapolationType.Cycle;
        sequence.Reset();
        Assert.Empty(sequence.KeyFrames);
        Assert.Equal(ExtrapolationType.Constant, sequence.PostBehavior.Type);
        Assert.Throws<InvalidOperationException>(() => sequence.Evaluate(0));
    }

    [Fact]
    public void AKeyMadeAloneIsInNoSequence()
    {
        KeyframeSequence sequence = new();
        KeyFrame key = new(sequence, 1.5) { Value = 3 };
        Assert.Empty(sequence.KeyFrames);
        sequence.KeyFrames.Add(key);
        Close.To(3, sequence.Evaluate(0));
    }

    [Fact]
    public void LinearAndConstantSegments()
    {
        KeyframeSequence linear = Sequence(Interpolation.Linear, (0, 0), (2, 10), (4, -10));
        Close.To(5, linear.Evaluate(1));
        Close.To(10, linear.Evaluate(2));
        Close.To(0, linear.Evaluate(3));
        Close.To(0, linear.Evaluate(-5));
        Close.To(-10, linear.Evaluate(9));

        KeyframeSequence steps = Sequence(Interpolation.Constant, (0, 1), (1, 2), (2, 3));
        Close.To(1, steps.Evaluate(0.999));
        Close.To(2, steps.Evaluate(1));
        steps.KeyFrames[1].StepMode = StepMode.NextValue;
        Close.To(3, steps.Evaluate(1.001));
        Close.To(2, steps.Evaluate(1));
    }

    [Fact]
    public void BezierSegments()
    {
        KeyframeSequence sequence = Sequence(Interpolation.Bezier, (0, 0), (1, 1));
        Close.To(0.3, sequence.Evaluate(0.3), 1e-9);
        sequence.KeyFrames[0].Flat = true;
        sequence.KeyFrames[1].Flat = true;
        // With level tangents and weights of a third it is the smooth step.
        foreach (double t in new[] { 0.1, 0.25, 0.5, 0.8 })
            Close.To(3 * t * t - 2 * t * t * t, sequence.Evaluate(t), 1e-9);

        sequence.KeyFrames[0].Flat = false;
        sequence.KeyFrames[0].OutTangent = new Vector2(0.5, 1);
        double slope = (sequence.Evaluate(1e-4) - sequence.Evaluate(0)) / 1e-4;
        Close.To(2, slope, 1e-2);
        double third = sequence.Evaluate(0.2);
        sequence.KeyFrames[0].TangentWeightMode = WeightedMode.OutWeight;
        sequence.KeyFrames[0].OutWeight = 0.9f;
        Assert.True(sequence.Evaluate(0.2) > third);
    }

    [Fact]
    public void SplinesPassThroughTheirKeys()
    {
        foreach (Interpolation kind in new[] { Interpolation.CardinalSpline, Interpolation.TcbSpline })
        {
            KeyframeSequence sequence = Sequence(kind, (0, 0), (1, 1), (3, 9), (4, 16));
            foreach (KeyFrame key in sequence)
                Close.To(key.Value, sequence.Evaluate(key.Time));
            // Values in proportion to time stay so, even with uneven steps.
            KeyframeSequence line = Sequence(kind, (0, 0), (1, 1), (3, 3), (4, 4));
            Close.To(2.2, line.Evaluate(2.2));
            // The slope does not jump at a key.
            double before = (sequence.Evaluate(1) - sequence.Evaluate(1 - 1e-6)) / 1e-6;
            double after = (sequence.Evaluate(1 + 1e-6) - sequence.Evaluate(1)) / 1e-6;
            Close.To(before, after, 1e-3);
        }
        KeyframeSequence tense = Sequence(Interpolation.TcbSpline, (0, 0), (1, 1), (2, 0));
        tense.KeyFrames[0].Tension = tense.KeyFrames[1].Tension = 1;
        Close.To(0.5, tense.Evaluate(0.5));
        Close.To(3 * 0.04 - 2 * 0.008, tense.Evaluate(0.2));

        KeyframeSequence uniform = Sequence(Interpolation.BSpline, (0, 3), (1, 3), (2, 3));
        Close.To(3, uniform.Evaluate(1.3));
        KeyframeSequence bump = Sequence(Interpolation.BSpline, (0, 0), (1, 6), (2, 0));
        Close.To(4, bump.Evaluate(1));
    }

    [Fact]
    public void Extrapolation()
    {
        KeyframeSequence sequence = Sequence(Interpolation.Linear, (1, 0), (3, 4));
        sequence.PostBehavior.Type = ExtrapolationType.Gradient;
        sequence.PreBehavior.Type = ExtrapolationType.Gradient;
        Close.To(8, sequence.Evaluate(5), 1e-6);
        Close.To(-2, sequence.Evaluate(0), 1e-6);

        sequence.PostBehavior.Type = sequence.PreBehavior.Type = ExtrapolationType.Cycle;
        Close.To(1, sequence.Evaluate(3.5));
        Close.To(3, sequence.Evaluate(0.5));
        sequence.PostBehavior.Type = sequence.PreBehavior.Type = ExtrapolationType.CycleRelative;
        Close.To(5, sequence.Evaluate(3.5));
        Close.To(-1, sequence.Evaluate(0.5));
        sequence.PostBehavior.Type = sequence.PreBehavior.Type = ExtrapolationType.Oscillate;
        Close.To(3, sequence.Evaluate(3.5));
        Close.To(1, sequence.Evaluate(0.5));
        Close.To(1, sequence.Evaluate(5.5));

        sequence.PostBehavior.Type = ExtrapolationType.CycleRelative;
        sequence.PostBehavior.RepeatCount = 1;
        Close.To(7, sequence.Evaluate(4.5));
        Close.To(8, sequence.Evaluate(100));
    }

    [Fact]
    public void BindPointsHaveAChannelForEachComponent()
    {
        Scene scene = new();
        Node node = scene.RootNode.CreateChildNode("n");
        Property translation = node.Transform.FindProperty("Translation")!;
        BindPoint point = new(scene, translation);
        Assert.Same(translation, point.Property);
        Assert.Equal("Translation", point.Name);
        Assert.Equal(3, point.ChannelsCount);
        AnimationChannel y = point.GetChannel("Y")!;
        Assert.Equal(typeof(double), y.ComponentType);
        Assert.Equal(0.0, y.DefaultValue);
        Assert.Null(point.GetChannel("W"));

        Assert.False(point.AddChannel("X", 1.0));
        Assert.True(point.AddChannel("Extra", 5));
        Assert.Equal(typeof(int), point.GetChannel("Extra")!.ComponentType);
        Assert.True(point.AddChannel("Typed", typeof(string), null));

        KeyframeSequence sequence = new("seq");
        Assert.Throws<ArgumentException>(() => point.BindKeyframeSequence("none", sequence));
        point.BindKeyframeSequence("Y", sequence);
        point.BindKeyframeSequence("Y", sequence);
        Assert.Same(point, sequence.BindPoint);
        Assert.Same(sequence, Assert.Single(y));
        Assert.Same(sequence, point.GetKeyframeSequence("Y"));
        Assert.Null(point.GetKeyframeSequence("X"));
        Assert.Null(point.GetKeyframeSequences("none"));
        Assert.Same(point.GetChannel("Z"), point.GetChannel("Z"));
        KeyframeSequence made = point.CreateKeyframeSequence("Z");
        Assert.Same(made, point.GetKeyframeSequence("Z"));
        KeyframeSequence other = point.CreateKeyframeSequence("whatever");
        Assert.Same(other, point.GetKeyframeSequence("X"));

        point.ResetChannels();
        Assert.Equal(3, point.ChannelsCount);
        Assert.Null(sequence.BindPoint);
        Assert.Null(point.GetKeyframeSequence("Y"));
    }

    [Fact]
    public void AnimationNodesMakeWhatIsMissing()
    {
        Scene scene = new();
        Node node = scene.RootNode.CreateChildNode("n");
        AnimationClip clip = scene.CreateAnimationClip("walk");
        AnimationNode animation = clip.CreateAnimationNode("a");
        Assert.Same(animation, Assert.Single(clip.Animations));

        Assert.Null(animation.GetBindPoint(node.Transform, "Translation", false));
        Assert.Null(animation.GetKeyframeSequence(node.Transform, "Translation", "X", false));
        KeyframeSequence x = animation.GetKeyframeSequence(node.Transform, "Translation", "X", true)!;
        Assert.Same(x, animation.GetKeyframeSequence(node.Transform, "Translation", "X", false));
        Assert.Same(x, animation.GetKeyframeSequence(node.Transform, "Translation", false));
        BindPoint point = animation.FindBindPoint("Translation")!;
        Assert.Same(point, animation.GetBindPoint(node.Transform, "Translation", true));
        Assert.Same(point, Assert.Single(animation.BindPoints));
        Assert.Null(animation.GetBindPoint(scene.RootNode.Transform, "Translation", false));
        Assert.Throws<ArgumentException>(() => animation.CreateBindPoint(node, "NoSuchProperty"));
        KeyframeSequence single = animation.GetKeyframeSequence(node, "Visible", true)!;
        Assert.Same(single, animation.GetKeyframeSequence(node, "Visible", "Visible", false));
    }
}
