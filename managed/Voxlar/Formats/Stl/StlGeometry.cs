using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Stl;

/// <summary>The geometry of facets.</summary>
internal static class StlGeometry
{
    /// <summary>The normal of a polygon by its first three corners; zero where these lie on a line.</summary>
    public static Vector3 Normal(ReadOnlySpan<int> polygon, List<Vector4> points) =>
        Normal(points[polygon[0]], points[polygon[1]], points[polygon[2]]);

    /// <summary>The normal of a triangle; zero where its corners lie on a line.</summary>
    public static Vector3 Normal(Vector4 a, Vector4 b, Vector4 c)
    {
        double ux = b.x - a.x, uy = b.y - a.y, uz = b.z - a.z;
        double vx = c.x - a.x, vy = c.y - a.y, vz = c.z - a.z;
        double x = uy * vz - uz * vy;
        double y = uz * vx - ux * vz;
        double z = ux * vy - uy * vx;
        double length = Math.Sqrt(x * x + y * y + z * z);
        return length > 0 ? new Vector3(x / length, y / length, z / length) : default;
    }
}
