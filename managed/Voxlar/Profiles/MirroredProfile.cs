using System;
using System.Linq;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>The mirror image of a profile at the y axis.</summary>
public class MirroredProfile : Profile
{
    /// <summary>Makes a mirror image.</summary>
    /// <param name="baseProfile">The profile that is mirrored.</param>
    public MirroredProfile(Profile baseProfile)
    {
        ArgumentNullException.ThrowIfNull(baseProfile);
        BaseProfile = baseProfile;
    }

    /// <summary>The profile that is mirrored.</summary>
    public Profile BaseProfile { get; }

    internal override ProfileOutline GetOutline()
    {
        ProfileOutline source = BaseProfile.GetOutline();
        return new ProfileOutline(Mirror(source.Outer), source.Holes.Select(Mirror).ToArray());
    }

    private static Vector2[] Mirror(Vector2[] polygon) =>
        Array.ConvertAll(polygon, p => new Vector2(-p.x, p.y));
}
