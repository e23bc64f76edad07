namespace Velbor.Voxlar.Render;

/// <summary>Takes drawing commands for a device.</summary>
public interface ICommandList
{
    /// <summary>Draws a part of the bound vertices.</summary>
    /// <param name="start">The first vertex.</param>
    /// <param name="count">The number of vertices.</param>
    void Draw(int start, int count);

    /// <summary>Draws all bound vertices.</summary>
    void Draw();

    /// <summary>Draws with all bound indices.</summary>
    void DrawIndex();

    /// <summary>Draws with a part of the bound indices.</summary>
    /// <param name="start">The first index.</param>
    /// <param name="count">The number of indices.</param>
    void DrawIndex(int start, int count);

    /// <summary>Hands push constants to a shader.</summary>
    /// <param name="stage">The stage of the shader.</param>
    /// <param name="data">The bytes.</param>
    void PushConstants(ShaderStage stage, byte[] data);

    /// <summary>Hands push constants to a shader.</summary>
    /// <param name="stage">The stage of the shader.</param>
    /// <param name="data">The bytes.</param>
    /// <param name="size">How many of the bytes count.</param>
    void PushConstants(ShaderStage stage, byte[] data, int size);

    /// <summary>Binds a pipeline.</summary>
    /// <param name="pipeline">The pipeline.</param>
    void BindPipeline(IPipeline pipeline);

    /// <summary>Binds vertices.</summary>
    /// <param name="vertexBuffer">The vertices.</param>
    void BindVertexBuffer(IVertexBuffer vertexBuffer);

    /// <summary>Binds indices.</summary>
    /// <param name="indexBuffer">The indices.</param>
    void BindIndexBuffer(IIndexBuffer indexBuffer);

    /// <summary>Binds a descriptor set.</summary>
    /// <param name="descriptorSet">The descriptor set.</param>
    void BindDescriptorSet(IDescriptorSet descriptorSet);
}
