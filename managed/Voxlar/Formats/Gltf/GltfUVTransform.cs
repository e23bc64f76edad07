using System;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// A transform of texture coordinates: scaled, then rotated, then moved. When texture coordinates are turned
/// upside down on the way in or out, the transform has to be told in the other coordinates too, or the image
/// would move the wrong way.
/// </summary>
internal readonly record struct GltfUVTransform(double OffsetU, double OffsetV, double Rotation,
    double ScaleU, double ScaleV)
{
    internal static readonly GltfUVTransform Identity = new(0, 0, 0, 1, 1);

    /// <summary>
    /// The transform that does the same to (u, 1 - v) as this one does to (u, v). It is its own inverse.
    /// </summary>
    internal GltfUVTransform Flip()
    {
        (double sin, double cos) = Math.SinCos(Rotation);
        return new GltfUVTransform(OffsetU - sin * ScaleV, 1 - OffsetV - cos * ScaleV, -Rotation, ScaleU,
            ScaleV);
    }

    internal static GltfUVTransform Of(Shading.TextureBase texture) => new(
        texture.UVTranslation.x, texture.UVTranslation.y, texture.UVRotation.z, texture.UVScale.x,
            texture.UVScale.y);

    internal void ApplyTo(Shading.TextureBase texture)
    {
        texture.UVTranslation = new Vector2(OffsetU, OffsetV);
        texture.UVRotation = new Vector3(0, 0, Rotation);
        texture.UVScale = new Vector2(ScaleU, ScaleV);
    }
}
