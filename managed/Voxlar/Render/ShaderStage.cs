namespace Velbor.Voxlar.Render;

/// <summary>A stage of a shader program.</summary>
public enum ShaderStage
{
    VertexShader = 1,
    FragmentShader = 2,
    GeometryShader = 4,
    ComputeShader = 8,
}
