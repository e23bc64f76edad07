namespace Velbor.Voxlar.Shading;

/// <summary>A texture of a material together with the name it goes by there.</summary>
public sealed class TextureSlot
{
    internal TextureSlot(string slotName, TextureBase texture)
    {
        SlotName = slotName;
        Texture = texture;
    }

    /// <summary>The name of the slot, such as <see cref="Material.MapDiffuse"/>.</summary>
    public string SlotName { get; }

    /// <summary>The texture in the slot.</summary>
    public TextureBase Texture { get; }

    /// <inheritdoc/>
    public override string ToString() => $"{SlotName}: {Texture}";
}
