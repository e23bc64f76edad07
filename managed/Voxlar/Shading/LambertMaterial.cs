using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Shading;

/// <summary>A matt material. Colours are linear RGB with components from 0 to 1.</summary>
public class LambertMaterial : Material
{
    /// <summary>Makes a material without a name.</summary>
    public LambertMaterial()
        : this("")
    {
    }

    /// <summary>Makes a material.</summary>
    /// <param name="name">Its name.</param>
    public LambertMaterial(string name)
        : base(name)
    {
    }

    /// <summary>The light the surface gives off by itself; black at first.</summary>
    public Vector3 EmissiveColor { get; set; }

    /// <summary>The share of ambient light sent back; black at first.</summary>
    public Vector3 AmbientColor { get; set; }

    /// <summary>
    /// The share of direct light sent back in all directions; 0.8 in each component at first.
    /// </summary>
    public Vector3 DiffuseColor { get; set; } = new(0.8, 0.8, 0.8);

    /// <summary>The colour of the light let through; black at first.</summary>
    public Vector3 TransparentColor { get; set; }

    /// <summary>How much light passes, from 0 (opaque) to 1 (invisible).</summary>
    public double Transparency { get; set; }
}
