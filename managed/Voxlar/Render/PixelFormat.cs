namespace Velbor.Voxlar.Render;

/// <summary>
/// The layout of a pixel. Where every component has 8 bits, the bytes stand in memory in the order of the
/// name: the first byte of <c>R8G8B8A8</c> is red. The other packed formats are little-endian integers whose
/// first named component is in the most significant bits. A and L are alpha and luminance, X is unused.
/// </summary>
public enum PixelFormat
{
    Unknown = 0,
    L8 = 1,
    L16 = 2,
    A8 = 3,
    A4L4 = 4,
    ByteLA = 5,
    R5G6B5 = 6,
    B5G6R5 = 7,
    R3G3B2 = 8,
    A4R4G4B4 = 9,
    A1R5G5B5 = 10,
    R8G8B8 = 11,
    B8G8R8 = 12,
    A8R8G8B8 = 13,
    A8B8G8R8 = 14,
    B8G8R8A8 = 15,
    R8G8B8A8 = 16,
    X8R8G8B8 = 17,
    X8B8G8R8 = 18,
    A2R10G10B10 = 19,
    A2B10G10R10 = 20,
    Dxt1 = 21,
    Dxt2 = 22,
    Dxt3 = 23,
    Dxt4 = 24,
    Dxt5 = 25,
    Float16R = 26,
    Float16RGB = 27,
    Float16RGBA = 28,
    Float32R = 29,
    Float32RGB = 30,
    Float32RGBA = 31,
    Float16GR = 32,
    Float32GR = 33,
    Depth = 34,
    ShortRGBA = 35,
    ShortGR = 36,
    ShortRGB = 37,
    R32UInt = 38,
    R32G32UInt = 39,
    R32G32B32A32UInt = 40,
    R8 = 41,
    G8 = 42,
    B8 = 43,
}
