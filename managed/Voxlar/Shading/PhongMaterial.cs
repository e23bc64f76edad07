using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Shading;

/// <summary>A matt material with highlights and reflections.</summary>
public class PhongMaterial : LambertMaterial
{
    /// <summary>Makes a material without a name.</summary>
    public PhongMaterial()
        : this("")
    {
    }

    /// <summary>Makes a material.</summary>
    /// <param name="name">Its name.</param>
    public PhongMaterial(string name)
        : base(name)
    {
    }

    /// <summary>The colour of highlights; black at first.</summary>
    public Vector3 SpecularColor { get; set; }

    /// <summary>The strength of highlights, a factor on <see cref="SpecularColor"/>; 1 at first.</summary>
    public double SpecularFactor { get; set; } = 1;

    /// <summary>The exponent of highlights; the higher, the smaller they are. 20 at first.</summary>
    public double Shininess { get; set; } = 20;

    /// <summary>The colour of reflections; black at first.</summary>
    public Vector3 ReflectionColor { get; set; }

    /// <summary>The strength of reflections, a factor on <see cref="ReflectionColor"/>; 1 at first.</summary>
    public double ReflectionFactor { get; set; } = 1;
}
