namespace Velbor.Voxlar.Render;

/// <summary>An effect on a drawn image.</summary>
public abstract class PostProcessing : VbrObject
{
    private protected PostProcessing(string name)
        : base(name)
    {
    }

    /// <summary>The image the effect works on.</summary>
    public ITextureUnit? Input { get; set; }
}
