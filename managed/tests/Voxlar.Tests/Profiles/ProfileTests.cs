using System;
using System.Linq;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Profiles;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Profiles;

public class ProfileTests
{
    /// <summary>Profiles with sharp corners and their areas.</summary>
    public static TheoryData<ParameterizedProfile, double> Sharp => new()
    {
        { new RectangleShape { XDim = 2, YDim = 3 }, 6 },
        { new HollowRectangleShape { XDim = 4, YDim = 3, WallThickness = 0.5 }, 12 - 3 * 2 },
        { new TrapeziumShape { BottomXDim = 4, TopXDim = 2, YDim = 3, TopXOffset = 5 }, 9 },
        { new HShape(), 6 + 6 + 8 },
        { new HShape { TopFlangeWidth = 3, BottomFlangeThickness = 2 }, 12 + 3 + 7 },
        { new LShape(), 10 + 5 },
        { new TShape(), 6 + 9 },
        { new UShape(), 6 + 6 + 8 },
        { new ZShape(), 6 + 6 + 8 },
        { new CShape(), 10 * 0.5 + 2 * 4.5 * 0.5 + 2 * 1.5 * 0.5 },
    };

    [Theory]
    [MemberData(nameof(Sharp))]
    public void AreasOfSharpProfiles(ParameterizedProfile profile, double area)
    {
        Close.To(area, profile.GetOutline().Area);
    }

    [Theory]
    [MemberData(nameof(Sharp))]
    public void OutlinesFillTheExtentAboutTheOrigin(ParameterizedProfile profile, double area)
    {
        _ = area;
        Vector2[] outer = profile.GetOutline().Outer;
        Vector2 extent = profile.GetExtent();
        Close.To(extent.x / 2, outer.Max(p => p.x));
        Close.To(-extent.x / 2, outer.Min(p => p.x));
        Close.To(extent.y / 2, outer.Max(p => p.y));
        Close.To(-extent.y / 2, outer.Min(p => p.y));
        Assert.True(ProfileOutline.SignedArea(outer) > 0);
        Assert.All(profile.GetOutline().Holes, hole => Assert.True(ProfileOutline.SignedArea(hole) < 0));
    }

    [Fact]
    public void RoundShapes()
    {
        Close.To(Math.PI * 4, new CircleShape(2).GetOutline().Area, 0.1);
        Close.To(Math.PI * 8, new EllipseShape { SemiAxis1 = 4, SemiAxis2 = 2 }.GetOutline().Area, 0.2);
        Close.To(Math.PI * (25 - 4), new HollowCircleShape().GetOutline().Area, 0.5);
        Assert.Equal(new Vector2(10, 10), new HollowCircleShape().GetExtent());
        Assert.Equal(new Vector2(8, 4), new EllipseShape { SemiAxis1 = 4, SemiAxis2 = 2 }.GetExtent());
    }

    [Fact]
    public void RoundingTakesCornersAndFilletsFillThem()
    {
        double cut = 1 - Math.PI / 4;
        RectangleShape rectangle = new() { XDim = 4, YDim = 4, RoundingRadius = 1 };
        Close.To(16 - 4 * cut, rectangle.GetOutline().Area, 0.03);
        LShape l = new() { FilletRadius = 2 };
        Close.To(15 + 4 * cut, l.GetOutline().Area, 0.03);
        LShape edges = new() { EdgeRadius = 0.5 };
        Close.To(15 - 2 * 0.25 * cut, edges.GetOutline().Area, 0.01);

        // A radius that does not fit is reduced, here to half the side: the outline is a circle.
        rectangle.RoundingRadius = 100;
        Close.To(Math.PI * 4, rectangle.GetOutline().Area, 0.1);
    }

    [Fact]
    public void MirrorTurnsTheShapeRound()
    {
        MirroredProfile mirrored = new(new LShape());
        ProfileOutline outline = mirrored.GetOutline();
        Close.To(15, outline.Area);
        Assert.Contains(new Vector2(3, 5), outline.Outer);
        Assert.DoesNotContain(new Vector2(-3, 5), outline.Outer);
        Assert.Throws<ArgumentNullException>(() => new MirroredProfile(null!));
    }

    [Fact]
    public void ArbitraryProfilesFollowTheirCurve()
    {
        ArbitraryProfile clockwise =
            new(Line.FromPoints([new(0, 0, 0), new(0, 2, 0), new(3, 0, 5), new(0, 0, 0)]));
        Close.To(3, clockwise.GetOutline().Area);
        Assert.Equal(3, clockwise.GetOutline().Outer.Length);
        Assert.Throws<InvalidOperationException>(() => new ArbitraryProfile().GetOutline());
        Assert.Throws<InvalidOperationException>(() =>
            new ArbitraryProfile(Line.FromPoints([new(0, 0, 0), new(0, 2, 0)])).GetOutline());
    }

    [Fact]
    public void WallsThatDoNotFitAreRefused()
    {
        Assert.Throws<InvalidOperationException>(() =>
            new HollowCircleShape { WallThickness = 6 }.GetOutline());
        Assert.Throws<InvalidOperationException>(() =>
            new HollowRectangleShape { WallThickness = 1 }.GetOutline());
    }

    [Fact]
    public void TextKeepsItsValuesButHasNoOutline()
    {
        Text text = new() { Content = "abc", FontSize = 2 };
        Assert.Equal("abc", text.Content);
        Assert.Null(text.Font);
        Assert.Throws<NotSupportedException>(() => text.GetOutline());
        Assert.Throws<NotSupportedException>(() => FontFile.Parse([0, 1, 0, 0]));
        Assert.Throws<NotSupportedException>(() => FontFile.FromFile("none.ttf"));
    }
}
