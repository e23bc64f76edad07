using System;
using Velbor.Voxlar.Shading;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>The keys of material libraries that name textures, and the slots in which these stand.</summary>
internal static class MtlKeys
{
    private const string MapPrefix = "map_";

    // The first key of a slot is the one that is written. PbrSlot is null where it is the same.
    private static readonly (string Key, string Slot, string? PbrSlot)[] Maps =
    [
        ("map_Ka", Material.MapAmbient, null),
        ("map_Kd", Material.MapDiffuse, "Albedo"),
        ("map_Ks", Material.MapSpecular, null),
        ("map_Ke", Material.MapEmissive, null),
        ("map_Ns", "Shininess", null),
        ("map_d", "Opacity", null),
        ("norm", Material.MapNormal, null),
        ("map_Bump", ObjNames.BumpSlot, null),
        ("bump", ObjNames.BumpSlot, null),
        ("map_Kn", Material.MapNormal, null),
        ("map_Tr", "Transparency", null),
        ("disp", "Displacement", null),
        ("map_disp", "Displacement", null),
        ("decal", "Decal", null),
        ("refl", "Reflection", null),
        ("map_refl", "Reflection", null),
        ("map_Pr", "Roughness", null),
        ("map_Pm", "Metallic", null),
        ("map_Ps", "Sheen", null),
        ("map_aat", "Antialiasing", null),
        ("map_opacity", "Opacity", null),
    ];

    /// <summary>
    /// The slot that a key names; null when the key names no texture. Case does not count. Slots that have no
    /// key are called "map_" and their name.
    /// </summary>
    public static string? SlotOf(string key, bool isPbr)
    {
        foreach ((string name, string slot, string? pbrSlot) in Maps)
        {
            if (name.Equals(key, StringComparison.OrdinalIgnoreCase))
                return isPbr ? pbrSlot ?? slot : slot;
        }
        return key.StartsWith(MapPrefix, StringComparison.Ordinal) ? key[MapPrefix.Length..] : null;
    }

    /// <summary>The key that writes a slot.</summary>
    public static string KeyOf(string slot)
    {
        foreach ((string name, string phongSlot, string? pbrSlot) in Maps)
        {
            if (slot == phongSlot || slot == pbrSlot)
                return name;
        }
        return MapPrefix + slot;
    }

    /// <summary>Whether a key makes a material a physically based one.</summary>
    public static bool IsPbr(string key) => key is "Pr" or "Pm" or "map_Pr" or "map_Pm";
}
