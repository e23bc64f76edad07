using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>A vertex element that has indices.</summary>
public interface IIndexedVertexElement
{
    /// <summary>The indices.</summary>
    IList<int> Indices { get; }
}
