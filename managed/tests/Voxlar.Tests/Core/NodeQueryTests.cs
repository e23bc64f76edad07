using System;
using System.Collections.Generic;
using System.Linq;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Core;

public class NodeQueryTests
{
    private readonly Node _root = new("root");
    private readonly Node _wheel2;

    public NodeQueryTests()
    {
        Node car = _root.CreateChildNode("Car");
        car.CreateChildNode("Wheel", new Thing("rim"));
        _wheel2 = car.CreateChildNode("Wheel", new Thing("tyre"));
        car.CreateChildNode("a/b [c]");
        _root.CreateChildNode("Garage").CreateChildNode("Car");
        _wheel2.Visible = false;
        _wheel2.SetProperty("size", 18);
        _wheel2.SetProperty("label", "left");
        _wheel2.Transform.SetScale(2, 2, 2);
    }

    [Theory]
    [InlineData("Car", "Car")]
    [InlineData("Car/Wheel", "Wheel Wheel")]
    [InlineData("*", "Car Garage")]
    [InlineData("*/*", "Wheel Wheel a/b [c] Car")]
    [InlineData("//Car", "Car Car")]
    [InlineData("/Car/Wheel/*", "rim tyre")]
    [InlineData("//rim", "rim")]
    [InlineData("Car/'a/b [c]'", "a/b [c]")]
    [InlineData("Car/\"a/b [c]\"/..", "Car")]
    [InlineData("//rim/..", "Wheel")]
    [InlineData("//rim/../..", "Car")]
    [InlineData(".", "root")]
    [InlineData("./Car/.", "Car")]
    [InlineData("/", "root")]
    [InlineData("..", "")]
    [InlineData("none", "")]
    [InlineData("Car/none/*", "")]
    [InlineData("Car/Wheel[1]/*", "tyre")]
    [InlineData("Car/Wheel[2]", "")]
    [InlineData("//*<Thing>", "rim tyre")]
    [InlineData("//*<Entity>", "rim tyre")]
    [InlineData("//*<Node>[0]", "Car")]
    [InlineData("//*[@size]", "Wheel")]
    [InlineData("//*[@size = 18]/*", "tyre")]
    [InlineData("//*[@size != 18]", "")]
    [InlineData("//*[@size >= 18]/*", "tyre")]
    [InlineData("//*[@size < 18]", "")]
    [InlineData("//*[@size > 17.5]/*", "tyre")]
    [InlineData("//*[@size <= 18]/*", "tyre")]
    [InlineData("//*[@label='left']/*", "tyre")]
    [InlineData("//*[@'label' = \"right\"]", "")]
    [InlineData("//*[@size = 'left']", "")]
    [InlineData("//*[@Visible = false]/*", "tyre")]
    [InlineData("//Wheel[@Visible = true]/*", "rim")]
    [InlineData(" Car / Wheel [1] / * ", "tyre")]
    [InlineData("*/..", "root")]
    public void PathSelects(string path, string names)
    {
        List<object> found = _root.SelectObjects(path);
        Assert.Equal(names, string.Join(' ', found.Cast<INamedObject>().Select(o => o.Name)));
        Assert.Same(found.FirstOrDefault(), _root.SelectSingleObject(path));
    }

    [Fact]
    public void LeadingSlashStartsAtTheTop() => Assert.Same(_root.GetChild("Car"), _wheel2.SelectSingleObject("/Car"));

    [Theory]
    [InlineData("")]
    [InlineData("Car/")]
    [InlineData("//")]
    [InlineData("///Car")]
    [InlineData("//..")]
    [InlineData("Car[")]
    [InlineData("Car[x]")]
    [InlineData("Car[-1]")]
    [InlineData("Car[99999999999]")]
    [InlineData("Car[@]")]
    [InlineData("Car[@a=]")]
    [InlineData("Car[@a=left]")]
    [InlineData("Car[@a='left]")]
    [InlineData("'Car")]
    [InlineData("*Car")]
    [InlineData("Car]")]
    [InlineData("Car<Node")]
    public void MalformedPathIsRefused(string path)
    {
        ParseException error = Assert.Throws<ParseException>(() => _root.SelectObjects(path));
        Assert.Contains($"'{path}'", error.Message);
    }

    [Fact]
    public void NullPathIsRefused() => Assert.Throws<ArgumentNullException>(() => _root.SelectObjects(null!));
}
