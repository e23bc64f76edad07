using System;
using System.Linq;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Core;

public class PropertyTests
{
    public static readonly TheoryData<object?> Values = new()
    {
        null, true, (byte)7, -5, 1L << 40, 1.5f, Math.PI, 12.5m, 'c', "text", new DateTime(2024, 2, 29),
        Guid.Empty, new Vector3(1, 2, 3), Matrix4.Identity, Axis.ZAxis, new byte[] { 1, 2 }, new object(),
        new[] { 1.0, 2.0 },
    };

    [Theory]
    [MemberData(nameof(Values))]
    public void AddedPropertyGivesBackItsValue(object? value)
    {
        VbrObject obj = new("o");
        obj.SetProperty("p", value);
        Assert.Equal(value, obj.GetProperty("p"));
        Assert.Equal(value?.GetType() ?? typeof(object), obj.FindProperty("p")!.ValueType);
        obj.SetProperty("p", "other");
        Assert.Equal("other", obj.FindProperty("p")!.Value);
        Assert.Single(obj.Properties);
    }

    [Fact]
    public void MissingPropertyIsNull()
    {
        VbrObject obj = new();
        Assert.Null(obj.GetProperty("none"));
        Assert.Null(obj.FindProperty("none"));
        Assert.False(obj.RemoveProperty("none"));
        Assert.Throws<ArgumentNullException>(() => obj.FindProperty(null!));
        Assert.Throws<ArgumentException>(() => obj.SetProperty("", 1));
    }

    [Fact]
    public void PropertiesKeepTheirOrder()
    {
        VbrObject obj = new();
        foreach (string name in new[] { "c", "a", "b" })
            obj.SetProperty(name, name);
        obj.SetProperty("a", 1);
        Assert.Equal(new[] { "c", "a", "b" }, obj.Properties.Select(p => p.Name));
        Assert.Equal(3, obj.Properties.Count);
        Assert.Equal("b", obj.Properties[2].Value);
        Assert.Throws<ArgumentOutOfRangeException>(() => obj.Properties[3]);
        Assert.True(obj.RemoveProperty("a"));
        Assert.False(obj.RemoveProperty("a"));
        Assert.Equal(new[] { "c", "b" }, obj.Properties.Select(p => p.Name));
    }

    [Fact]
    public void PropertyOfAnotherObjectIsNotRemoved()
    {
        VbrObject a = new();
        VbrObject b = new();
        a.SetProperty("p", 1);
        b.SetProperty("p", 1);
        Assert.False(a.RemoveProperty(b.FindProperty("p")!));
        Assert.True(a.RemoveProperty(a.FindProperty("p")!));
    }

    [Fact]
    public void OwnPropertiesShowTheMembersOfTheClass()
    {
        Node node = new("n");
        Property visible = node.FindProperty("Visible")!;
        Assert.Same(visible, node.FindProperty("Visible"));
        Assert.Equal(true, visible.Value);
        Assert.Equal(typeof(bool), visible.ValueType);
        visible.Value = false;
        Assert.False(node.Visible);
        node.SetProperty("Excluded", true);
        Assert.True(node.Excluded);
        Assert.False(node.RemoveProperty("Visible"));
        Assert.Null(node.FindProperty("Name"));
        Assert.Null(node.FindProperty("ChildNodes"));
        Assert.Throws<ArgumentException>(() => node.SetProperty("Visible", "yes"));
        Assert.Throws<InvalidOperationException>(() => visible.Name = "Other");
    }

    [Fact]
    public void OwnPropertiesConvertNumbersAndVectors()
    {
        Transform transform = new Node().Transform;
        transform.SetProperty("Translation", new FVector3(1, 2, 3));
        Assert.Equal(new Vector3(1, 2, 3), transform.Translation);
        Assert.Throws<ArgumentException>(() => transform.SetProperty("Translation", null));
        AssetInfo info = new();
        info.SetProperty("UnitScaleFactor", 100);
        Assert.Equal(100.0, info.UnitScaleFactor);
        info.SetProperty("Ambient", new Vector4(1, 1, 1, 1));
        info.SetProperty("Ambient", null);
        Assert.Null(info.Ambient);
        info.SetProperty("Title", null);
        Assert.Null(info.Title);
    }

    [Fact]
    public void AddedPropertyCanBeRenamed()
    {
        VbrObject obj = new();
        obj.SetProperty("a", 1);
        obj.SetProperty("b", 2);
        Property a = obj.FindProperty("a")!;
        a.Name = "c";
        Assert.Same(a, obj.FindProperty("c"));
        Assert.Null(obj.FindProperty("a"));
        Assert.Throws<ArgumentException>(() => a.Name = "b");
        Assert.Throws<ArgumentException>(() => a.Name = "");
        Assert.Equal("c", a.Name);
    }

    [Fact]
    public void NameIsNeverNull()
    {
        VbrObject obj = new(null!);
        Assert.Equal("", obj.Name);
        obj.Name = null!;
        Assert.Equal("", obj.Name);
    }

    [Fact]
    public void AssetInfoStartsEmpty()
    {
        AssetInfo info = new();
        Assert.Null(info.CreationTime);
        Assert.Null(info.ModificationTime);
        Assert.Null(info.CoordinatedSystem);
        Assert.Null(info.UpVector);
        Assert.Null(info.Ambient);
        Assert.Equal(1, info.UnitScaleFactor);
    }
}
