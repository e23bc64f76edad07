using System;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Deformers;

public class DeformerTests
{
    [Fact]
    public void BonesHaveWeights()
    {
        Bone bone = new("b");
        Assert.Equal(0, bone.WeightCount);
        Assert.Equal(Matrix4.Identity, bone.BoneTransform);
        bone.SetWeight(2, 0.5);
        bone[0] = 0.25;
        Assert.Equal(3, bone.WeightCount);
        Assert.Equal((0.25, 0.0, 0.5), (bone[0], bone[1], bone.GetWeight(2)));
        Assert.Equal(0, bone.GetWeight(99));
        Assert.Throws<ArgumentOutOfRangeException>(() => bone[3]);
        Assert.Throws<ArgumentOutOfRangeException>(() => bone[-1]);
        Assert.Throws<ArgumentOutOfRangeException>(() => bone[-1] = 1);
        Assert.Throws<ArgumentOutOfRangeException>(() => bone.GetWeight(-1));
    }

    [Fact]
    public void WeightsFollowTheTargets()
    {
        MorphTargetChannel channel = new("smile");
        Shape a = new("a");
        Shape b = new("b");
        channel.Targets.Add(b);
        channel.Targets.Insert(0, a);
        Assert.Equal([MorphTargetChannel.DefaultWeight, MorphTargetChannel.DefaultWeight], channel.Weights);
        channel.SetWeight(b, 0.5);
        channel.Weights[0] = 0.25;
        Assert.Equal((0.25, 0.5), (channel.GetWeight(a), channel.GetWeight(b)));
        channel.Targets.Remove(a);
        Assert.Equal([0.5], channel.Weights);
        Assert.Throws<ArgumentException>(() => channel.GetWeight(a));
        Assert.Throws<ArgumentException>(() => channel.SetWeight(a, 1));
        Assert.Throws<NotSupportedException>(() => channel.Weights.Add(1));
        Assert.Throws<NotSupportedException>(channel.Weights.Clear);
        channel.Targets.Clear();
        Assert.Empty(channel.Weights);
    }

    [Fact]
    public void ShapesComeFromPoints()
    {
        Shape shape = Shape.FromControlPoints([new(1, 2, 3), new(4, 5, 6)]);
        Assert.Equal([new Vector4(1, 2, 3, 1), new Vector4(4, 5, 6, 1)], shape.ControlPoints);
        Assert.Empty(shape.Indices);
        MorphTargetDeformer deformer = new();
        deformer.Channels.Add(new MorphTargetChannel());
        Mesh mesh = new();
        mesh.Deformers.Add(deformer);
        Assert.Same(mesh, deformer.Owner);
    }
}
