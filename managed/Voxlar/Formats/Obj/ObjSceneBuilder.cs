using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats.Text;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>Makes the scene of an OBJ file; <see cref="ObjReader"/> tells how the two compare.</summary>
internal sealed class ObjSceneBuilder
{
    private const int HighestMaskedGroup = 32;

    private readonly ObjFile _file;
    private readonly ObjMaterials _materials;
    private readonly ObjLoadOptions _options;
    private readonly Scene _scene;
    private readonly ObjElements _faces;

    // The node of each group: that of the mesh that its faces went to, or one of its own for lines and
    // points.
    private readonly Node?[] _nodes;

    // Groups whose faces share vertices, as a forest; the root of a tree is its lowest group.
    private readonly int[] _parents;

    // The mesh of each group that is the root of a tree, or -1.
    private readonly int[] _meshOfGroup;

    private int _meshCount;

    public ObjSceneBuilder(ObjFile file, ObjMaterials materials, ObjLoadOptions options, Scene scene)
    {
        _file = file;
        _faces = file.Faces;
        _materials = materials;
        _options = options;
        _scene = scene;
        _nodes = new Node?[file.Groups.Count];
        _parents = new int[file.Groups.Count];
        _meshOfGroup = new int[file.Groups.Count];
        Array.Fill(_meshOfGroup, -1);
        for (int i = 0; i < _parents.Length; i++)
            _parents[i] = i;
    }

    public void Build()
    {
        int[] owner = new int[_file.VertexCount];
        Array.Fill(owner, -1);
        JoinGroups(owner);
        NumberMeshes();
        List<int> loose = MarkUnused(owner);
        if (_meshCount == 1)
            BuildOnlyMesh(owner);
        else if (_meshCount > 1)
            BuildMeshes(owner);
        else if (_file.Lines.Count == 0 && _file.Points.Count == 0 && _file.VertexCount > 0)
            BuildCloudOfAll();
        BuildSparse(_file.Lines, _meshCount == 0 ? loose : null, isLine: true);
        BuildSparse(_file.Points, _meshCount == 0 && _file.Lines.Count == 0 ? loose : null, isLine: false);
    }

    private int RootOf(int group)
    {
        while (_parents[group] != group)
            group = _parents[group] = _parents[_parents[group]];
        return group;
    }

    private void JoinGroups(int[] owner)
    {
        int[] vertices = _faces.Vertices.Items;
        int corner = 0;
        for (int face = 0; face < _faces.Count; face++)
        {
            int group = _faces.Groups.Items[face];
            for (int end = _faces.Ends.Items[face]; corner < end; corner++)
            {
                int other = owner[vertices[corner]];
                if (other < 0)
                    owner[vertices[corner]] = group;
                else if (other != group)
                    Join(other, group);
            }
        }
    }

    private void Join(int a, int b)
    {
        int first = RootOf(a);
        int second = RootOf(b);
        _parents[Math.Max(first, second)] = Math.Min(first, second);
    }

    private void NumberMeshes()
    {
        ReadOnlySpan<int> groups = _faces.Groups.Span;
        int last = -1;
        foreach (int group in groups)
        {
            if (group == last)
                continue;
            last = group;
            int root = RootOf(group);
            if (_meshOfGroup[root] < 0)
                _meshOfGroup[root] = _meshCount++;
        }
    }

    private int MeshOf(int group) => _meshOfGroup[RootOf(group)];

    // Turns the owners into meshes: -1 for vertices that only lines or points use. What nothing uses goes to
    // the mesh of the vertices before it, or is listed where there is no mesh.
    private List<int> MarkUnused(int[] owner)
    {
        bool[] isUsed = new bool[owner.Length];
        foreach (int vertex in _file.Lines.Vertices.Span)
            isUsed[vertex] = true;
        foreach (int vertex in _file.Points.Vertices.Span)
            isUsed[vertex] = true;
        List<int> loose = [];
        int last = 0;
        for (int i = 0; i < owner.Length; i++)
        {
            if (owner[i] >= 0)
                last = owner[i] = MeshOf(owner[i]);
            else if (isUsed[i])
                continue;
            else if (_meshCount == 0)
                loose.Add(i);
            else
                owner[i] = last;
        }
        return loose;
    }

    private void BuildOnlyMesh(int[] owner)
    {
        int[] local = new int[owner.Length];
        IntBuffer vertices = new();
        for (int i = 0; i < owner.Length; i++)
        {
            local[i] = vertices.Count;
            if (owner[i] >= 0)
                vertices.Add(i);
        }
        ObjAttribute texCoords = new(_file.TexCoordCount, [], null, 1);
        ObjAttribute normals = new(_file.NormalCount, [], null, 1);
        int[] faces = new int[_faces.Count];
        for (int i = 0; i < faces.Length; i++)
            faces[i] = i;
        BuildMesh(0, faces, vertices.Span, local, texCoords, normals);
    }

    private void BuildMeshes(int[] owner)
    {
        IntBuffer[] vertices = new IntBuffer[_meshCount];
        IntBuffer[] faces = new IntBuffer[_meshCount];
        for (int i = 0; i < _meshCount; i++)
        {
            vertices[i] = new IntBuffer();
            faces[i] = new IntBuffer();
        }
        int[] local = new int[owner.Length];
        for (int i = 0; i < owner.Length; i++)
        {
            if (owner[i] < 0)
                continue;
            local[i] = vertices[owner[i]].Count;
            vertices[owner[i]].Add(i);
        }
        int[] meshOfCorner = new int[_faces.Vertices.Count];
        int corner = 0;
        for (int face = 0; face < _faces.Count; face++)
        {
            int mesh = MeshOf(_faces.Groups.Items[face]);
            faces[mesh].Add(face);
            for (int end = _faces.Ends.Items[face]; corner < end; corner++)
                meshOfCorner[corner] = mesh;
        }
        ObjAttribute texCoords = new(_file.TexCoordCount, _faces.TexCoords.Span, meshOfCorner, _meshCount);
        ObjAttribute normals = new(_file.NormalCount, _faces.Normals.Span, meshOfCorner, _meshCount);
        for (int i = 0; i < _meshCount; i++)
            BuildMesh(i, faces[i].Span, vertices[i].Span, local, texCoords, normals);
    }

    private void BuildMesh(
        int number, ReadOnlySpan<int> faces, ReadOnlySpan<int> vertices, int[] local, ObjAttribute texCoords,
        ObjAttribute normals)
    {
        Mesh mesh = new();
        FillPoints(mesh, vertices);
        FillPolygons(mesh, faces, local);
        FillAttribute(mesh, number, faces, _faces.TexCoords, texCoords, isNormal: false);
        FillAttribute(mesh, number, faces, _faces.Normals, normals, isNormal: true);
        FillSmoothing(mesh, faces);
        Node node = _scene.RootNode.CreateChildNode("", mesh);
        FillMaterials(mesh, node, faces);
        FillGroups(mesh, faces, node);
        node.Name = mesh.Name;
    }

    private void FillPoints(Geometry geometry, ReadOnlySpan<int> vertices)
    {
        List<Vector4> points = geometry.ControlPointList;
        CollectionsMarshal.SetCount(points, vertices.Length);
        CopyPoints(vertices, CollectionsMarshal.AsSpan(points));
        FillColors(geometry, vertices);
    }

    private void CopyPoints(ReadOnlySpan<int> vertices, Span<Vector4> target)
    {
        double[] source = _file.Vertices.Items;
        double scale = _options.Scale;
        bool flip = _options.FlipCoordinateSystem;
        for (int i = 0; i < vertices.Length; i++)
        {
            int at = vertices[i] * 4;
            double x = source[at];
            double y = source[at + (flip ? 2 : 1)];
            double z = source[at + (flip ? 1 : 2)];
            if (scale != 1)
            {
                x *= scale;
                y *= scale;
                z *= scale;
            }
            target[i] = new Vector4(x, y, z, source[at + 3]);
        }
    }

    private void FillColors(Geometry geometry, ReadOnlySpan<int> vertices)
    {
        double[] source = _file.Colors.Items;
        bool any = false;
        for (int i = 0; !any && _file.Colors.Count > 0 && i < vertices.Length; i++)
            any = HasColor(vertices[i]);
        if (!any)
            return;
        VertexElementVertexColor colors = new();
        colors.DataList.EnsureCapacity(vertices.Length);
        foreach (int vertex in vertices)
        {
            int at = vertex * 4;
            colors.DataList.Add(HasColor(vertex)
                ? new Vector4(source[at], source[at + 1], source[at + 2], source[at + 3])
                : new Vector4(1, 1, 1, 1));
        }
        geometry.VertexElements.Add(colors);
    }

    private bool HasColor(int vertex) =>
        vertex * 4 < _file.Colors.Count && !double.IsNaN(_file.Colors.Items[vertex * 4 + 3]);

    // Exchanging two axes turns the space inside out; the corners then run the other way round, from the same
    // first one.
    private int CornerAt(int start, int end, int k) =>
        _options.FlipCoordinateSystem && k > 0 ? end - k : start + k;

    private void FillPolygons(Mesh mesh, ReadOnlySpan<int> faces, int[] local)
    {
        int corners = 0;
        int largest = 0;
        foreach (int face in faces)
        {
            int size = _faces.End(face) - _faces.Start(face);
            corners += size;
            largest = Math.Max(largest, size);
        }
        mesh.PolygonStore.EnsureCapacity(faces.Length, corners);
        int[] vertices = _faces.Vertices.Items;
        int[] polygon = new int[largest];
        foreach (int face in faces)
        {
            int start = _faces.Start(face);
            int end = _faces.End(face);
            for (int k = 0; k < end - start; k++)
                polygon[k] = local[vertices[CornerAt(start, end, k)]];
            mesh.PolygonStore.Add(new ReadOnlySpan<int>(polygon, 0, end - start));
        }
    }

    private void FillAttribute(
        Mesh mesh, int number, ReadOnlySpan<int> faces, IntBuffer corners, ObjAttribute attribute,
        bool isNormal)
    {
        if (attribute.Count == 0)
            return;
        IntBuffer used = new();
        bool any = false;
        foreach (int face in faces)
        {
            int start = _faces.Start(face);
            int end = _faces.End(face);
            for (int k = 0; k < end - start; k++)
            {
                int value = corners.Items[CornerAt(start, end, k)];
                any |= value >= 0;
                used.Add(value);
            }
        }
        int[]? values = attribute.IsWhole ? null : attribute.Take(number, used.Span);
        if (values is { Length: 0 })
            return;
        VertexElementVector4 element = isNormal ? new VertexElementNormal() : new VertexElementUV();
        element.MappingMode = MappingMode.PolygonVertex;
        element.ReferenceMode = ReferenceMode.IndexToDirect;
        FillValues(element, values, isNormal);
        if (any)
        {
            CollectionsMarshal.SetCount(element.IndexList, used.Count);
            Span<int> indices = CollectionsMarshal.AsSpan(element.IndexList);
            for (int i = 0; i < indices.Length; i++)
                indices[i] = attribute.Local(used.Items[i]);
        }
        mesh.VertexElements.Add(element);
    }

    // Appends values of the file: those listed, or all.
    private void FillValues(VertexElementVector4 element, int[]? values, bool isNormal)
    {
        double[] source = isNormal ? _file.Normals.Items : _file.TexCoords.Items;
        int count = values?.Length ?? (isNormal ? _file.NormalCount : _file.TexCoordCount);
        CollectionsMarshal.SetCount(element.DataList, count);
        Span<Vector4> target = CollectionsMarshal.AsSpan(element.DataList);
        for (int i = 0; i < count; i++)
        {
            int at = (values is null ? i : values[i]) * 3;
            target[i] = isNormal
                ? NormalOf(source[at], source[at + 1], source[at + 2])
                : new Vector4(source[at], source[at + 1], source[at + 2], 1);
        }
    }

    private Vector4 NormalOf(double x, double y, double z)
    {
        if (_options.FlipCoordinateSystem)
            (y, z) = (z, y);
        if (_options.NormalizeNormal)
        {
            // What has the length 1 but for rounding stays as it is, so that reading what was written changes
            // nothing.
            double square = x * x + y * y + z * z;
            if (square > 0 && double.IsFinite(square) && Math.Abs(square - 1) > 1e-14)
            {
                double length = Math.Sqrt(square);
                x /= length;
                y /= length;
                z /= length;
            }
        }
        return new Vector4(x, y, z, 0);
    }

    private void FillSmoothing(Mesh mesh, ReadOnlySpan<int> faces)
    {
        int highest = ObjElements.None;
        foreach (int face in faces)
            highest = Math.Max(highest, _faces.Smoothing.Items[face]);
        if (highest == ObjElements.None)
            return;
        int[] numbers = new int[faces.Length];
        int[] masks = new int[faces.Length];
        for (int i = 0; i < numbers.Length; i++)
        {
            numbers[i] = Math.Max(_faces.Smoothing.Items[faces[i]], 0);
            masks[i] = numbers[i] == 0 ? 0 : 1 << ((numbers[i] - 1) % HighestMaskedGroup);
        }
        VertexElementSmoothingGroup element = new();
        element.SetData(masks);
        mesh.VertexElements.Add(element);
        if (highest > HighestMaskedGroup)
            mesh.SetProperty(ObjNames.SmoothingGroups, numbers);
    }

    private void FillMaterials(Mesh mesh, Node node, ReadOnlySpan<int> faces)
    {
        bool any = false;
        foreach (int face in faces)
            any |= _faces.Materials.Items[face] != ObjElements.None;
        if (!any)
            return;
        int[] places = new int[_file.Materials.Count + 1];
        int[] indices = new int[faces.Length];
        for (int i = 0; i < indices.Length; i++)
        {
            int material = _faces.Materials.Items[faces[i]];
            ref int place = ref places[material + 1];
            if (place == 0)
            {
                node.Materials.Add(_materials.Use(material));
                place = node.Materials.Count;
            }
            indices[i] = place - 1;
        }
        if (node.Materials.Count == 1)
            return;
        VertexElementMaterial element = new();
        element.SetIndices(indices);
        mesh.VertexElements.Add(element);
    }

    // Names the mesh, and tells the groups apart where there are several.
    private void FillGroups(Mesh mesh, ReadOnlySpan<int> faces, Node node)
    {
        List<ObjGroup> groups = [];
        int[] places = new int[_file.Groups.Count];
        int[] numbers = new int[faces.Length];
        bool sameObject = true;
        for (int i = 0; i < faces.Length; i++)
        {
            int group = _faces.Groups.Items[faces[i]];
            ref int place = ref places[group];
            if (place == 0)
            {
                groups.Add(_file.Groups[group]);
                sameObject &= _file.Groups[group].Object == groups[0].Object;
                place = groups.Count;
                _nodes[group] = node;
            }
            numbers[i] = place - 1;
        }
        ObjGroup first = groups[0];
        if (groups.Count == 1)
        {
            NameAfter(mesh, first);
            return;
        }
        mesh.Name = sameObject && first.Object is not null ? first.Object : first.Title;
        VertexElementPolygonGroup element = new();
        element.SetData(numbers);
        mesh.VertexElements.Add(element);
        mesh.SetProperty(ObjNames.Groups, groups.ConvertAll(group => group.Name ?? "").ToArray());
        mesh.SetProperty(ObjNames.GroupObjects, groups.ConvertAll(group => group.Object ?? "").ToArray());
    }

    private static void NameAfter(Entity entity, ObjGroup group)
    {
        entity.Name = group.Title;
        if (group.Name is not null)
            entity.SetProperty(ObjNames.Object, group.Object ?? "");
    }

    private void BuildCloudOfAll()
    {
        PointCloud cloud = new();
        int[] all = new int[_file.VertexCount];
        for (int i = 0; i < all.Length; i++)
            all[i] = i;
        FillPoints(cloud, all);
        if (_file.TexCoordCount > 0)
            AddToCloud(cloud, new VertexElementUV(), _file.TexCoordCount, isNormal: false);
        if (_file.NormalCount > 0)
            AddToCloud(cloud, new VertexElementNormal(), _file.NormalCount, isNormal: true);
        if (_file.Groups.Count > 1)
            NameAfter(cloud, _file.Groups[^1]);
        _scene.RootNode.CreateChildNode(cloud.Name, cloud);
    }

    // Where there is a value for each vertex they belong together; other values are kept without a tie to
    // points.
    private void AddToCloud(PointCloud cloud, VertexElementVector4 element, int count, bool isNormal)
    {
        if (count != _file.VertexCount)
            element.ReferenceMode = ReferenceMode.IndexToDirect;
        FillValues(element, null, isNormal);
        cloud.VertexElements.Add(element);
    }

    // Makes one entity for all lines, or points, of a group and material.
    private void BuildSparse(ObjElements elements, List<int>? loose, bool isLine)
    {
        Dictionary<(int Group, int Material), List<int>> runs = [];
        for (int i = 0; i < elements.Count; i++)
        {
            (int, int) key = (elements.Groups.Items[i], elements.Materials.Items[i]);
            if (!runs.TryGetValue(key, out List<int>? run))
                runs.Add(key, run = []);
            run.Add(i);
        }
        foreach (((int group, int material), List<int> run) in runs)
        {
            BuildSparse(elements, group, material, run, loose, isLine);
            loose = null;
        }
    }

    private void BuildSparse(
        ObjElements elements, int group, int material, List<int> run, List<int>? loose, bool isLine)
    {
        Dictionary<int, int> local = [];
        IntBuffer vertices = new();
        int[][] statements = new int[run.Count][];
        bool hasTexCoords = false;
        for (int i = 0; i < statements.Length; i++)
        {
            int start = elements.Start(run[i]);
            statements[i] = new int[elements.End(run[i]) - start];
            for (int k = 0; k < statements[i].Length; k++)
            {
                int vertex = elements.Vertices.Items[start + k];
                hasTexCoords |= elements.TexCoords.Items[start + k] >= 0;
                if (!local.TryGetValue(vertex, out int place))
                {
                    local.Add(vertex, place = vertices.Count);
                    vertices.Add(vertex);
                }
                statements[i][k] = place;
            }
        }
        foreach (int vertex in loose ?? [])
            vertices.Add(vertex);
        Node node = _nodes[group] ??= _scene.RootNode.CreateChildNode(_file.Groups[group].Title);
        Entity entity;
        if (isLine)
        {
            Line line = new();
            CollectionsMarshal.SetCount(line.ControlPoints, vertices.Count);
            CopyPoints(vertices.Span, CollectionsMarshal.AsSpan(line.ControlPoints));
            foreach (int[] statement in statements)
                line.Segments.Add(statement);
            if (hasTexCoords)
                line.SetProperty(ObjNames.TexCoords, LineTexCoords(elements, run));
            entity = line;
        }
        else
        {
            PointCloud cloud = new();
            FillPoints(cloud, vertices.Span);
            cloud.SetProperty(ObjNames.Points, statements);
            entity = cloud;
        }
        NameAfter(entity, _file.Groups[group]);
        node.Entities.Add(entity);
        UseMaterial(node, entity, material);
    }

    private double[] LineTexCoords(ObjElements elements, List<int> run)
    {
        DoubleBuffer result = new();
        foreach (int line in run)
        {
            for (int corner = elements.Start(line); corner < elements.End(line); corner++)
            {
                int value = elements.TexCoords.Items[corner] * 3;
                for (int k = 0; k < 3; k++)
                    result.Add(value < 0 ? double.NaN : _file.TexCoords.Items[value + k]);
            }
        }
        return result.Items[..result.Count];
    }

    private void UseMaterial(Node node, Entity entity, int material)
    {
        if (material == ObjElements.None)
            return;
        Material used = _materials.Use(material);
        if (!node.Materials.Contains(used))
            node.Materials.Add(used);
        if (node.Materials[0] != used)
            entity.SetProperty(ObjNames.Material, used.Name);
    }
}
