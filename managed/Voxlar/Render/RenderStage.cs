namespace Velbor.Voxlar.Render;

/// <summary>What a renderer is doing.</summary>
public enum RenderStage
{
    Idle = 0,
    ShadowMap = 1,
    Scene = 2,
    PostProcessing = 3,
}
