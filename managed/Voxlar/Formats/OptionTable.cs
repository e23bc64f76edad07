using System;
using System.Collections.Generic;

namespace Velbor.Voxlar.Formats;

/// <summary>Which option classes belong to a family of formats.</summary>
internal static class OptionTable
{
    private sealed record Row(Func<FileFormat, LoadOptions>? Load, Func<FileFormat, SaveOptions>? Save);

    private static readonly Dictionary<FileFormatType, Row> Rows = new()
    {
        [FileFormatType.FBX] = new(f => new FbxLoadOptions(f), f => new FbxSaveOptions(f)),
        [FileFormatType.STL] = new(f => new StlLoadOptions(f.ContentType), f => new StlSaveOptions(f.ContentType)),
        [FileFormatType.WavefrontOBJ] = new(_ => new ObjLoadOptions(), _ => new ObjSaveOptions()),
        [FileFormatType.Discreet3DS] = new(_ => new Discreet3dsLoadOptions(), _ => new Discreet3dsSaveOptions()),
        [FileFormatType.COLLADA] = new(null, _ => new ColladaSaveOptions()),
        [FileFormatType.Universal3D] = new(_ => new U3dLoadOptions(), _ => new U3dSaveOptions()),
        [FileFormatType.PDF] = new(_ => new PdfLoadOptions(), _ => new PdfSaveOptions()),
        [FileFormatType.GLTF] = new(_ => new GltfLoadOptions(), f => new GltfSaveOptions(f)),
        [FileFormatType.PLY] = new(_ => new PlyLoadOptions(), _ => new PlySaveOptions()),
        [FileFormatType.X] = new(f => new XLoadOptions(f.ContentType), null),
        [FileFormatType.Draco] = new(null, _ => new DracoSaveOptions()),
        [FileFormatType.Rvm] = new(f => new RvmLoadOptions(f.ContentType), f => new RvmSaveOptions(f.ContentType)),
        [FileFormatType.USD] = new(null, f => new UsdSaveOptions(f)),
        [FileFormatType.AMF] = new(null, _ => new AmfSaveOptions()),
        [FileFormatType.HTML5] = new(null, _ => new Html5SaveOptions()),
        [FileFormatType.Velbor3DWeb] = new(null, _ => new VbrwSaveOptions()),
    };

    /// <summary>New options of the format's class, or plain ones where it has none.</summary>
    public static LoadOptions CreateLoadOptions(FileFormat format) =>
        Rows.GetValueOrDefault(format.FileFormatType)?.Load?.Invoke(format) ?? new LoadOptions(format);

    /// <summary>New options of the format's class, or plain ones where it has none.</summary>
    public static SaveOptions CreateSaveOptions(FileFormat format) =>
        Rows.GetValueOrDefault(format.FileFormatType)?.Save?.Invoke(format) ?? new SaveOptions(format);

    /// <summary>Whether options may be used with a format: plain options of no format or of the same family,
    /// or those of the format's own class.</summary>
    public static bool Fit(IOConfig options, FileFormat format)
    {
        if (options.FileFormat is { } told && told.FileFormatType != format.FileFormatType)
            return false;
        Type own = options is LoadOptions
            ? CreateLoadOptions(format).GetType()
            : CreateSaveOptions(format).GetType();
        return own == options.GetType() || options.GetType() == typeof(LoadOptions)
            || options.GetType() == typeof(SaveOptions);
    }

    /// <summary>The format itself, when it belongs to the family.</summary>
    /// <exception cref="ArgumentException">The format is of another family.</exception>
    public static FileFormat Checked(FileFormat format, FileFormatType family)
    {
        ArgumentNullException.ThrowIfNull(format);
        return format.FileFormatType == family
            ? format
            : throw new ArgumentException($"{format} is not one of the {family} formats.", nameof(format));
    }
}
