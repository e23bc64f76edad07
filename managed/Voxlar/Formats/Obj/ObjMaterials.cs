using System;
using System.Collections.Generic;
using Velbor.Voxlar.Shading;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// The materials of an OBJ file: those of its libraries, and plain ones for names that these do not have.
/// </summary>
internal sealed class ObjMaterials
{
    private readonly List<string> _names;
    private readonly Material?[] _used;
    private readonly Dictionary<string, Material> _byName = new(StringComparer.Ordinal);
    private readonly List<Material> _read = [];
    private Material? _none;

    /// <summary>Makes the table.</summary>
    /// <param name="names">The names that the elements use.</param>
    public ObjMaterials(List<string> names)
    {
        _names = names;
        _used = new Material?[names.Count];
    }

    /// <summary>
    /// Takes a material of a library. The first one of a name is the one that elements get.
    /// </summary>
    public void Add(Material material)
    {
        _read.Add(material);
        _byName.TryAdd(material.Name, material);
    }

    /// <summary>The material of a place among the names; for none a plain one without a name.</summary>
    public Material Use(int place)
    {
        if (place == ObjElements.None)
            return _none ??= new PhongMaterial();
        return _used[place] ??= _byName.GetValueOrDefault(_names[place]) ?? new PhongMaterial(_names[place]);
    }

    /// <summary>Adds the materials that no element uses to the library of the scene.</summary>
    public void AddUnusedTo(IList<VbrObject> library)
    {
        foreach (Material material in _read)
        {
            if (Array.IndexOf(_used, material) < 0)
                library.Add(material);
        }
    }
}
