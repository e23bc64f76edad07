using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Render;

/// <summary>A shader program as GLSL text, one text for each stage it has.</summary>
public class GLSLSource : ShaderSource
{
    private readonly Dictionary<string, string> _includes = new();

    /// <summary>The text of the compute shader.</summary>
    public string? ComputeShader { get; set; }

    /// <summary>The text of the geometry shader.</summary>
    public string? GeometryShader { get; set; }

    /// <summary>The text of the vertex shader.</summary>
    public string? VertexShader { get; set; }

    /// <summary>The text of the fragment shader.</summary>
    public string? FragmentShader { get; set; }

    /// <summary>The texts that stand for included files, by file name.</summary>
    internal IReadOnlyDictionary<string, string> Includes => _includes;

    /// <summary>Gives the text that stands for an included file, in place of an earlier one.</summary>
    /// <param name="fileName">The name as the include directive has it.</param>
    /// <param name="content">The text.</param>
    public void DefineInclude(string fileName, string content)
    {
        ArgumentException.ThrowIfNullOrEmpty(fileName);
        ArgumentNullException.ThrowIfNull(content);
        _includes[fileName] = content;
    }
}
