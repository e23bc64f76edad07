using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Reads control points of meshes whose indices may be wrong.</summary>
internal static class MeshPoints
{
    /// <summary>Gives a control point.</summary>
    /// <exception cref="InvalidOperationException">There is none of that index.</exception>
    public static Vector3 At(Mesh mesh, int index) => index < mesh.ControlPointList.Count
        ? new Vector3(mesh.ControlPointList[index])
        : throw new InvalidOperationException(
            $"A polygon uses control point {index}, but there are {mesh.ControlPointList.Count}.");
}
