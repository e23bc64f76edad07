using Velbor.Voxlar.Entities;

namespace Velbor.Voxlar.Render;

/// <summary>A buffer of vertex indices.</summary>
public interface IIndexBuffer : IBuffer
{
    /// <summary>The type of the indices.</summary>
    IndexDataType IndexDataType { get; }

    /// <summary>The number of indices.</summary>
    int Count { get; }

    /// <summary>Takes the indices of a mesh.</summary>
    /// <param name="mesh">The mesh.</param>
    void LoadData(TriMesh mesh);

    /// <summary>Takes 32-bit indices.</summary>
    /// <param name="indices">The indices.</param>
    void LoadData(int[] indices);

    /// <summary>Takes unsigned 32-bit indices.</summary>
    /// <param name="indices">The indices.</param>
    void LoadData(uint[] indices);

    /// <summary>Takes 16-bit indices.</summary>
    /// <param name="indices">The indices.</param>
    void LoadData(short[] indices);
}
