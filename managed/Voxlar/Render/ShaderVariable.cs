using System;

namespace Velbor.Voxlar.Render;

/// <summary>A variable of a shader program.</summary>
public class ShaderVariable
{
    /// <summary>Makes a variable of the vertex shader.</summary>
    /// <param name="name">Its name in the shader.</param>
    public ShaderVariable(string name)
        : this(name, ShaderStage.VertexShader)
    {
    }

    /// <summary>Makes a variable.</summary>
    /// <param name="name">Its name in the shader.</param>
    /// <param name="shaderStage">The stage it stands in.</param>
    public ShaderVariable(string name, ShaderStage shaderStage)
    {
        ArgumentNullException.ThrowIfNull(name);
        Name = name;
        Stage = shaderStage;
    }

    /// <summary>The name in the shader.</summary>
    public string Name { get; }

    internal ShaderStage Stage { get; }

    /// <inheritdoc/>
    public override string ToString() => Name;
}
