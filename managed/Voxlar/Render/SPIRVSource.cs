namespace Velbor.Voxlar.Render;

/// <summary>A shader program as SPIR-V code, one module for each stage it has.</summary>
public class SPIRVSource : ShaderSource
{
    /// <summary>The highest number of descriptor sets that are made of the program; 10 at first.</summary>
    public int MaximumDescriptorSets { get; set; } = 10;

    /// <summary>The code of the compute shader.</summary>
    public byte[]? ComputeShader { get; set; }

    /// <summary>The code of the geometry shader.</summary>
    public byte[]? GeometryShader { get; set; }

    /// <summary>The code of the vertex shader.</summary>
    public byte[]? VertexShader { get; set; }

    /// <summary>The code of the fragment shader.</summary>
    public byte[]? FragmentShader { get; set; }
}
