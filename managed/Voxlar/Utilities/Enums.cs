namespace Velbor.Voxlar.Utilities;

/// <summary>How far a bounding box reaches.</summary>
public enum BoundingBoxExtent
{
    /// <summary>The box holds nothing.</summary>
    Null = 0,
    /// <summary>The box has a finite minimum and maximum.</summary>
    Finite = 1,
    /// <summary>The box holds every point.</summary>
    Infinite = 2,
}

/// <summary>On which side a <see cref="TransformBuilder"/> adds a new transform.</summary>
public enum ComposeOrder
{
    /// <summary>The new transform works after those that are there.</summary>
    Append = 0,
    /// <summary>The new transform works before those that are there.</summary>
    Prepend = 1,
}

/// <summary>The order in which rotations about the fixed axes are applied; the first letter works
/// first.</summary>
public enum RotationOrder
{
    /// <summary>First about x, then y, then z.</summary>
    XYZ = 0,
    /// <summary>First about x, then z, then y.</summary>
    XZY = 1,
    /// <summary>First about y, then z, then x.</summary>
    YZX = 2,
    /// <summary>First about y, then x, then z.</summary>
    YXZ = 3,
    /// <summary>First about z, then x, then y.</summary>
    ZXY = 4,
    /// <summary>First about z, then y, then x.</summary>
    ZYX = 5,
}

/// <summary>
/// The data type of a vertex field. The low four bits give the number of components, the bits above them the
/// kind of a component: 1 single, 2 double, 3 byte, 4, 5 and 6 integers of 16, 32 and 64 bits.
/// </summary>
public enum VertexFieldDataType
{
    /// <summary>One single.</summary>
    Float = 17,
    /// <summary>Two singles.</summary>
    FVector2 = 18,
    /// <summary>Three singles.</summary>
    FVector3 = 19,
    /// <summary>Four singles.</summary>
    FVector4 = 20,
    /// <summary>One double.</summary>
    Double = 33,
    /// <summary>Two doubles.</summary>
    Vector2 = 34,
    /// <summary>Three doubles.</summary>
    Vector3 = 35,
    /// <summary>Four doubles.</summary>
    Vector4 = 36,
    /// <summary>Four bytes.</summary>
    ByteVector4 = 52,
    /// <summary>One 8-bit integer.</summary>
    Int8 = 49,
    /// <summary>One 16-bit integer.</summary>
    Int16 = 65,
    /// <summary>One 32-bit integer.</summary>
    Int32 = 81,
    /// <summary>One 64-bit integer.</summary>
    Int64 = 97,
}

/// <summary>What a vertex field means.</summary>
public enum VertexFieldSemantic
{
    /// <summary>The position of the vertex.</summary>
    Position = 0,
    /// <summary>The binormal.</summary>
    Binormal = 1,
    /// <summary>The normal.</summary>
    Normal = 2,
    /// <summary>The tangent.</summary>
    Tangent = 3,
    /// <summary>A texture coordinate.</summary>
    UV = 4,
    /// <summary>A colour.</summary>
    VertexColor = 5,
    /// <summary>The crease of the vertex.</summary>
    VertexCrease = 6,
    /// <summary>The crease of the edge.</summary>
    EdgeCrease = 7,
    /// <summary>Data of the user.</summary>
    UserData = 8,
    /// <summary>Whether the vertex is visible.</summary>
    Visibility = 9,
    /// <summary>The specular colour.</summary>
    Specular = 10,
    /// <summary>A weight.</summary>
    Weight = 11,
}
