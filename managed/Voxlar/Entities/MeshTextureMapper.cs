using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Finds texture coordinates of meshes.</summary>
internal static class MeshTextureMapper
{
    /// <summary>
    /// Projects each corner onto the side of the bounding box that its normal points to; the box is scaled to
    /// the unit cube.
    /// </summary>
    public static VertexElementUV Generate(Mesh mesh, VertexElementNormal normals)
    {
        BoundingBox box = mesh.GetBoundingBox();
        Vector3 size = box.Size;
        size = new Vector3(size.x == 0 ? 1 : size.x, size.y == 0 ? 1 : size.y, size.z == 0 ? 1 : size.z);
        VertexElementUV result = new() { MappingMode = MappingMode.PolygonVertex };
        PolygonStore polygons = mesh.PolygonStore;
        for (int i = 0; i < polygons.Count; ++i)
        {
            int corner = polygons.Start(i);
            foreach (int index in polygons.Polygon(i))
            {
                int value = normals.ValueIndex(index, corner++, i);
                Vector3 normal = value < 0 ? Vector3.YAxis : new Vector3(normals.DataList[value]);
                Vector3 p = MeshPoints.At(mesh, index) - box.Minimum;
                Vector2 uv = Project(new Vector3(p.x / size.x, p.y / size.y, p.z / size.z), normal);
                result.DataList.Add(new Vector4(uv.x, uv.y, 0, 1));
            }
        }
        return result;
    }

    // Each side is laid out as it is seen from outside with its upper edge upward, top and bottom as seen
    // with z downward.
    private static Vector2 Project(Vector3 p, Vector3 normal)
    {
        double x = Math.Abs(normal.x);
        double y = Math.Abs(normal.y);
        double z = Math.Abs(normal.z);
        if (x > y && x >= z)
            return new Vector2(normal.x > 0 ? 1 - p.z : p.z, p.y);
        if (y >= x && y >= z)
            return new Vector2(p.x, normal.y > 0 ? 1 - p.z : p.z);
        return new Vector2(normal.z > 0 ? p.x : 1 - p.x, p.y);
    }
}
