using System;
using System.Linq;
using Velbor.Voxlar.Animation;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Core;

public class SceneTests
{
    [Fact]
    public void NewSceneIsEmpty()
    {
        Scene scene = new();
        Assert.Equal("", scene.Name);
        Assert.Same(scene, scene.RootNode.Scene);
        Assert.Empty(scene.RootNode.ChildNodes);
        Assert.NotNull(scene.AssetInfo);
        Assert.Null(scene.CurrentAnimationClip);
        Assert.Null(scene.Scene);
        Assert.Empty(scene.Poses);
        Assert.Empty(scene.Library);
    }

    [Fact]
    public void SceneOfAnEntityHasOneNode()
    {
        Thing thing = new("t");
        Scene scene = new(thing);
        Assert.Same(thing, Assert.Single(scene.RootNode.ChildNodes).Entity);
        Assert.Throws<ArgumentNullException>(() => new Scene((Entity)null!));
    }

    [Fact]
    public void SubScenesHaveOneParentAndNoCircle()
    {
        Scene top = new();
        Scene inner = new(top, "inner");
        Scene innermost = new(inner, "innermost");
        Assert.Equal("inner", inner.Name);
        Assert.Same(top, inner.Scene);
        Assert.Equal(new[] { inner }, top.SubScenes);
        Assert.Throws<InvalidOperationException>(() => innermost.SubScenes.Add(top));
        Assert.Throws<InvalidOperationException>(() => top.SubScenes.Add(top));
        top.SubScenes.Add(innermost);
        Assert.Empty(inner.SubScenes);
        Assert.Same(top, innermost.Scene);
        Assert.Throws<ArgumentNullException>(() => new Scene(null!, "x"));
    }

    [Fact]
    public void ClipsBelongToOneScene()
    {
        Scene scene = new();
        AnimationClip first = scene.CreateAnimationClip("first");
        AnimationClip second = scene.CreateAnimationClip("second");
        Assert.Same(first, scene.CurrentAnimationClip);
        Assert.Same(second, scene.GetAnimationClip("second"));
        Assert.Null(scene.GetAnimationClip("none"));
        Assert.Same(scene, second.Scene);
        scene.CurrentAnimationClip = second;
        scene.AnimationClips.Remove(second);
        Assert.Null(scene.CurrentAnimationClip);
        Assert.Null(second.Scene);
        Scene other = new();
        other.CurrentAnimationClip = first;
        Assert.Equal(new[] { first }, other.AnimationClips);
        Assert.Empty(scene.AnimationClips);
    }

    [Fact]
    public void ClearDropsEverythingButTheRootNode()
    {
        Scene scene = new();
        Node root = scene.RootNode;
        Node child = root.CreateChildNode("c", new Thing("t"));
        root.Transform.SetTranslation(1, 2, 3).SetGeometricScaling(2, 2, 2);
        root.SetProperty("p", 1);
        scene.SetProperty("p", 1);
        scene.Library.Add(new CustomObject("x"));
        scene.Poses.Add(new Pose("pose"));
        scene.CreateAnimationClip("clip");
        Scene inner = new(scene, "inner");
        scene.AssetInfo.Title = "title";
        scene.Clear();
        Assert.Same(root, scene.RootNode);
        Assert.Empty(root.ChildNodes);
        Assert.Null(child.Scene);
        Assert.Equal(Matrix4.Identity, root.EvaluateGlobalTransform(true));
        Assert.Null(root.FindProperty("p"));
        Assert.Null(scene.FindProperty("p"));
        Assert.Empty(scene.Library);
        Assert.Empty(scene.Poses);
        Assert.Empty(scene.AnimationClips);
        Assert.Null(scene.CurrentAnimationClip);
        Assert.Empty(scene.SubScenes);
        Assert.Null(inner.Scene);
        Assert.Null(scene.AssetInfo.Title);
    }

    [Fact]
    public void PosesHoldMatricesOfNodes()
    {
        Pose pose = new("bind");
        Node node = new("n");
        pose.AddBonePose(node, Matrix4.Scale(2));
        pose.AddBonePose(node, Matrix4.Identity, true);
        Assert.Equal(new[] { false, true }, pose.BonePoses.Select(p => p.IsLocal));
        Assert.Same(node, pose.BonePoses[0].Node);
        Assert.Equal(Matrix4.Scale(2), pose.BonePoses[0].Matrix);
        Assert.Equal(PoseType.BindPose, pose.PoseType);
    }

    [Fact]
    public void RenderingSaysThatItIsMissing()
    {
        NotSupportedException error = Assert.Throws<NotSupportedException>(
            () => new Scene().Render(null!, "a.png"));
        Assert.Contains("not available", error.Message);
    }
}
