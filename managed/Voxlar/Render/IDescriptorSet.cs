using System;

namespace Velbor.Voxlar.Render;

/// <summary>The buffers and textures that a shader program reads.</summary>
public interface IDescriptorSet : IDisposable
{
    /// <summary>Begins to change the bindings.</summary>
    /// <returns>The updater, to be disposed when all is bound.</returns>
    DescriptorSetUpdater BeginUpdate();
}
