using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Shading;

/// <summary>
/// One way to draw a shader material: a shader program and what its parameters are bound to.
/// </summary>
public class ShaderTechnique
{
    private readonly Dictionary<string, string> _bindings = new();

    /// <summary>What the technique does, in words.</summary>
    public string? Description { get; set; }

    /// <summary>The language of the shader, such as "GLSL".</summary>
    public string? ShaderLanguage { get; set; }

    /// <summary>The version of the language.</summary>
    public string? ShaderVersion { get; set; }

    /// <summary>The file of the shader.</summary>
    public string? ShaderFile { get; set; }

    /// <summary>The content that stands for the file: source text or a compiled program.</summary>
    public byte[]? ShaderContent { get; set; }

    /// <summary>The name of the entry function.</summary>
    public string? ShaderEntry { get; set; }

    /// <summary>The rendering interface the shader is made for, such as "OpenGL".</summary>
    public string? RenderAPI { get; set; }

    /// <summary>The version of the rendering interface.</summary>
    public string? RenderAPIVersion { get; set; }

    /// <summary>
    /// What each shader parameter is bound to: the name of a dynamic property by the parameter's name.
    /// </summary>
    internal IReadOnlyDictionary<string, string> Bindings => _bindings;

    /// <summary>
    /// Binds a dynamic property of the material to a parameter of the shader, in place of an earlier one.
    /// </summary>
    /// <param name="property">The name of the dynamic property.</param>
    /// <param name="shaderParameter">The name of the shader's parameter.</param>
    public void AddBinding(string property, string shaderParameter)
    {
        ArgumentException.ThrowIfNullOrEmpty(property);
        ArgumentException.ThrowIfNullOrEmpty(shaderParameter);
        _bindings[shaderParameter] = property;
    }
}
