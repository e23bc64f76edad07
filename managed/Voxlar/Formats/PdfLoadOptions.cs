namespace Velbor.Voxlar.Formats;

/// <summary>How PDF is read.</summary>
public class PdfLoadOptions : LoadOptions
{
    /// <summary>Makes options with their defaults.</summary>
    public PdfLoadOptions()
        : base(FileFormat.PDF)
    {
    }

    /// <summary>The password of an encrypted file; null for none.</summary>
    public byte[]? Password { get; set; }
}
