namespace Velbor.Voxlar.Render;

/// <summary>What is to be drawn in a frame.</summary>
public interface IRenderQueue
{
    /// <summary>Adds something to be drawn.</summary>
    /// <param name="groupId">The group it is drawn in.</param>
    /// <param name="pipeline">The pipeline it is drawn with.</param>
    /// <param name="renderableResource">What comes back to the entity renderer.</param>
    /// <param name="subEntity">The index of the part of the entity.</param>
    void Add(RenderQueueGroupId groupId, IPipeline pipeline, object? renderableResource, int subEntity);
}
