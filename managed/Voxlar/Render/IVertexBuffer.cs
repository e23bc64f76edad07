using System;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Render;

/// <summary>A buffer of vertices.</summary>
public interface IVertexBuffer : IBuffer
{
    /// <summary>The fields of a vertex.</summary>
    VertexDeclaration VertexDeclaration { get; }

    /// <summary>Takes the vertices of a mesh.</summary>
    /// <param name="mesh">The mesh.</param>
    void LoadData(TriMesh mesh);

    /// <summary>Takes vertices from an array of structs or numbers.</summary>
    /// <param name="array">The array.</param>
    void LoadData(Array array);
}
