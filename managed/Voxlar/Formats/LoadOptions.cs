namespace Velbor.Voxlar.Formats;

/// <summary>How a file is read.</summary>
public class LoadOptions : IOConfig
{
    internal LoadOptions(FileFormat? fileFormat)
        : base(fileFormat)
    {
    }
}
