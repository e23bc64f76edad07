using System;
using System.Collections.Generic;
using System.IO;
using System.Text;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats.Text;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Stl;

/// <summary>
/// Writes STL. Meshes are brought to their places in the scene and polygons cut into triangles; bodies are
/// turned into meshes first.
/// </summary>
/// <remarks>
/// In text each mesh is a solid of its name and numbers read back the same; a binary file has the facets of
/// all meshes and single precision. The normal of a facet is that of a normal element by polygon, else it is
/// computed. A binary file keeps colours by polygon in its attribute words, five bits for each component, and
/// takes the header and the words of the file that a mesh came from. STL holds no more: names of materials,
/// textures and shared vertices end here. Lines and points are refused.
/// </remarks>
internal sealed class StlWriter : ISceneWriter
{
    private const int HeaderSize = 80;

    public void Write(Stream stream, Scene scene, WriteContext context)
    {
        StlSaveOptions options = context.OptionsAs<StlSaveOptions>();
        List<PlacedEntity> placed =
            PlacedEntity.Of(scene, PlacedEntity.Flip(options.FlipCoordinateSystem), context);
        foreach (PlacedEntity item in placed)
        {
            if (item.Entity is not Mesh)
                throw context.Error(
                    "STL holds triangles only; it has no form for a "
                    + $"{item.Entity.GetType().Name} ('{item.Name}')");
        }
        TextOutput output = new(stream);
        if (context.Format == FileFormat.STLASCII)
            WriteText(output, placed, context);
        else
            WriteBinary(output, placed, context);
        output.Flush();
    }

    private static void WriteText(TextOutput output, List<PlacedEntity> placed, WriteContext context)
    {
        foreach (PlacedEntity item in placed)
        {
            output.Text("solid ");
            output.OneLine(item.Name);
            output.Text("\n");
            StlFacets facets = StlFacets.Of(item, keepsHeader: false, context);
            for (int i = 0; i < facets.Count; i++)
            {
                output.Bytes("facet normal"u8);
                Vector3 normal = facets.Normal(i);
                Numbers(output, normal.x, normal.y, normal.z);
                output.Bytes("outer loop\n"u8);
                for (int k = 0; k < 3; k++)
                {
                    Vector4 point = facets.Corner(i, k);
                    output.Bytes("vertex"u8);
                    Numbers(output, point.x, point.y, point.z);
                }
                output.Bytes("endloop\nendfacet\n"u8);
            }
            output.Text("endsolid ");
            output.OneLine(item.Name);
            output.Text("\n");
        }
        if (placed.Count == 0)
            output.Text("solid\nendsolid\n");
    }

    private static void Numbers(TextOutput output, double x, double y, double z)
    {
        output.Number(x);
        output.Number(y);
        output.Number(z);
        output.Byte((byte)'\n');
    }

    private static void WriteBinary(TextOutput output, List<PlacedEntity> placed, WriteContext context)
    {
        StlFacets[] meshes = new StlFacets[placed.Count];
        long count = 0;
        for (int i = 0; i < meshes.Length; i++)
        {
            meshes[i] = StlFacets.Of(placed[i], keepsHeader: meshes.Length == 1, context);
            count += meshes[i].Count;
        }
        if (count > uint.MaxValue)
            throw context.Error($"{count} facets are more than STL can count");
        output.Bytes(Header(placed));
        output.Integer(count, 4);
        foreach (StlFacets facets in meshes)
        {
            for (int i = 0; i < facets.Count; i++)
            {
                Vector3 normal = facets.Normal(i);
                Singles(output, normal.x, normal.y, normal.z);
                for (int k = 0; k < 3; k++)
                {
                    Vector4 point = facets.Corner(i, k);
                    Singles(output, point.x, point.y, point.z);
                }
                output.Integer(facets.Attribute(i), 2);
            }
        }
    }

    private static void Singles(TextOutput output, double x, double y, double z)
    {
        output.Single((float)x);
        output.Single((float)y);
        output.Single((float)z);
    }

    // The words of several files can mean colours in two ways; a header of one of them counts for it alone.
    private static byte[] Header(List<PlacedEntity> placed)
    {
        if (placed.Count == 1
            && placed[0].Entity.GetProperty(StlNames.Header) is byte[] { Length: HeaderSize } kept)
            return kept;
        byte[] header = new byte[HeaderSize];
        Encoding.ASCII.GetBytes("binary STL").CopyTo(header, 0);
        return header;
    }
}
