using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Render;

/// <summary>Makes the objects of a device.</summary>
public abstract class RenderFactory
{
    private protected RenderFactory()
    {
    }

    /// <summary>Makes textures that can be drawn on.</summary>
    /// <param name="parameters">The bits of colour, depth and stencil.</param>
    /// <param name="targets">The number of textures of colour.</param>
    /// <param name="width">The width in texels.</param>
    /// <param name="height">The height in texels.</param>
    public abstract IRenderTexture CreateRenderTexture(RenderParameters parameters, int targets, int width,
        int height);

    /// <summary>Makes a texture that can be drawn on.</summary>
    /// <param name="parameters">The bits of colour, depth and stencil.</param>
    /// <param name="width">The width in texels.</param>
    /// <param name="height">The height in texels.</param>
    public abstract IRenderTexture CreateRenderTexture(RenderParameters parameters, int width, int height);

    /// <summary>Makes a texture.</summary>
    /// <param name="textureType">Its kind.</param>
    public abstract ITextureUnit CreateTextureUnit(TextureType textureType);

    /// <summary>Makes a two-dimensional texture.</summary>
    public abstract ITextureUnit CreateTextureUnit();

    /// <summary>Makes a descriptor set.</summary>
    /// <param name="shader">The program that reads it.</param>
    public abstract IDescriptorSet CreateDescriptorSet(ShaderProgram shader);

    /// <summary>Makes a cube map that can be drawn on.</summary>
    /// <param name="parameters">The bits of colour, depth and stencil.</param>
    /// <param name="width">The width of a face in texels.</param>
    /// <param name="height">The height of a face in texels.</param>
    public abstract IRenderTexture CreateCubeRenderTexture(RenderParameters parameters, int width,
        int height);

    /// <summary>Makes a target that draws in a window.</summary>
    /// <param name="parameters">The bits of colour, depth and stencil.</param>
    /// <param name="handle">The window.</param>
    public abstract IRenderWindow CreateRenderWindow(RenderParameters parameters, WindowHandle handle);

    /// <summary>Makes a vertex buffer.</summary>
    /// <param name="declaration">The fields of its vertices.</param>
    public abstract IVertexBuffer CreateVertexBuffer(VertexDeclaration declaration);

    /// <summary>Makes an index buffer.</summary>
    public abstract IIndexBuffer CreateIndexBuffer();

    /// <summary>Compiles a shader program.</summary>
    /// <param name="shaderSource">Its source.</param>
    public abstract ShaderProgram CreateShaderProgram(ShaderSource shaderSource);

    /// <summary>Makes a pipeline.</summary>
    /// <param name="shader">The shader program.</param>
    /// <param name="renderState">The fixed state.</param>
    /// <param name="vertexDeclaration">The fields of the vertices.</param>
    /// <param name="drawOperation">How vertices are assembled.</param>
    public abstract IPipeline CreatePipeline(
        ShaderProgram shader, RenderState renderState, VertexDeclaration vertexDeclaration,
        DrawOperation drawOperation);

    /// <summary>Makes a buffer of uniform values.</summary>
    /// <param name="size">Its size in bytes.</param>
    public abstract IBuffer CreateUniformBuffer(int size);
}
