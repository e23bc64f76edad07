using System;
using System.Collections.Generic;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Shading;

namespace Velbor.Voxlar.Render;

/// <summary>
/// Draws scenes on a device. This build drives no device, so <see cref="CreateRenderer"/> refuses; the class
/// is the frame that a driver fills.
/// </summary>
public abstract class Renderer : IDisposable
{
    private protected Renderer()
    {
    }

    /// <summary>The shader programs used with <see cref="PresetShaders.Customized"/>.</summary>
    public ShaderSet? ShaderSet { get; set; }

    /// <summary>The values that shaders can read.</summary>
    public RendererVariableManager Variables { get; } = new();

    /// <summary>Which shader set is used.</summary>
    public PresetShaders PresetShaders { get; set; }

    /// <summary>Makes the objects of the device.</summary>
    public abstract RenderFactory RenderFactory { get; }

    /// <summary>The folders in which textures are looked for.</summary>
    public List<string> AssetDirectories { get; } = new();

    /// <summary>The effects on the drawn image, in order.</summary>
    public IList<PostProcessing> PostProcessings { get; } = new List<PostProcessing>();

    /// <summary>Whether shadows are drawn.</summary>
    public bool EnableShadows { get; set; }

    /// <summary>The target being drawn on.</summary>
    public IRenderTarget? RenderTarget { get; private protected set; }

    /// <summary>The node being drawn.</summary>
    public Node? Node { get; set; }

    /// <summary>The camera or light through which is drawn.</summary>
    public Frustum? Frustum { get; set; }

    /// <summary>What the renderer is doing.</summary>
    public RenderStage RenderStage { get; private protected set; }

    /// <summary>The material being drawn with.</summary>
    public Material? Material { get; set; }

    /// <summary>The shader program being drawn with.</summary>
    public ShaderProgram? Shader { get; set; }

    /// <summary>Draws the entities that have no renderer of their own.</summary>
    public EntityRenderer? FallbackEntityRenderer { get; set; }

    /// <summary>Makes a renderer for the system's device.</summary>
    /// <exception cref="NotSupportedException">Always in this build, which drives no device.</exception>
    public static Renderer CreateRenderer() => throw RenderingUnavailable.Error();

    /// <summary>Drops what is kept on the device.</summary>
    public abstract void ClearCache();

    /// <summary>Gives a built-in effect.</summary>
    /// <param name="name">The name of the effect.</param>
    /// <returns>The effect, or null when there is none of that name.</returns>
    public abstract PostProcessing? GetPostProcessing(string name);

    /// <summary>Runs an effect.</summary>
    /// <param name="postProcessing">The effect.</param>
    /// <param name="result">The target that takes the image.</param>
    public abstract void Execute(PostProcessing postProcessing, IRenderTarget result);

    /// <summary>Makes an entity renderer known.</summary>
    /// <param name="renderer">The entity renderer.</param>
    public abstract void RegisterEntityRenderer(EntityRenderer renderer);

    /// <summary>Draws all viewports of a target.</summary>
    /// <param name="renderTarget">The target.</param>
    public abstract void Render(IRenderTarget renderTarget);

    /// <summary>Frees the device.</summary>
    public abstract void Dispose();
}
