using System;

namespace Velbor.Voxlar.Render;

/// <summary>Writes the bindings of a descriptor set; they take effect when it is disposed.</summary>
public abstract class DescriptorSetUpdater : IDisposable
{
    private protected DescriptorSetUpdater()
    {
    }

    /// <summary>Binds a part of a buffer to the next binding.</summary>
    /// <param name="buffer">The buffer.</param>
    /// <param name="offset">Where the part starts, in bytes.</param>
    /// <param name="size">The size of the part, in bytes.</param>
    /// <returns>This updater.</returns>
    public abstract DescriptorSetUpdater Bind(IBuffer buffer, int offset, int size);

    /// <summary>Binds a whole buffer to the next binding.</summary>
    /// <param name="buffer">The buffer.</param>
    /// <returns>This updater.</returns>
    public abstract DescriptorSetUpdater Bind(IBuffer buffer);

    /// <summary>Binds a whole buffer.</summary>
    /// <param name="binding">The number of the binding.</param>
    /// <param name="buffer">The buffer.</param>
    /// <returns>This updater.</returns>
    public abstract DescriptorSetUpdater Bind(int binding, IBuffer buffer);

    /// <summary>Binds a part of a buffer.</summary>
    /// <param name="binding">The number of the binding.</param>
    /// <param name="buffer">The buffer.</param>
    /// <param name="offset">Where the part starts, in bytes.</param>
    /// <param name="size">The size of the part, in bytes.</param>
    /// <returns>This updater.</returns>
    public abstract DescriptorSetUpdater Bind(int binding, IBuffer buffer, int offset, int size);

    /// <summary>Binds a texture to the next binding.</summary>
    /// <param name="texture">The texture.</param>
    /// <returns>This updater.</returns>
    public abstract DescriptorSetUpdater Bind(ITextureUnit texture);

    /// <summary>Binds a texture.</summary>
    /// <param name="binding">The number of the binding.</param>
    /// <param name="texture">The texture.</param>
    /// <returns>This updater.</returns>
    public abstract DescriptorSetUpdater Bind(int binding, ITextureUnit texture);

    /// <summary>Puts the bindings into effect.</summary>
    public abstract void Dispose();
}
