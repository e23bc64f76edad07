using Velbor.Voxlar.Render;

namespace Velbor.Voxlar.Profiles;

/// <summary>
/// A plane shape in x and y that solids are extruded, revolved or swept from. All lengths are in the unit of
/// the scene.
/// </summary>
public abstract class Profile : Entity
{
    private static readonly EntityRendererKey RendererKey = new("Profile");

    private protected Profile()
        : base("")
    {
    }

    /// <inheritdoc/>
    public override EntityRendererKey GetEntityRendererKey() => RendererKey;

    /// <summary>Gives the boundary of the shape as polygons.</summary>
    /// <exception cref="System.NotSupportedException">
    /// The outline of this kind of profile cannot be found.
    /// </exception>
    internal abstract ProfileOutline GetOutline();
}
