using System;

namespace Velbor.Voxlar.Render;

/// <summary>
/// Draws one kind of entity for a renderer. The methods of this class do nothing; a renderer of entities
/// overrides those it needs, and names in its features those that it wants to be called at the frame's begin
/// and end.
/// </summary>
public class EntityRenderer
{
    /// <summary>Makes an entity renderer.</summary>
    /// <param name="key">The key of the entities it draws.</param>
    /// <param name="features">The calls it wants.</param>
    public EntityRenderer(string key, EntityRendererFeatures features)
    {
        ArgumentNullException.ThrowIfNull(key);
        Key = new EntityRendererKey(key);
        Features = features;
    }

    /// <summary>Makes an entity renderer that wants to render alone.</summary>
    /// <param name="key">The key of the entities it draws.</param>
    public EntityRenderer(string key)
        : this(key, EntityRendererFeatures.Default)
    {
    }

    internal EntityRendererKey Key { get; }

    internal EntityRendererFeatures Features { get; }

    /// <summary>Called once before the first frame.</summary>
    /// <param name="renderer">The renderer this one belongs to.</param>
    public virtual void Initialize(Renderer renderer)
    {
    }

    /// <summary>Called when the scene has changed, to drop what was kept from it.</summary>
    public virtual void ResetSceneCache()
    {
    }

    /// <summary>
    /// Called at the begin of each frame, with <see cref="EntityRendererFeatures.FrameBegin"/>.
    /// </summary>
    /// <param name="renderer">The renderer.</param>
    /// <param name="renderQueue">The queue of the frame.</param>
    public virtual void FrameBegin(Renderer renderer, IRenderQueue renderQueue)
    {
    }

    /// <summary>
    /// Called at the end of each frame, with <see cref="EntityRendererFeatures.FrameEnd"/>.
    /// </summary>
    /// <param name="renderer">The renderer.</param>
    /// <param name="renderQueue">The queue of the frame.</param>
    public virtual void FrameEnd(Renderer renderer, IRenderQueue renderQueue)
    {
    }

    /// <summary>Called for each visible entity, to put what is drawn of it into the queue.</summary>
    /// <param name="renderer">The renderer.</param>
    /// <param name="queue">The queue of the frame.</param>
    /// <param name="node">The node the entity hangs on.</param>
    /// <param name="entity">The entity.</param>
    public virtual void PrepareRenderQueue(Renderer renderer, IRenderQueue queue, Node node, Entity entity)
    {
    }

    /// <summary>Called for each entry that was put into the queue, to draw it.</summary>
    /// <param name="renderer">The renderer.</param>
    /// <param name="commandList">Takes the drawing commands.</param>
    /// <param name="node">The node the entity hangs on.</param>
    /// <param name="renderableResource">The resource that was queued.</param>
    /// <param name="subEntity">The index of the part of the entity.</param>
    public virtual void RenderEntity(
        Renderer renderer, ICommandList commandList, Node node, object? renderableResource, int subEntity)
    {
    }

    /// <summary>Called when the renderer ends, to free what was made.</summary>
    public virtual void Dispose()
    {
    }
}
