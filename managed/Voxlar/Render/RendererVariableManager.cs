using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Render;

/// <summary>The values of a renderer that shaders can read.</summary>
public class RendererVariableManager
{
    internal RendererVariableManager()
    {
    }

    /// <summary>The time since the renderer started, in seconds.</summary>
    public float WorldTime { get; internal set; }

    /// <summary>The position of the light that casts shadows.</summary>
    public FVector3 ShadowCaster { get; set; }

    /// <summary>The depth texture of the light that casts shadows.</summary>
    public ITextureUnit? Shadowmap { get; set; }

    /// <summary>From world space to the clip space of the light that casts shadows.</summary>
    public FMatrix4 MatrixLightSpace { get; set; } = FMatrix4.Identity;

    /// <summary>From world space to clip space.</summary>
    public FMatrix4 MatrixViewProjection => MatrixView.Concatenate(MatrixProjection);

    /// <summary>From the space of the drawn node to clip space.</summary>
    public FMatrix4 MatrixWorldViewProjection => MatrixWorld.Concatenate(MatrixViewProjection);

    /// <summary>From the space of the drawn node to world space.</summary>
    public FMatrix4 MatrixWorld { get; internal set; } = FMatrix4.Identity;

    /// <summary>The same for normals: the inverse transpose of <see cref="MatrixWorld"/>.</summary>
    public FMatrix4 MatrixWorldNormal => MatrixWorld.Inverse().Transpose();

    /// <summary>From view space to clip space.</summary>
    public FMatrix4 MatrixProjection { get; set; } = FMatrix4.Identity;

    /// <summary>From world space to view space.</summary>
    public FMatrix4 MatrixView { get; set; } = FMatrix4.Identity;

    /// <summary>The position of the camera in world space.</summary>
    public FVector3 CameraPosition { get; set; }

    /// <summary>What is added to depths in the shadow map against self-shadowing.</summary>
    public float DepthBias { get; set; } = 0.0015f;

    /// <summary>The size of the viewport in pixels.</summary>
    public FVector2 ViewportSize { get; internal set; }

    /// <summary>The ambient light of the scene, linear RGB.</summary>
    public FVector3 WorldAmbient { get; internal set; }
}
