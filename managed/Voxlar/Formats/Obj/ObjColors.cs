using System;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>The colours of a geometry by vertex, as OBJ and PLY keep them.</summary>
internal static class ObjColors
{
    /// <summary>
    /// The colour of each control point, with a NaN alpha where it has none; of colours by corner or polygon
    /// the first that is met. Null when there are none.
    /// </summary>
    public static Vector4[]? Of(Geometry? geometry)
    {
        if (geometry?.GetElement(VertexElementType.VertexColor)
            is not VertexElementVertexColor { DataList.Count: > 0 } element)
            return null;
        Vector4[] colors = new Vector4[geometry.ControlPointList.Count];
        Array.Fill(colors, new Vector4(0, 0, 0, double.NaN));
        if (element.MappingMode is MappingMode.ControlPoint or MappingMode.AllSame)
        {
            for (int i = 0; i < colors.Length; i++)
                Set(i, element.ValueIndex(i, -1, -1));
        }
        else if (geometry is Mesh mesh)
        {
            ReadOnlySpan<int> corners = mesh.PolygonStore.Corners;
            for (int polygon = 0; polygon < mesh.PolygonCount; polygon++)
            {
                int start = mesh.PolygonStore.Start(polygon);
                for (int corner = start; corner < start + mesh.PolygonStore.Size(polygon); corner++)
                {
                    if (corners[corner] < colors.Length && double.IsNaN(colors[corners[corner]].w))
                        Set(corners[corner], element.ValueIndex(corners[corner], corner, polygon));
                }
            }
        }
        return colors;

        void Set(int point, int value)
        {
            if (value >= 0)
                colors[point] = element.DataList[value];
        }
    }
}
