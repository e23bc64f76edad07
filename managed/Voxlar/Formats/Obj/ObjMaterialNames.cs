using System;
using System.Collections.Generic;
using System.Globalization;
using Velbor.Voxlar.Shading;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// The materials of a scene under names of their own: a name that occurs again gets a number.
/// </summary>
internal sealed class ObjMaterialNames
{
    private readonly Dictionary<Material, string> _names = new(ReferenceEqualityComparer.Instance);
    private readonly HashSet<string> _taken = new(StringComparer.Ordinal) { ObjNames.NoMaterial };
    private readonly List<Material> _order = [];

    /// <summary>How many materials there are.</summary>
    public int Count => _order.Count;

    /// <summary>The materials in their order.</summary>
    public IReadOnlyList<Material> All => _order;

    /// <summary>Adds a material, unless it is there.</summary>
    public void Add(Material material)
    {
        if (_names.ContainsKey(material))
            return;
        string wanted = material.Name.Trim();
        string name = wanted;
        for (int number = 2; !_taken.Add(name); number++)
            name = wanted + "_" + number.ToString(CultureInfo.InvariantCulture);
        _names.Add(material, name);
        _order.Add(material);
    }

    /// <summary>The name that a material is written under.</summary>
    public string NameOf(Material material)
    {
        Add(material);
        return _names[material];
    }
}
