using System;
using System.Collections.Generic;
using System.IO;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats.Text;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// Writes OBJ with a material library beside it. Entities are brought to their places in the scene; bodies
/// are turned into meshes and curves into polylines first.
/// </summary>
/// <remarks>
/// <para>Meshes, lines and point clouds become objects of their names (groups where they were read from
/// groups); a name that occurs again gets a number, since equal names would be one mesh when they are read.
/// The points of lines and clouds that a mesh of the same node has too are not written again. A vertex has
/// its w where that is not 1, or always with the option for it, and its colour; of colours by corner or
/// polygon a vertex gets the first. Of texture coordinates the diffuse ones are written. A smoothing mask of
/// several bits is written as its lowest.</para>
/// <para>Elements without a material behind some that have one are marked with "usemtl (null)".</para>
/// </remarks>
internal sealed class ObjWriter : ISceneWriter
{
    private WriteContext _context = null!;
    private ObjSaveOptions _options = null!;
    private TextOutput _output = null!;
    private ObjMaterialNames _materials = null!;
    private ObjGroupNames _groups = null!;

    // What OBJ statements are in force.
    private ObjGroup _group = new(null, null);
    private string? _material;
    private int _smoothing = ObjElements.None;

    // How many values were written before the present entity.
    private long _vertices;
    private long _texCoords;
    private long _normals;

    public void Write(Stream stream, Scene scene, WriteContext context)
    {
        _context = context;
        _options = context.OptionsAs<ObjSaveOptions>();
        _output = new TextOutput(stream);
        _materials = new ObjMaterialNames();
        _groups = new ObjGroupNames();
        List<PlacedEntity> placed = PlacedEntity.Of(scene, Transform(scene), context);
        if (!_options.PointCloud)
            WriteLibrary(scene, placed);
        PlacedEntity? mesh = null;
        Dictionary<Vector4, int>? shared = null;
        long sharedBase = 0;
        foreach (PlacedEntity item in placed)
        {
            if (item.Entity is Mesh || _options.PointCloud)
            {
                mesh = item;
                shared = null;
                sharedBase = _vertices;
                WriteMesh(item);
                continue;
            }
            if (mesh is not null && mesh.Node != item.Node)
                (mesh, shared) = (null, null);
            if (mesh is not null)
                shared ??= PlacesOf(mesh.ControlPoints);
            WriteSparse(item, shared, sharedBase, placed.Count == 1);
        }
        // Not a single byte would be no file to read.
        if (_output.IsEmpty)
            Line("# ", "no geometry");
        _output.Flush();
    }

    private static Dictionary<Vector4, int> PlacesOf(List<Vector4> points)
    {
        Dictionary<Vector4, int> places = new(points.Count);
        for (int i = 0; i < points.Count; i++)
            places.TryAdd(points[i], i);
        return places;
    }

    private Matrix4 Transform(Scene scene)
    {
        double scale = _options.ApplyUnitScale ? scene.AssetInfo.UnitScaleFactor : 1;
        Matrix4 unit = new(scale, 0, 0, 0, 0, scale, 0, 0, 0, 0, scale, 0, 0, 0, 0, 1);
        return unit * PlacedEntity.Flip(_options.FlipCoordinateSystem);
    }

    private void WriteLibrary(Scene scene, List<PlacedEntity> placed)
    {
        foreach (PlacedEntity item in placed)
        {
            foreach (Material material in item.Node.Materials)
                _materials.Add(material);
        }
        foreach (VbrObject item in scene.Library)
        {
            if (item is Material material)
                _materials.Add(material);
        }
        if (!_options.EnableMaterials || _materials.Count == 0)
            return;
        string name = (_context.BaseName.Length > 0 ? _context.BaseName : "materials") + ".mtl";
        using (Stream stream = _context.CreateSideFile(name))
            new MtlWriter(stream, _options, _context).Write(_materials);
        Line("mtllib ", name);
    }

    private void WriteMesh(PlacedEntity item)
    {
        if (_options.Verbose)
            Line("# ", $"{item.Entity.GetType().Name} {item.Name}: {item.ControlPoints.Count} vertices, "
                + $"{(item.Entity as Mesh)?.PolygonCount ?? 0} polygons");
        if (_options.PointCloud || item.Entity is not Mesh mesh)
        {
            WriteVertices(item, ObjColors.Of(item.Entity as Geometry));
            return;
        }
        ObjGroup[] groups = _groups.Of(item, out int[]? groupOfPolygon);
        SetGroup(groups[0]);
        WriteVertices(item, ObjColors.Of(mesh));
        VertexElementUV? texCoords = mesh.GetVertexElementOfUV(TextureMapping.Diffuse)
            ?? (VertexElementUV?)mesh.GetElement(VertexElementType.UV);
        var normals = (VertexElementNormal?)mesh.GetElement(VertexElementType.Normal);
        WriteTexCoords(texCoords);
        WriteNormals(normals, item);
        WriteFaces(item, mesh, groups, groupOfPolygon, texCoords, normals);
        _vertices += item.ControlPoints.Count;
        _texCoords += texCoords?.DataList.Count ?? 0;
        _normals += normals?.DataList.Count ?? 0;
    }

    private void WriteVertices(PlacedEntity item, Vector4[]? colors)
    {
        List<Vector4> points = item.ControlPoints;
        for (int i = 0; i < points.Count; i++)
            WriteVertex(item.Point(points[i]), colors is null ? null : colors[i]);
    }

    private void WriteVertex(Vector4 point, Vector4? color)
    {
        _output.Byte((byte)'v');
        _output.Number(point.x);
        _output.Number(point.y);
        _output.Number(point.z);
        bool hasW = _options.SerializeW || point.w != 1;
        if (hasW)
            _output.Number(point.w);
        if (color is { } c && !double.IsNaN(c.w))
        {
            _output.Number(c.x);
            _output.Number(c.y);
            _output.Number(c.z);
            // With w and a colour the alpha must follow, so that the values can be told apart by their
            // number.
            if (hasW || c.w != 1)
                _output.Number(c.w);
        }
        _output.Byte((byte)'\n');
    }

    private void WriteTexCoords(VertexElementUV? texCoords)
    {
        if (texCoords is null)
            return;
        foreach (Vector4 value in texCoords.DataList)
        {
            _output.Bytes("vt"u8);
            _output.Number(value.x);
            _output.Number(value.y);
            if (value.z != 0)
                _output.Number(value.z);
            _output.Byte((byte)'\n');
        }
    }

    private void WriteNormals(VertexElementNormal? normals, PlacedEntity item)
    {
        if (normals is null)
            return;
        foreach (Vector4 value in normals.DataList)
        {
            Vector3 normal = item.Normal(value);
            _output.Bytes("vn"u8);
            _output.Number(normal.x);
            _output.Number(normal.y);
            _output.Number(normal.z);
            _output.Byte((byte)'\n');
        }
    }

    private void WriteFaces(
        PlacedEntity item, Mesh mesh, ObjGroup[] groups, int[]? groupOfPolygon, VertexElementUV? texCoords,
        VertexElementNormal? normals)
    {
        PolygonStore polygons = mesh.PolygonStore;
        ReadOnlySpan<int> corners = polygons.Corners;
        var materials = (VertexElementMaterial?)mesh.GetElement(VertexElementType.Material);
        ObjSmoothing smoothing = new(mesh);
        for (int i = 0; i < polygons.Count; i++)
        {
            if (groupOfPolygon is not null)
                SetGroup(groups[groupOfPolygon[i]]);
            SetMaterial(item.Node, materials?.MaterialOf(i) ?? 0);
            SetSmoothing(smoothing.Of(i));
            int start = polygons.Start(i);
            int size = polygons.Size(i);
            _output.Byte((byte)'f');
            for (int k = 0; k < size; k++)
            {
                int corner = item.CornerAt(start, size, k);
                int point = corners[corner];
                if (point >= item.ControlPoints.Count)
                    throw _context.Error($"polygon {i} of the mesh '{item.Name}' has a corner at {point}, "
                        + $"but there are {item.ControlPoints.Count} control points");
                int texCoord = texCoords?.ValueIndex(point, corner, i) ?? -1;
                int normal = normals?.ValueIndex(point, corner, i) ?? -1;
                _output.Byte((byte)' ');
                _output.Integer(_vertices + point + 1);
                if (texCoord >= 0 || normal >= 0)
                    _output.Byte((byte)'/');
                if (texCoord >= 0)
                    _output.Integer(_texCoords + texCoord + 1);
                if (normal >= 0)
                {
                    _output.Byte((byte)'/');
                    _output.Integer(_normals + normal + 1);
                }
            }
            _output.Byte((byte)'\n');
        }
    }

    // Lines and point clouds. Points that a mesh of the node has are named by its vertices.
    private void WriteSparse(
        PlacedEntity item, Dictionary<Vector4, int>? shared, long sharedBase, bool isAlone)
    {
        if (_options.Verbose)
            Line("# ", $"{item.Entity.GetType().Name} {item.Name}: {item.ControlPoints.Count} vertices");
        SetGroup(_groups.Of(item, out _)[0]);
        Geometry? cloud = item.Entity as Geometry;
        Vector4[]? colors = ObjColors.Of(cloud);
        List<Vector4> points = item.ControlPoints;
        long[] places = new long[points.Count];
        for (int i = 0; i < places.Length; i++)
        {
            if (shared is not null && shared.TryGetValue(points[i], out int known))
            {
                places[i] = sharedBase + known;
                continue;
            }
            WriteVertex(item.Point(points[i]), colors is null ? null : colors[i]);
            places[i] = _vertices++;
        }
        int[][]? statements = Statements(item, isAlone);
        if (cloud is not null)
            WriteCloudValues(cloud, item);
        if (statements is null)
            return;
        SetMaterial(item);
        double[]? texCoords = item.Entity.GetProperty(ObjNames.TexCoords) as double[];
        int corner = 0;
        foreach (int[] statement in statements)
        {
            if (statement.Length == 0)
                continue;
            WriteLineTexCoords(texCoords, corner, statement.Length);
            _output.Byte(item.Entity is Line && statement.Length > 1 ? (byte)'l' : (byte)'p');
            foreach (int point in statement)
            {
                if ((uint)point >= (uint)places.Length)
                    throw _context.Error(
                        $"'{item.Name}' uses point {point}, but it has {places.Length} points");
                _output.Byte((byte)' ');
                _output.Integer(places[point] + 1);
                if (HasTexCoord(texCoords, corner++))
                {
                    _output.Byte((byte)'/');
                    _output.Integer(++_texCoords);
                }
            }
            _output.Byte((byte)'\n');
        }
    }

    // A cloud that is all there is needs no statements: vertices alone are a cloud when they are read.
    private static int[][]? Statements(PlacedEntity item, bool isAlone)
    {
        int[] all = new int[item.ControlPoints.Count];
        for (int i = 0; i < all.Length; i++)
            all[i] = i;
        if (item.Entity is Line line)
            return line.Segments.Count > 0 ? [.. line.Segments] : [all];
        if (item.Entity.GetProperty(ObjNames.Points) is int[][] kept)
            return kept;
        return isAlone && item.Node.Materials.Count == 0 ? null : [all];
    }

    private void WriteCloudValues(Geometry cloud, PlacedEntity item)
    {
        if (cloud.GetElement(VertexElementType.UV) is VertexElementUV texCoords)
        {
            WriteTexCoords(texCoords);
            _texCoords += texCoords.DataList.Count;
        }
        if (cloud.GetElement(VertexElementType.Normal) is VertexElementNormal normals)
        {
            WriteNormals(normals, item);
            _normals += normals.DataList.Count;
        }
    }

    private static bool HasTexCoord(double[]? texCoords, int corner) =>
        texCoords is not null && corner * 3 + 2 < texCoords.Length && !double.IsNaN(texCoords[corner * 3]);

    private void WriteLineTexCoords(double[]? texCoords, int corner, int count)
    {
        for (int i = corner; i < corner + count; i++)
        {
            if (!HasTexCoord(texCoords, i))
                continue;
            _output.Bytes("vt"u8);
            for (int k = 0; k < 3; k++)
                _output.Number(texCoords![i * 3 + k]);
            _output.Byte((byte)'\n');
        }
    }

    private void SetGroup(ObjGroup group)
    {
        if (group == _group)
            return;
        bool endsGroup = _group.Name is not null;
        if (group.Object != _group.Object)
            Line("o ", group.Object ?? "");
        if (group.Name is not null || endsGroup)
            Line("g ", group.Name ?? "");
        _group = group;
    }

    private void SetMaterial(Node node, int place)
    {
        Material? material = place < node.Materials.Count ? node.Materials[place] : null;
        SetMaterial(material is null ? null : _materials.NameOf(material));
    }

    private void SetMaterial(PlacedEntity item)
    {
        string? told = item.Entity.GetProperty(ObjNames.Material) as string;
        foreach (Material material in item.Node.Materials)
        {
            if (told is null || material.Name == told)
            {
                SetMaterial(_materials.NameOf(material));
                return;
            }
        }
        SetMaterial(item.Node, 0);
    }

    private void SetMaterial(string? name)
    {
        if (name == _material)
            return;
        Line("usemtl ", name ?? ObjNames.NoMaterial);
        _material = name;
    }

    private void SetSmoothing(int number)
    {
        if (number == _smoothing || (number == ObjElements.None && _smoothing == 0))
            return;
        _smoothing = Math.Max(number, 0);
        _output.Text("s ");
        if (_smoothing == 0)
            _output.Text("off");
        else
            _output.Integer(_smoothing);
        _output.Byte((byte)'\n');
    }

    private void Line(string word, string text)
    {
        _output.Text(word);
        _output.OneLine(text);
        _output.Byte((byte)'\n');
    }
}
