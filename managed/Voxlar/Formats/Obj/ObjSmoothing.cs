using System.Numerics;
using Velbor.Voxlar.Entities;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>The smoothing groups of a mesh as OBJ counts them.</summary>
internal readonly struct ObjSmoothing
{
    private readonly VertexElementSmoothingGroup? _masks;
    private readonly int[]? _numbers;

    public ObjSmoothing(Mesh mesh)
    {
        _masks = (VertexElementSmoothingGroup?)mesh.GetElement(VertexElementType.SmoothingGroup);
        bool isKept = mesh.GetProperty(ObjNames.SmoothingGroups) is int[] numbers
            && numbers.Length == mesh.PolygonCount && _masks is not null;
        _numbers = isKept ? (int[])mesh.GetProperty(ObjNames.SmoothingGroups)! : null;
    }

    /// <summary>
    /// The group of a polygon; 0 for off, <see cref="ObjElements.None"/> where the mesh tells none.
    /// </summary>
    public int Of(int polygon)
    {
        if (_masks is null)
            return ObjElements.None;
        if (_numbers is not null)
            return _numbers[polygon];
        int value = _masks.ValueIndex(0, 0, polygon);
        int mask = value < 0 ? 0 : _masks.Data[value];
        return mask == 0 ? 0 : BitOperations.TrailingZeroCount(mask) + 1;
    }
}
