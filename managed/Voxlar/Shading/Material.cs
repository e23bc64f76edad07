using System;
using System.Collections;
using System.Collections.Generic;

namespace Velbor.Voxlar.Shading;

/// <summary>
/// The look of a surface. A material holds textures by slot name; enumerating it gives its slots in the order
/// in which they were first set.
/// </summary>
public abstract class Material : VbrObject, IEnumerable<TextureSlot>
{
    /// <summary>The slot of the specular texture.</summary>
    public static readonly string MapSpecular = "Specular";

    /// <summary>The slot of the diffuse texture.</summary>
    public static readonly string MapDiffuse = "Diffuse";

    /// <summary>The slot of the emissive texture.</summary>
    public static readonly string MapEmissive = "Emissive";

    /// <summary>The slot of the ambient texture.</summary>
    public static readonly string MapAmbient = "Ambient";

    /// <summary>The slot of the normal texture.</summary>
    public static readonly string MapNormal = "Normal";

    private readonly List<TextureSlot> _slots = new();

    private protected Material(string name)
        : base(name)
    {
    }

    /// <summary>Gives the texture of a slot.</summary>
    /// <param name="slotName">The name of the slot; case counts.</param>
    /// <returns>The texture, or null when the slot is empty.</returns>
    public TextureBase? GetTexture(string slotName)
    {
        int at = IndexOf(slotName);
        return at < 0 ? null : _slots[at].Texture;
    }

    /// <summary>Puts a texture into a slot.</summary>
    /// <param name="slotName">The name of the slot; case counts.</param>
    /// <param name="texture">The texture, or null to empty the slot.</param>
    public void SetTexture(string slotName, TextureBase? texture)
    {
        int at = IndexOf(slotName);
        if (texture is null)
        {
            if (at >= 0)
            {
                _slots.RemoveAt(at);
            }
        }
        else if (at >= 0)
        {
            _slots[at] = new TextureSlot(slotName, texture);
        }
        else
        {
            _slots.Add(new TextureSlot(slotName, texture));
        }
    }

    IEnumerator<TextureSlot> IEnumerable<TextureSlot>.GetEnumerator() => _slots.GetEnumerator();

    IEnumerator IEnumerable.GetEnumerator() => _slots.GetEnumerator();

    private int IndexOf(string slotName)
    {
        ArgumentNullException.ThrowIfNull(slotName);
        return _slots.FindIndex(slot => slot.SlotName == slotName);
    }
}
