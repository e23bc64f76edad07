using System.Collections.Generic;
using Velbor.Voxlar.Formats.Text;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// Statements of one kind (f, l or p), as tables: the corners of all, and what held when each was read.
/// </summary>
internal sealed class ObjElements
{
    /// <summary>The index, from 0, that stands for none.</summary>
    public const int None = -1;

    /// <summary>The vertices of all corners, from 0.</summary>
    public readonly IntBuffer Vertices = new();

    /// <summary>The texture coordinates of all corners, from 0, or <see cref="None"/>.</summary>
    public readonly IntBuffer TexCoords = new();

    /// <summary>The normals of all corners, from 0, or <see cref="None"/>.</summary>
    public readonly IntBuffer Normals = new();

    /// <summary>The place behind the last corner of each element.</summary>
    public readonly IntBuffer Ends = new();

    /// <summary>The place in <see cref="ObjFile.Groups"/> of each element.</summary>
    public readonly IntBuffer Groups = new();

    /// <summary>
    /// The place in <see cref="ObjFile.Materials"/> of each element, or <see cref="None"/>.
    /// </summary>
    public readonly IntBuffer Materials = new();

    /// <summary>
    /// The smoothing group of each element; 0 for off, <see cref="None"/> where none was told.
    /// </summary>
    public readonly IntBuffer Smoothing = new();

    /// <summary>How many elements there are.</summary>
    public int Count => Ends.Count;

    /// <summary>The place of the first corner of an element.</summary>
    public int Start(int element) => element == 0 ? 0 : Ends.Items[element - 1];

    /// <summary>The place behind the last corner of an element.</summary>
    public int End(int element) => Ends.Items[element];
}

/// <summary>What a run of elements belongs to.</summary>
/// <param name="Object">The name of the object; null where none was told.</param>
/// <param name="Name">The names of the groups, as they stand in the file; null where none was told.</param>
internal sealed record ObjGroup(string? Object, string? Name)
{
    /// <summary>What the run is called in the scene.</summary>
    public string Title => Name ?? Object ?? "";
}

/// <summary>An OBJ file as it is stored.</summary>
internal sealed class ObjFile
{
    /// <summary>The vertices: x, y, z and w of each.</summary>
    public readonly DoubleBuffer Vertices = new();

    /// <summary>
    /// The colours: r, g, b and a of each vertex, NaN where it has none; empty when no vertex has one.
    /// </summary>
    public readonly DoubleBuffer Colors = new();

    /// <summary>The texture coordinates: u, v and w of each.</summary>
    public readonly DoubleBuffer TexCoords = new();

    /// <summary>The normals: x, y and z of each.</summary>
    public readonly DoubleBuffer Normals = new();

    /// <summary>The faces, of three corners or more.</summary>
    public readonly ObjElements Faces = new();

    /// <summary>The lines, and faces of two corners.</summary>
    public readonly ObjElements Lines = new();

    /// <summary>The point statements, and faces and lines of one corner.</summary>
    public readonly ObjElements Points = new();

    /// <summary>The groups in the order in which they were first told; the first one has no names.</summary>
    public readonly List<ObjGroup> Groups = [];

    /// <summary>The names of the materials in the order in which they were first told.</summary>
    public readonly List<string> Materials = [];

    /// <summary>The names of the material files, as they stand in the file.</summary>
    public readonly List<string> Libraries = [];

    /// <summary>How many vertices there are.</summary>
    public int VertexCount => Vertices.Count / 4;

    /// <summary>How many texture coordinates there are.</summary>
    public int TexCoordCount => TexCoords.Count / 3;

    /// <summary>How many normals there are.</summary>
    public int NormalCount => Normals.Count / 3;
}
