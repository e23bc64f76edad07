namespace Velbor.Voxlar;

/// <summary>A family of file formats, whatever the version and the content.</summary>
public sealed class FileFormatType
{
    /// <summary>Maya scenes.</summary>
    public static readonly FileFormatType Maya = new("Maya", ".ma");

    /// <summary>FBX.</summary>
    public static readonly FileFormatType FBX = new("FBX", ".fbx");

    /// <summary>STL.</summary>
    public static readonly FileFormatType STL = new("STL", ".stl");

    /// <summary>Wavefront OBJ.</summary>
    public static readonly FileFormatType WavefrontOBJ = new("WavefrontOBJ", ".obj");

    /// <summary>3DS.</summary>
    public static readonly FileFormatType Discreet3DS = new("Discreet3DS", ".3ds");

    /// <summary>COLLADA.</summary>
    public static readonly FileFormatType COLLADA = new("COLLADA", ".dae");

    /// <summary>Universal 3D.</summary>
    public static readonly FileFormatType Universal3D = new("Universal3D", ".u3d");

    /// <summary>PDF with 3D content.</summary>
    public static readonly FileFormatType PDF = new("PDF", ".pdf");

    /// <summary>glTF.</summary>
    public static readonly FileFormatType GLTF = new("GLTF", ".gltf");

    /// <summary>DXF.</summary>
    public static readonly FileFormatType DXF = new("DXF", ".dxf");

    /// <summary>PLY.</summary>
    public static readonly FileFormatType PLY = new("PLY", ".ply");

    /// <summary>DirectX X files.</summary>
    public static readonly FileFormatType X = new("X", ".x");

    /// <summary>Draco.</summary>
    public static readonly FileFormatType Draco = new("Draco", ".drc");

    /// <summary>3MF.</summary>
    public static readonly FileFormatType Microsoft3MF = new("Microsoft3MF", ".3mf");

    /// <summary>RVM.</summary>
    public static readonly FileFormatType Rvm = new("Rvm", ".rvm");

    /// <summary>ASE.</summary>
    public static readonly FileFormatType ASE = new("ASE", ".ase");

    /// <summary>ZIP archives with a scene inside.</summary>
    public static readonly FileFormatType Zip = new("Zip", ".zip");

    /// <summary>USD.</summary>
    public static readonly FileFormatType USD = new("USD", ".usd");

    /// <summary>PCD point clouds.</summary>
    public static readonly FileFormatType Pcd = new("Pcd", ".pcd");

    /// <summary>XYZ point clouds.</summary>
    public static readonly FileFormatType Xyz = new("Xyz", ".xyz");

    /// <summary>IFC.</summary>
    public static readonly FileFormatType IFC = new("IFC", ".ifc");

    /// <summary>JT.</summary>
    public static readonly FileFormatType SiemensJT = new("SiemensJT", ".jt");

    /// <summary>AMF.</summary>
    public static readonly FileFormatType AMF = new("AMF", ".amf");

    /// <summary>VRML.</summary>
    public static readonly FileFormatType VRML = new("VRML", ".wrl");

    /// <summary>A web page that shows the scene.</summary>
    public static readonly FileFormatType HTML5 = new("HTML5", ".html");

    /// <summary>The compressed web format of this library.</summary>
    public static readonly FileFormatType Velbor3DWeb = new("Velbor3DWeb", ".v3w");

    private readonly string _name;

    private FileFormatType(string name, string extension)
    {
        _name = name;
        Extension = extension;
    }

    /// <summary>The usual file extension, in lower case with its dot.</summary>
    public string Extension { get; }

    /// <summary>The name of the family.</summary>
    public override string ToString() => _name;
}
