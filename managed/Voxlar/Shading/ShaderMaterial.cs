using System.Collections.Generic;

namespace Velbor.Voxlar.Shading;

/// <summary>A material whose look is given by shader programs.</summary>
public class ShaderMaterial : Material
{
    /// <summary>Makes a material without a name.</summary>
    public ShaderMaterial()
        : this("")
    {
    }

    /// <summary>Makes a material.</summary>
    /// <param name="name">Its name.</param>
    public ShaderMaterial(string name)
        : base(name)
    {
    }

    /// <summary>The techniques, any of which draws the material.</summary>
    public IList<ShaderTechnique> Techniques { get; } = new List<ShaderTechnique>();
}
