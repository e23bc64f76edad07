using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Entities;

/// <summary>Adds polygons of any number of corners to a mesh, one corner after the other.</summary>
public class PolygonBuilder
{
    private readonly Mesh _mesh;
    private readonly List<int> _corners = new();
    private bool _open;

    /// <summary>Makes a builder.</summary>
    /// <param name="mesh">The mesh that gets the polygons.</param>
    public PolygonBuilder(Mesh mesh)
    {
        ArgumentNullException.ThrowIfNull(mesh);
        _mesh = mesh;
    }

    /// <summary>Begins a polygon.</summary>
    /// <exception cref="InvalidOperationException">The last polygon has not been ended.</exception>
    public void Begin()
    {
        if (_open)
            throw new InvalidOperationException("The last polygon has not been ended.");
        _open = true;
        _corners.Clear();
    }

    /// <summary>Adds a corner.</summary>
    /// <param name="index">The index of its control point.</param>
    /// <exception cref="InvalidOperationException">No polygon has been begun.</exception>
    public void AddVertex(int index)
    {
        if (!_open)
            throw new InvalidOperationException("No polygon has been begun.");
        ArgumentOutOfRangeException.ThrowIfNegative(index);
        _corners.Add(index);
    }

    /// <summary>Ends the polygon and adds it to the mesh. A polygon that is refused is dropped.</summary>
    /// <exception cref="InvalidOperationException">No polygon has been begun.</exception>
    /// <exception cref="ArgumentException">The polygon has fewer than three corners.</exception>
    public void End()
    {
        if (!_open)
            throw new InvalidOperationException("No polygon has been begun.");
        _open = false;
        _mesh.CreatePolygon(_corners.ToArray());
    }
}
