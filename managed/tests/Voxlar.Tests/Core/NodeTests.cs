using System;
using System.Linq;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Core;

public class NodeTests
{
    [Fact]
    public void NewNodeIsVisibleAndAlone()
    {
        Node node = new();
        Assert.Equal("", node.Name);
        Assert.True(node.Visible);
        Assert.False(node.Excluded);
        Assert.Null(node.ParentNode);
        Assert.Null(node.Scene);
        Assert.Null(node.Entity);
        Assert.Null(node.Material);
        Assert.Null(node.AssetInfo);
        Assert.Empty(node.ChildNodes);
    }

    [Fact]
    public void AddedNodeLeavesItsFormerParent()
    {
        Node a = new("a");
        Node b = new("b");
        Node child = a.CreateChildNode("child");
        Assert.Same(a, child.ParentNode);
        b.AddChildNode(child);
        Assert.Same(b, child.ParentNode);
        Assert.Empty(a.ChildNodes);
        child.ParentNode = a;
        Assert.Empty(b.ChildNodes);
        Assert.Same(child, a.GetChild(0));
        child.ParentNode = null;
        Assert.Empty(a.ChildNodes);
        Assert.Null(child.ParentNode);
    }

    [Fact]
    public void ListKeepsParentsInEveryOperation()
    {
        Node parent = new("p");
        Node a = new("a");
        Node b = new("b");
        Node c = new("c");
        parent.ChildNodes.Add(a);
        parent.ChildNodes.Insert(0, b);
        Assert.Equal(new[] { b, a }, parent.ChildNodes);
        parent.ChildNodes[0] = c;
        Assert.Null(b.ParentNode);
        Assert.Same(parent, c.ParentNode);
        parent.ChildNodes.RemoveAt(0);
        Assert.Null(c.ParentNode);
        Assert.True(parent.ChildNodes.Remove(a));
        Assert.Null(a.ParentNode);
        parent.ChildNodes.Add(a);
        parent.ChildNodes.Add(b);
        parent.ChildNodes.Clear();
        Assert.Null(a.ParentNode);
        Assert.Null(b.ParentNode);
        Assert.Throws<ArgumentNullException>(() => parent.ChildNodes.Add(null!));
        Assert.Throws<ArgumentNullException>(() => parent.AddChildNode(null!));
    }

    [Fact]
    public void OwnChildMovesWhenItIsAddedAgain()
    {
        Node parent = new();
        Node a = parent.CreateChildNode("a");
        Node b = parent.CreateChildNode("b");
        Node c = parent.CreateChildNode("c");
        parent.AddChildNode(a);
        Assert.Equal(new[] { b, c, a }, parent.ChildNodes);
        parent.ChildNodes.Insert(0, a);
        Assert.Equal(new[] { a, b, c }, parent.ChildNodes);
        parent.ChildNodes.Insert(2, a);
        Assert.Equal(new[] { b, a, c }, parent.ChildNodes);
        Assert.Same(parent, a.ParentNode);
        Assert.Throws<InvalidOperationException>(() => parent.ChildNodes[0] = c);
        Assert.Equal(new[] { b, a, c }, parent.ChildNodes);
    }

    [Fact]
    public void CirclesAreRefused()
    {
        Node a = new("a");
        Node b = a.CreateChildNode("b");
        Node c = b.CreateChildNode("c");
        Assert.Throws<InvalidOperationException>(() => c.AddChildNode(a));
        Assert.Throws<InvalidOperationException>(() => a.AddChildNode(a));
        Assert.Throws<InvalidOperationException>(() => a.ParentNode = c);
        Assert.Null(a.ParentNode);
        Assert.Same(a, b.ParentNode);
    }

    [Fact]
    public void RootOfASceneStaysTheRoot()
    {
        Scene scene = new();
        Assert.Throws<InvalidOperationException>(() => new Node().AddChildNode(scene.RootNode));
        Node child = scene.RootNode.CreateChildNode("x").CreateChildNode("y");
        Assert.Same(scene, child.Scene);
        Scene other = new();
        other.RootNode.AddChildNode(child);
        Assert.Same(other, child.Scene);
        child.ParentNode = null;
        Assert.Null(child.Scene);
    }

    [Fact]
    public void ChildrenAreMadeWithNameEntityAndMaterial()
    {
        Node root = new("root");
        Thing thing = new("thing");
        Assert.Equal("", root.CreateChildNode().Name);
        Assert.Equal("thing", root.CreateChildNode(thing).Name);
        Node named = root.CreateChildNode("named", thing);
        Assert.Same(thing, named.Entity);
        Assert.Same(named, root.GetChild("named"));
        Assert.Null(root.GetChild("none"));
        Assert.Null(root.CreateChildNode("m", null, null).Material);
        Assert.Throws<ArgumentOutOfRangeException>(() => root.GetChild(4));
        Assert.Throws<ArgumentOutOfRangeException>(() => root.GetChild(-1));
    }

    [Fact]
    public void EntitiesKnowTheirNodes()
    {
        Thing thing = new("t");
        Node a = new("a", thing);
        Node b = new("b");
        b.AddEntity(thing);
        b.AddEntity(thing);
        Assert.Equal(new[] { a, b }, thing.ParentNodes);
        Assert.Same(a, thing.ParentNode);
        a.Entities.Clear();
        Assert.Equal(new[] { b }, thing.ParentNodes);
        thing.ParentNode = a;
        Assert.Empty(b.Entities);
        Assert.Same(thing, a.Entity);
        thing.ParentNode = null;
        Assert.Empty(a.Entities);
        Assert.Empty(thing.ParentNodes);
        thing.ParentNodes.Add(a);
        Assert.Empty(thing.ParentNodes);
    }

    [Fact]
    public void EntityIsTheFirstOneAndSettingItDropsTheOthers()
    {
        Thing one = new("1");
        Thing two = new("2");
        Node node = new();
        node.Entities.Add(one);
        node.Entities.Add(two);
        Assert.Same(one, node.Entity);
        Assert.Throws<ArgumentException>(() => node.Entities.Add(one));
        node.Entity = two;
        Assert.Equal(new Entity[] { two }, node.Entities);
        Assert.Empty(one.ParentNodes);
        Assert.Same(node, two.ParentNode);
        node.Entity = null;
        Assert.Empty(node.Entities);
        Assert.Empty(two.ParentNodes);
    }

    [Fact]
    public void EntityBelongsToTheSceneOfItsNode()
    {
        Scene scene = new();
        Thing thing = new("t");
        Assert.Null(thing.Scene);
        scene.RootNode.CreateChildNode(thing);
        Assert.Same(scene, thing.Scene);
    }

    [Fact]
    public void MergeMovesEverythingBehindTheOwn()
    {
        Node a = new("a");
        Node b = new("b");
        Thing shared = new("shared");
        Thing other = new("other");
        a.CreateChildNode("a1");
        Node b1 = b.CreateChildNode("b1");
        a.AddEntity(shared);
        b.AddEntity(shared);
        b.AddEntity(other);
        b.MetaDatas.Add(new CustomObject("data"));
        a.Merge(b);
        Assert.Equal(new[] { "a1", "b1" }, a.ChildNodes.Select(n => n.Name));
        Assert.Same(a, b1.ParentNode);
        Assert.Equal(new Entity[] { shared, other }, a.Entities);
        Assert.Equal(new[] { a }, shared.ParentNodes);
        Assert.Single(a.MetaDatas);
        Assert.Empty(b.ChildNodes);
        Assert.Empty(b.Entities);
        Assert.Empty(b.MetaDatas);
        Assert.Throws<InvalidOperationException>(() => a.Merge(a));
        Assert.Throws<InvalidOperationException>(() => b1.Merge(a));
        Assert.Throws<ArgumentNullException>(() => a.Merge(null!));
    }

    [Fact]
    public void BoundingBoxIsGlobalAndLeavesOutWhatIsExcluded()
    {
        Scene scene = new();
        Node a = scene.RootNode.CreateChildNode("a", new Thing("1"));
        Node b = a.CreateChildNode("b", new Thing("2"));
        a.Transform.SetTranslation(10, 0, 0);
        b.Transform.SetTranslation(0, 5, 0).SetScale(2, 2, 2);
        Assert.Equal(new BoundingBox(8, -1, -2, 12, 7, 2), scene.RootNode.GetBoundingBox());
        Assert.Equal(new BoundingBox(8, 3, -2, 12, 7, 2), b.GetBoundingBox());
        b.Entity!.Excluded = true;
        Assert.Equal(new BoundingBox(9, -1, -1, 11, 1, 1), a.GetBoundingBox());
        a.Transform.SetGeometricTranslation(0, 0, 100);
        Assert.Equal(new BoundingBox(9, -1, 99, 11, 1, 101), a.GetBoundingBox());
        a.Excluded = true;
        Assert.Equal(BoundingBox.Null, scene.RootNode.GetBoundingBox());
        Assert.Equal(BoundingBox.Null, new Node().GetBoundingBox());
    }

    [Fact]
    public void DeepGraphsDoNotExhaustTheStack()
    {
        Node top = new("top");
        Node at = top;
        for (int i = 0; i < 100_000; i++)
        {
            // Put together from below, so that the check for circles has one step.
            Node above = new("n");
            above.AddChildNode(at);
            at = above;
        }
        top.AddEntity(new Thing("deep"));
        Assert.Equal(BoundingBoxExtent.Finite, at.GetBoundingBox().Extent);
        Assert.Same(top, at.SelectSingleObject("//top"));
        Assert.Equal(Matrix4.Identity, top.EvaluateGlobalTransform(true));
    }
}
