using System;

namespace Velbor.Voxlar.Render;

/// <summary>A buffer on a device.</summary>
public interface IBuffer : IDisposable
{
    /// <summary>The size in bytes.</summary>
    int Size { get; }

    /// <summary>Replaces the content.</summary>
    /// <param name="data">The new content.</param>
    void LoadData(byte[] data);
}
