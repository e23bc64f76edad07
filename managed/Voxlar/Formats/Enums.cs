namespace Velbor.Voxlar.Formats;

/// <summary>How transforms are written to COLLADA.</summary>
public enum ColladaTransformStyle
{
    /// <summary>As translation, rotation and scale.</summary>
    Components = 0,
    /// <summary>As a matrix.</summary>
    Matrix = 1,
}

/// <summary>How hard Draco compresses.</summary>
public enum DracoCompressionLevel
{
    /// <summary>Not at all.</summary>
    NoCompression = 0,
    /// <summary>In little time.</summary>
    Fast = 1,
    /// <summary>In some time.</summary>
    Standard = 2,
    /// <summary>As small as it can be.</summary>
    Optimal = 3,
}

/// <summary>How images are put into glTF files.</summary>
public enum GltfEmbeddedImageFormat
{
    /// <summary>As they are.</summary>
    NoChange = 0,
    /// <summary>As JPEG.</summary>
    JPEG = 1,
    /// <summary>As PNG.</summary>
    PNG = 2,
}

/// <summary>The lights of a scene in a PDF viewer.</summary>
public enum PdfLightingScheme
{
    /// <summary>The lights of the scene.</summary>
    Artwork = 0,
    /// <summary>No lights.</summary>
    None = 1,
    /// <summary>White lights.</summary>
    White = 2,
    /// <summary>Daylight.</summary>
    Day = 3,
    /// <summary>Night.</summary>
    Night = 4,
    /// <summary>Hard light.</summary>
    Hard = 5,
    /// <summary>Primary colours.</summary>
    Primary = 6,
    /// <summary>Blue light.</summary>
    Blue = 7,
    /// <summary>Red light.</summary>
    Red = 8,
    /// <summary>Light from six sides.</summary>
    Cube = 9,
    /// <summary>The light of construction programs.</summary>
    CAD = 10,
    /// <summary>A lamp at the viewer.</summary>
    Headlamp = 11,
}

/// <summary>How a PDF viewer draws a scene.</summary>
public enum PdfRenderMode
{
    /// <summary>Solid.</summary>
    Solid = 0,
    /// <summary>Solid with edges.</summary>
    SolidWireframe = 1,
    /// <summary>Transparent.</summary>
    Transparent = 2,
    /// <summary>Transparent with edges.</summary>
    TransparentWireframe = 3,
    /// <summary>The bounding box.</summary>
    BoundingBox = 4,
    /// <summary>The bounding box, transparent.</summary>
    TransparentBoundingBox = 5,
    /// <summary>The outline of the bounding box, transparent.</summary>
    TransparentBoundingBoxOutline = 6,
    /// <summary>Edges.</summary>
    Wireframe = 7,
    /// <summary>Shaded edges.</summary>
    ShadedWireframe = 8,
    /// <summary>Edges, hidden ones left out.</summary>
    HiddenWireframe = 9,
    /// <summary>Vertices.</summary>
    Vertices = 10,
    /// <summary>Shaded vertices.</summary>
    ShadedVertices = 11,
    /// <summary>As a drawing.</summary>
    Illustration = 12,
    /// <summary>Solid with its outline.</summary>
    SolidOutline = 13,
    /// <summary>As a shaded drawing.</summary>
    ShadedIllustration = 14,
}
