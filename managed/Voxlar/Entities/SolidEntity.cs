using Velbor.Voxlar.Profiles;
using Velbor.Voxlar.Render;

namespace Velbor.Voxlar.Entities;

/// <summary>What the bodies made from profiles share.</summary>
internal static class SolidEntity
{
    /// <summary>The key of their renderer.</summary>
    public static readonly EntityRendererKey RendererKey = new("Solid");

    /// <summary>The outline of the profile of a body.</summary>
    public static ProfileOutline Outline(Profile? shape) => shape is null
        ? throw new System.InvalidOperationException("The body has no shape.")
        : shape.GetOutline();
}
