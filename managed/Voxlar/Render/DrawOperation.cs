namespace Velbor.Voxlar.Render;

/// <summary>How vertices are assembled to primitives.</summary>
public enum DrawOperation
{
    Points = 0,
    Lines = 1,
    LineStrip = 2,
    Triangles = 3,
    TriangleStrip = 4,
    TriangleFan = 5,
}
