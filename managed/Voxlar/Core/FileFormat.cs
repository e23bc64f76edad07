using System;
using System.Collections.Generic;
using System.IO;
using Velbor.Voxlar.Formats;

namespace Velbor.Voxlar;

/// <summary>A file format in one version and content. Formats are compared by reference.</summary>
public class FileFormat
{
    /// <summary>FBX 6.1, text.</summary>
    public static readonly FileFormat FBX6100ASCII =
        new("FBX6100ASCII", FileFormatType.FBX, new Version(6, 1), FileContentType.ASCII, ".fbx");

    /// <summary>FBX 6.1, binary.</summary>
    public static readonly FileFormat FBX6100Binary =
        new("FBX6100Binary", FileFormatType.FBX, new Version(6, 1), FileContentType.Binary, ".fbx");

    /// <summary>FBX 7.2, text.</summary>
    public static readonly FileFormat FBX7200ASCII =
        new("FBX7200ASCII", FileFormatType.FBX, new Version(7, 2), FileContentType.ASCII, ".fbx");

    /// <summary>FBX 7.2, binary.</summary>
    public static readonly FileFormat FBX7200Binary =
        new("FBX7200Binary", FileFormatType.FBX, new Version(7, 2), FileContentType.Binary, ".fbx");

    /// <summary>FBX 7.3, text.</summary>
    public static readonly FileFormat FBX7300ASCII =
        new("FBX7300ASCII", FileFormatType.FBX, new Version(7, 3), FileContentType.ASCII, ".fbx");

    /// <summary>FBX 7.3, binary.</summary>
    public static readonly FileFormat FBX7300Binary =
        new("FBX7300Binary", FileFormatType.FBX, new Version(7, 3), FileContentType.Binary, ".fbx");

    /// <summary>FBX 7.4, text.</summary>
    public static readonly FileFormat FBX7400ASCII =
        new("FBX7400ASCII", FileFormatType.FBX, new Version(7, 4), FileContentType.ASCII, ".fbx");

    /// <summary>FBX 7.4, binary.</summary>
    public static readonly FileFormat FBX7400Binary =
        new("FBX7400Binary", FileFormatType.FBX, new Version(7, 4), FileContentType.Binary, ".fbx");

    /// <summary>FBX 7.5, text.</summary>
    public static readonly FileFormat FBX7500ASCII =
        new("FBX7500ASCII", FileFormatType.FBX, new Version(7, 5), FileContentType.ASCII, ".fbx");

    /// <summary>FBX 7.5, binary.</summary>
    public static readonly FileFormat FBX7500Binary =
        new("FBX7500Binary", FileFormatType.FBX, new Version(7, 5), FileContentType.Binary, ".fbx");

    /// <summary>FBX 7.6, text.</summary>
    public static readonly FileFormat FBX7600ASCII =
        new("FBX7600ASCII", FileFormatType.FBX, new Version(7, 6), FileContentType.ASCII, ".fbx");

    /// <summary>FBX 7.6, binary.</summary>
    public static readonly FileFormat FBX7600Binary =
        new("FBX7600Binary", FileFormatType.FBX, new Version(7, 6), FileContentType.Binary, ".fbx");

    /// <summary>FBX 7.7, text.</summary>
    public static readonly FileFormat FBX7700ASCII =
        new("FBX7700ASCII", FileFormatType.FBX, new Version(7, 7), FileContentType.ASCII, ".fbx");

    /// <summary>FBX 7.7, binary.</summary>
    public static readonly FileFormat FBX7700Binary =
        new("FBX7700Binary", FileFormatType.FBX, new Version(7, 7), FileContentType.Binary, ".fbx");

    /// <summary>Maya scene, text.</summary>
    public static readonly FileFormat MayaASCII =
        new("MayaASCII", FileFormatType.Maya, new Version(1, 0), FileContentType.ASCII, ".ma");

    /// <summary>Maya scene, binary.</summary>
    public static readonly FileFormat MayaBinary =
        new("MayaBinary", FileFormatType.Maya, new Version(1, 0), FileContentType.Binary, ".mb");

    /// <summary>STL, binary.</summary>
    public static readonly FileFormat STLBinary =
        new("STLBinary", FileFormatType.STL, new Version(1, 0), FileContentType.Binary, ".stl");

    /// <summary>STL, text.</summary>
    public static readonly FileFormat STLASCII =
        new("STLASCII", FileFormatType.STL, new Version(1, 0), FileContentType.ASCII, ".stl");

    /// <summary>Wavefront OBJ.</summary>
    public static readonly FileFormat WavefrontOBJ =
        new("WavefrontOBJ", FileFormatType.WavefrontOBJ, new Version(1, 0), FileContentType.ASCII, ".obj");

    /// <summary>3DS.</summary>
    public static readonly FileFormat Discreet3DS =
        new("Discreet3DS", FileFormatType.Discreet3DS, new Version(3, 0), FileContentType.Binary, ".3ds");

    /// <summary>COLLADA.</summary>
    public static readonly FileFormat Collada =
        new("Collada", FileFormatType.COLLADA, new Version(1, 4), FileContentType.ASCII, ".dae");

    /// <summary>Universal 3D.</summary>
    public static readonly FileFormat Universal3D =
        new("Universal3D", FileFormatType.Universal3D, new Version(1, 0), FileContentType.Binary, ".u3d");

    /// <summary>glTF 1.0, JSON.</summary>
    public static readonly FileFormat GLTF =
        new("GLTF", FileFormatType.GLTF, new Version(1, 0), FileContentType.ASCII, ".gltf");

    /// <summary>glTF 2.0, JSON.</summary>
    public static readonly FileFormat GLTF2 =
        new("GLTF2", FileFormatType.GLTF, new Version(2, 0), FileContentType.ASCII, ".gltf");

    /// <summary>glTF 1.0, binary.</summary>
    public static readonly FileFormat GLTF_Binary =
        new("GLTF_Binary", FileFormatType.GLTF, new Version(1, 0), FileContentType.Binary, ".glb");

    /// <summary>glTF 2.0, binary.</summary>
    public static readonly FileFormat GLTF2_Binary =
        new("GLTF2_Binary", FileFormatType.GLTF, new Version(2, 0), FileContentType.Binary, ".glb");

    /// <summary>PDF with 3D content.</summary>
    public static readonly PdfFormat PDF =
        new("PDF", FileFormatType.PDF, new Version(1, 7), FileContentType.Binary, ".pdf");

    /// <summary>DXF.</summary>
    public static readonly FileFormat DXF =
        new("DXF", FileFormatType.DXF, new Version(1, 0), FileContentType.ASCII, ".dxf");

    /// <summary>PLY, text or binary.</summary>
    public static readonly PlyFormat PLY =
        new("PLY", FileFormatType.PLY, new Version(1, 0), FileContentType.Binary, ".ply");

    /// <summary>X file, binary.</summary>
    public static readonly FileFormat XBinary =
        new("XBinary", FileFormatType.X, new Version(3, 3), FileContentType.Binary, ".x");

    /// <summary>X file, text.</summary>
    public static readonly FileFormat XText =
        new("XText", FileFormatType.X, new Version(3, 3), FileContentType.ASCII, ".x");

    /// <summary>Draco compressed mesh.</summary>
    public static readonly DracoFormat Draco =
        new("Draco", FileFormatType.Draco, new Version(2, 2), FileContentType.Binary, ".drc");

    /// <summary>3MF.</summary>
    public static readonly FileFormat Microsoft3MF =
        new("Microsoft3MF", FileFormatType.Microsoft3MF, new Version(1, 0), FileContentType.Binary, ".3mf");

    /// <summary>RVM, text.</summary>
    public static readonly RvmFormat RvmText =
        new("RvmText", FileFormatType.Rvm, new Version(1, 0), FileContentType.ASCII, ".rvm");

    /// <summary>RVM, binary.</summary>
    public static readonly RvmFormat RvmBinary =
        new("RvmBinary", FileFormatType.Rvm, new Version(1, 0), FileContentType.Binary, ".rvm");

    /// <summary>ASE.</summary>
    public static readonly FileFormat ASE =
        new("ASE", FileFormatType.ASE, new Version(2, 0), FileContentType.ASCII, ".ase");

    /// <summary>IFC.</summary>
    public static readonly FileFormat IFC =
        new("IFC", FileFormatType.IFC, new Version(4, 0), FileContentType.ASCII, ".ifc");

    /// <summary>JT 8.</summary>
    public static readonly FileFormat SiemensJT8 =
        new("SiemensJT8", FileFormatType.SiemensJT, new Version(8, 0), FileContentType.Binary, ".jt");

    /// <summary>JT 9.</summary>
    public static readonly FileFormat SiemensJT9 =
        new("SiemensJT9", FileFormatType.SiemensJT, new Version(9, 0), FileContentType.Binary, ".jt");

    /// <summary>AMF.</summary>
    public static readonly FileFormat AMF =
        new("AMF", FileFormatType.AMF, new Version(1, 1), FileContentType.ASCII, ".amf");

    /// <summary>VRML 2.0.</summary>
    public static readonly FileFormat VRML =
        new("VRML", FileFormatType.VRML, new Version(2, 0), FileContentType.ASCII, ".wrl", ".vrml");

    /// <summary>The compressed web format of this library.</summary>
    public static readonly FileFormat Velbor3DWeb =
        new("Velbor3DWeb", FileFormatType.Velbor3DWeb, new Version(1, 0), FileContentType.Binary, ".v3w");

    /// <summary>A web page that shows the scene.</summary>
    public static readonly FileFormat HTML5 =
        new("HTML5", FileFormatType.HTML5, new Version(5, 0), FileContentType.ASCII, ".html", ".htm");

    /// <summary>A ZIP archive with a scene inside.</summary>
    public static readonly FileFormat Zip =
        new("Zip", FileFormatType.Zip, new Version(2, 0), FileContentType.Binary, ".zip");

    /// <summary>USD.</summary>
    public static readonly FileFormat USD =
        new("USD", FileFormatType.USD, new Version(1, 0), FileContentType.Binary, ".usd", ".usda", ".usdc");

    /// <summary>USD in an archive.</summary>
    public static readonly FileFormat USDZ =
        new("USDZ", FileFormatType.USD, new Version(1, 0), FileContentType.Binary, ".usdz");

    /// <summary>XYZ point cloud.</summary>
    public static readonly FileFormat Xyz =
        new("Xyz", FileFormatType.Xyz, new Version(1, 0), FileContentType.ASCII, ".xyz");

    /// <summary>PCD point cloud, text.</summary>
    public static readonly FileFormat Pcd =
        new("Pcd", FileFormatType.Pcd, new Version(0, 7), FileContentType.ASCII, ".pcd");

    /// <summary>PCD point cloud, binary.</summary>
    public static readonly FileFormat PcdBinary =
        new("PcdBinary", FileFormatType.Pcd, new Version(0, 7), FileContentType.Binary, ".pcd");

    private static readonly FileFormat[] All =
    [
        FBX6100ASCII, FBX6100Binary, FBX7200ASCII, FBX7200Binary, FBX7300ASCII, FBX7300Binary,
        FBX7400ASCII, FBX7400Binary, FBX7500ASCII, FBX7500Binary, FBX7600ASCII, FBX7600Binary,
        FBX7700ASCII, FBX7700Binary, MayaASCII, MayaBinary, STLBinary, STLASCII, WavefrontOBJ,
        Discreet3DS, Collada, Universal3D, GLTF, GLTF2, GLTF_Binary, GLTF2_Binary, PDF, DXF, PLY,
        XBinary, XText, Draco, Microsoft3MF, RvmText, RvmBinary, ASE, IFC, SiemensJT8, SiemensJT9, AMF,
        VRML, Velbor3DWeb, HTML5, Zip, USD, USDZ, Xyz, Pcd, PcdBinary,
    ];

    // Where formats share an extension, the one to write when only the extension is known; all others follow
    // the order of the table.
    private static readonly FileFormat[] Preferred =
        [FBX7500Binary, STLBinary, GLTF2, GLTF2_Binary, XText, RvmBinary, SiemensJT9, Pcd];

    private readonly string[] _extensions;

    internal FileFormat(
        string name, FileFormatType type, Version version, FileContentType contentType, params string[] extensions)
    {
        Name = name;
        FileFormatType = type;
        Version = version;
        ContentType = contentType;
        _extensions = extensions;
    }

    /// <summary>The version of the format.</summary>
    public Version Version { get; }

    /// <summary>Whether this build can write the format.</summary>
    public bool CanExport => FormatRegistry.Find(this).Writer is not null;

    /// <summary>Whether this build can read the format.</summary>
    public bool CanImport => FormatRegistry.Find(this).Reader is not null;

    /// <summary>The usual file extension, in lower case with its dot.</summary>
    public string Extension => _extensions[0];

    /// <summary>All file extensions, in lower case with their dots; a copy.</summary>
    public string[] Extensions => (string[])_extensions.Clone();

    /// <summary>Whether files hold text or binary data.</summary>
    public FileContentType ContentType { get; }

    /// <summary>The family of formats.</summary>
    public FileFormatType FileFormatType { get; }

    internal string Name { get; }

    internal static IReadOnlyList<FileFormat> Known => All;

    /// <summary>Finds the format of a stream by its content, and where that tells nothing by the
    /// extension.</summary>
    /// <param name="stream">The stream; it must be seekable, and its position is put back.</param>
    /// <param name="fileName">The file name; null or empty for none.</param>
    /// <returns>The format; null when neither tells it.</returns>
    /// <exception cref="ArgumentException">The stream cannot be read or not be sought in.</exception>
    public static FileFormat? Detect(Stream stream, string? fileName)
    {
        ArgumentNullException.ThrowIfNull(stream);
        if (!stream.CanRead || !stream.CanSeek)
            throw new ArgumentException("The stream must be readable and seekable.", nameof(stream));
        return FormatDetector.Decide(stream, fileName, null);
    }

    /// <summary>Finds the format of a file by its content, and where that tells nothing by the
    /// extension.</summary>
    /// <returns>The format; null when neither tells it.</returns>
    /// <exception cref="ImportException">The file cannot be opened.</exception>
    public static FileFormat? Detect(string fileName)
    {
        using Stream stream = SceneLoader.OpenFile(fileName);
        return Detect(stream, fileName);
    }

    /// <summary>The format to write for a file extension.</summary>
    /// <param name="extensionName">The extension in any case, with or without its dot.</param>
    /// <returns>The format; null when the extension is not known.</returns>
    public static FileFormat? GetFormatByExtension(string extensionName)
    {
        ArgumentNullException.ThrowIfNull(extensionName);
        string extension = (extensionName.StartsWith('.') ? "" : ".") + extensionName.ToLowerInvariant();
        bool Matches(FileFormat format) => Array.IndexOf(format._extensions, extension) >= 0;
        return Array.Find(Preferred, Matches) ?? Array.Find(All, Matches);
    }

    /// <summary>New options for reading this format, with their defaults.</summary>
    public LoadOptions CreateLoadOptions() => OptionTable.CreateLoadOptions(this);

    /// <summary>New options for writing this format, with their defaults.</summary>
    public SaveOptions CreateSaveOptions() => OptionTable.CreateSaveOptions(this);

    /// <summary>The name of the format.</summary>
    public override string ToString() => Name;
}
