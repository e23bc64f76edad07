using System;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Turns the brightness of an image into the heights of a mesh.</summary>
internal static class HeightMap
{
    public static void Fill(Mesh mesh, TextureData heightMap, bool triangles, Matrix4 transform)
    {
        ArgumentNullException.ThrowIfNull(heightMap);
        int width = heightMap.Width;
        int height = heightMap.Height;
        if (width < 2 || height < 2)
            throw new ArgumentException("A height map has at least 2 x 2 pixels.", nameof(heightMap));

        using PixelMapping pixels = heightMap.MapPixels(PixelMapMode.ReadOnly, PixelFormat.L16);
        for (int row = 0; row < height; ++row)
        {
            for (int column = 0; column < width; ++column)
            {
                int at = row * pixels.Stride + 2 * column;
                double brightness = (pixels.Data[at] | pixels.Data[at + 1] << 8) / 65535.0;
                Vector3 point = new((double)column / (width - 1) - 0.5, brightness,
                    (double)row / (height - 1) - 0.5);
                mesh.ControlPointList.Add(new Vector4(point * transform, 1));
            }
        }
        for (int row = 0; row + 1 < height; ++row)
        {
            for (int column = 0; column + 1 < width; ++column)
            {
                int a = row * width + column;
                int below = a + width;
                if (triangles)
                {
                    mesh.CreatePolygon(a, below, below + 1);
                    mesh.CreatePolygon(a, below + 1, a + 1);
                }
                else
                {
                    mesh.CreatePolygon(a, below, below + 1, a + 1);
                }
            }
        }
    }
}
