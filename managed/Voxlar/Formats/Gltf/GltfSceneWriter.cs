using System;
using System.Collections.Generic;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Animation;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Writes scenes with their nodes. Entities of one node that have the same name and the same deformers make
/// one mesh. A node of the document has room for one mesh, one camera and one light, the latter two looking
/// down its negative z axis: what does not fit gets a child node of its own. Solids become meshes and curves
/// polylines; entities that have no form in a document are refused by the name of their type. Excluded nodes
/// and entities are left out.
/// </summary>
internal sealed class GltfSceneWriter
{
    private const double MetreInCentimetres = 100;
    private const double MatrixTolerance = 1e-9;

    private readonly GltfDocument _document;
    private readonly GltfSaveOptions _options;
    private readonly WriteContext _context;
    private readonly GltfMaterialWriter _materials;
    private readonly GltfMeshWriter _meshes;
    private readonly GltfViewWriter _views;
    private readonly GltfSkinWriter _skins;
    private readonly Dictionary<Node, int> _nodeIndices = new(ReferenceEqualityComparer.Instance);
    private readonly Dictionary<Transform, int> _transformIndices = new(ReferenceEqualityComparer.Instance);
    private readonly Dictionary<MorphTargetChannel, GltfMorphPlace> morphPlaces =
        new(ReferenceEqualityComparer.Instance);
    private readonly Dictionary<Entity, Entity> _converted = new(ReferenceEqualityComparer.Instance);
    private readonly HashSet<Transform> _animated = new(ReferenceEqualityComparer.Instance);

    internal GltfSceneWriter(GltfDocument document, GltfSideFiles sideFiles, GltfSaveOptions options,
        WriteContext context)
    {
        _document = document;
        _options = options;
        _context = context;
        _materials = new GltfMaterialWriter(document,
            new GltfTextureWriter(document, sideFiles, options, context), options, context);
        _meshes = new GltfMeshWriter(document, _materials, options, context);
        _views = new GltfViewWriter(document, options, context);
        _skins = new GltfSkinWriter(document, _nodeIndices, options.SaveExtras, context);
    }

    internal void Write(Scene scene)
    {
        foreach (AnimationClip clip in scene.AnimationClips)
            NoteAnimated(clip);
        List<Scene> scenes = AllScenes(scene);
        var roots = new List<List<Node>>();
        foreach (Scene item in scenes)
        {
            List<Node> own = RootsOf(item);
            roots.Add(own);
            foreach (Node node in own)
                Number(node);
        }
        var loose = new List<Node>();
        foreach (VbrObject item in scene.Library)
        {
            if (item is not Node { ParentNode: null } node || _nodeIndices.ContainsKey(node))
                continue;
            loose.Add(node);
            Number(node);
        }
        Node[] numbered = [.. _nodeIndices.Keys];
        foreach (Node node in numbered)
            Fill(node, _document.Get("nodes", _nodeIndices[node]));
        for (int i = 0; i < scenes.Count; i++)
            AddScene(scenes[i], roots[i]);
        WriteLibrary(scene);
        // A document of loose nodes alone is a library and shows nothing.
        _document.DefaultScene = _document.CountOf("scenes") > 0 ? 0 : -1;
        _views.Finish();
    }

    internal void WriteAnimation(AnimationClip clip) =>
        new GltfAnimationWriter(_document, _transformIndices, morphPlaces, _options.SaveExtras).Write(clip);

    private static List<Scene> AllScenes(Scene scene)
    {
        var all = new List<Scene> { scene };
        for (int i = 0; i < all.Count; i++)
            all.AddRange(all[i].SubScenes);
        return all;
    }

    private void NoteAnimated(AnimationClip clip)
    {
        var open = new Stack<AnimationNode>(clip.Animations);
        var seen = new HashSet<AnimationNode>(ReferenceEqualityComparer.Instance);
        while (open.TryPop(out AnimationNode? node))
        {
            if (!seen.Add(node))
                continue;
            foreach (BindPoint point in node.BindPoints)
            {
                if (point.Property.Owner is Transform transform)
                    _animated.Add(transform);
            }
            foreach (AnimationNode below in node.SubAnimations)
                open.Push(below);
        }
    }

    /// <summary>
    /// The nodes at the top: those below the root node, or the root node itself when it is more than a
    /// holder.
    /// </summary>
    private List<Node> RootsOf(Scene scene)
    {
        Node root = scene.RootNode;
        if (root.Excluded)
            return [];
        bool isHolder = root.Entities.Count == 0 && root.Visible
            && root.Transform.TransformMatrix == Matrix4.Identity
            && !_animated.Contains(root.Transform) && !HasExtras(root);
        return isHolder ? [.. root.ChildNodes] : [root];
    }

    private bool HasExtras(Node node)
    {
        foreach (Property property in node.Properties)
        {
            if (_options.SaveExtras && property is UserProperty)
                return true;
        }
        return false;
    }

    /// <summary>Gives a node and all below it their indices, each node before its children.</summary>
    private void Number(Node top)
    {
        var open = new Stack<Node>();
        open.Push(top);
        while (open.TryPop(out Node? node))
        {
            if (node.Excluded || _nodeIndices.ContainsKey(node))
                continue;
            int index = _document.Add("nodes", []);
            _nodeIndices[node] = index;
            _transformIndices[node.Transform] = index;
            for (int i = node.ChildNodes.Count - 1; i >= 0; i--)
                open.Push(node.ChildNodes[i]);
        }
    }

    private void AddScene(Scene scene, List<Node> roots)
    {
        var json = new JsonObject();
        if (scene.Name.Length > 0)
            json["name"] = scene.Name;
        var indices = new JsonArray();
        foreach (Node node in roots)
        {
            if (_nodeIndices.TryGetValue(node, out int index))
                indices.Add((JsonNode)index);
        }
        double scale = scene.AssetInfo.UnitScaleFactor / MetreInCentimetres;
        if (_options.ApplyUnitScale && scale != 1 && indices.Count > 0)
        {
            if (!(scale > 0) || !double.IsFinite(scale))
                throw _context.Error(
                    "GltfSaveOptions.ApplyUnitScale is set, but the unit of the asset is "
                    + $"{scene.AssetInfo.UnitScaleFactor} cm");
            var holder = new JsonObject
            {
                ["name"] = "UnitScale",
                ["scale"] = GltfValues.Numbers(scale, scale, scale),
                ["children"] = indices,
            };
            indices = new JsonArray((JsonNode)_document.Add("nodes", holder));
        }
        if (indices.Count > 0)
            json["nodes"] = indices;
        if (_options.SaveExtras)
            GltfExtras.Write(json, scene);
        GltfExtensionData.Write(_document, json, scene);
        _document.Add("scenes", json);
    }

    private void WriteLibrary(Scene scene)
    {
        foreach (VbrObject item in scene.Library)
        {
            switch (item)
            {
                case Material material:
                    _materials.IndexOf(material);
                    break;
                case Geometry or Line when GltfMeshWriter.HasContent((Entity)item):
                    _meshes.IndexOf([(Entity)item], []);
                    break;
                case Camera camera:
                    _views.IndexOf(camera);
                    break;
                case Light light:
                    _views.IndexOf(light);
                    break;
            }
        }
    }

    private void Fill(Node node, JsonObject json)
    {
        if (node.Name.Length > 0)
            json["name"] = node.Name;
        WriteTransform(node.Transform, json);
        var children = new JsonArray();
        foreach (Node child in node.ChildNodes)
        {
            if (_nodeIndices.TryGetValue(child, out int index))
                children.Add((JsonNode)index);
        }
        if (!node.Visible)
            _document.AddExtension(json, GltfNames.NodeVisibility, new JsonObject { ["visible"] = false });
        if (_options.SaveExtras)
            GltfExtras.Write(json, node);
        GltfExtensionData.Write(_document, json, node);
        if (children.Count > 0)
            json["children"] = children;
        Place place = new(this, json, _nodeIndices[node], children, node.EvaluateGlobalTransform(true));
        if (node.Transform.GeometricMatrix != Matrix4.Identity && node.Entities.Count > 0)
            place = place.Below(node.Name, own => WriteMatrix(node.Transform.GeometricMatrix, own));
        AddEntities(node, place);
    }

    private void WriteTransform(Transform transform, JsonObject json)
    {
        Quaternion rotation = transform.Rotation;
        if (transform.PostRotation != Vector3.Origin)
            rotation = FromDegrees(transform.PostRotation).Conjugate().Concat(rotation);
        if (transform.PreRotation != Vector3.Origin)
            rotation = rotation.Concat(FromDegrees(transform.PreRotation));
        Matrix4 parts = Matrix4.Scale(transform.Scale).Concatenate(rotation.ToMatrix())
            .Concatenate(Matrix4.Translate(transform.Translation));
        // What parts cannot tell, such as shear, is told by the matrix; animated nodes have parts only.
        if (!_animated.Contains(transform) && !IsNear(parts, transform.TransformMatrix))
        {
            WriteMatrix(transform.TransformMatrix, json);
            return;
        }
        if (transform.Translation != Vector3.Origin)
            json["translation"] =
                GltfValues.Numbers(transform.Translation.x, transform.Translation.y, transform.Translation.z);
        if (rotation != Quaternion.Identity)
        {
            Quaternion unit = Math.Abs(rotation.Length - 1) < 1e-6 ? rotation : rotation.Normalize();
            json["rotation"] = GltfValues.Numbers(unit.x, unit.y, unit.z, unit.w);
        }
        if (transform.Scale != Vector3.UnitScale)
            json["scale"] = GltfValues.Numbers(transform.Scale.x, transform.Scale.y, transform.Scale.z);
    }

    private static Quaternion FromDegrees(Vector3 angles) =>
        Quaternion.FromEulerAngle(MathUtils.ToRadian(angles));

    private static bool IsNear(Matrix4 a, Matrix4 b)
    {
        double[] left = a.ToArray();
        double[] right = b.ToArray();
        for (int i = 0; i < left.Length; i++)
        {
            if (Math.Abs(left[i] - right[i]) > MatrixTolerance * Math.Max(1, Math.Abs(right[i])))
                return false;
        }
        return true;
    }

    private void WriteMatrix(Matrix4 matrix, JsonObject json)
    {
        bool isAffine = matrix.m03 == 0 && matrix.m13 == 0 && matrix.m23 == 0 && matrix.m33 == 1;
        if (!isAffine)
            throw _context.Error("the transform of a node is no affine one; glTF holds no other");
        json["matrix"] = GltfValues.Numbers(matrix.ToArray());
    }

    private void AddEntities(Node node, Place place)
    {
        var groups = new List<(string Key, List<Entity> Entities)>();
        foreach (Entity source in node.Entities)
        {
            if (source.Excluded || source is Skeleton)
                continue;
            Entity entity = Convert(source);
            switch (entity)
            {
                case Camera camera:
                    _views.Add(camera, place);
                    break;
                case Light light:
                    _views.Add(light, place);
                    break;
                default:
                    if (GltfMeshWriter.HasContent(entity))
                        AddToGroup(groups, entity);
                    break;
            }
        }
        foreach ((_, List<Entity> entities) in groups)
            AddMesh(entities, node, place.With("mesh", entities[0].Name));
    }

    private void AddToGroup(List<(string Key, List<Entity> Entities)> groups, Entity entity)
    {
        SkinDeformer? skin = entity is Geometry geometry ? GltfSkinWriter.SkinOf(geometry, _context) : null;
        int joints = skin is { Bones.Count: > 0 } ? _skins.IndexOf(skin) : -1;
        List<MorphTargetChannel> channels = GltfMorphs.ChannelsOf(entity);
        string weights = string.Join(' ',
            channels.ConvertAll(static channel => $"{channel.Name}={channel.ChannelWeight}"));
        string key = $"{joints}|{weights}";
        List<Entity>? group = groups.Find(item => item.Key == key).Entities;
        if (group is null)
            groups.Add((key, [entity]));
        else
            group.Add(entity);
    }

    private void AddMesh(List<Entity> entities, Node node, Place place)
    {
        place.Json["mesh"] = _meshes.IndexOf(entities, node.Materials);
        if (entities[0] is Geometry first
            && GltfSkinWriter.SkinOf(first, _context) is { Bones.Count: > 0 } skin)
            place.Json["skin"] = _skins.IndexOf(skin);
        foreach (Entity entity in entities)
        {
            List<MorphTargetChannel> channels = GltfMorphs.ChannelsOf(entity);
            double[] defaults = GltfMorphs.DefaultWeights(channels, _context);
            for (int i = 0; i < channels.Count; i++)
            {
                if (!morphPlaces.TryGetValue(channels[i], out GltfMorphPlace? known))
                    morphPlaces[channels[i]] = known =
                        new GltfMorphPlace([], i, defaults, GltfMorphs.ScaleOf(channels[i]));
                if (!known.Nodes.Contains(place.Index))
                    known.Nodes.Add(place.Index);
            }
        }
    }

    private Entity Convert(Entity entity)
    {
        switch (entity)
        {
            case Camera or Light or Line or Mesh or PointCloud:
                return entity;
            case IMeshConvertible convertible:
                return Converted(entity, convertible.ToMesh);
            case TriMesh triangles:
                return Converted(entity, () => GltfTriMesh.ToMesh(triangles));
            case Curve curve:
                return Converted(entity, () => Polyline(curve));
            default:
                if (entity.GetType() == typeof(Geometry))
                    return entity;
                throw _context.Error($"glTF has no form for a {entity.GetType().Name} ('{entity.Name}')");
        }
    }

    /// <summary>Converts an entity once, however many nodes show it.</summary>
    private Entity Converted(Entity entity, Func<Entity> convert)
    {
        if (_converted.TryGetValue(entity, out Entity? known))
            return known;
        known = convert();
        known.Name = entity.Name;
        foreach (Property property in entity.Properties)
        {
            if (property is UserProperty)
                known.SetProperty(property.Name, property.Value);
        }
        return _converted[entity] = known;
    }

    private static Line Polyline(Curve curve)
    {
        var line = new Line { Color = curve.Color };
        foreach (Vector3 point in curve.Tessellate())
            line.ControlPoints.Add(new Vector4(point, 1));
        line.MakeDefaultIndices();
        return line;
    }

    /// <summary>A node of the document that entities are put on.</summary>
    internal sealed class Place
    {
        private readonly GltfSceneWriter _owner;
        private readonly JsonArray _children;
        private readonly HashSet<string> _taken = new(StringComparer.Ordinal);

        internal Place(GltfSceneWriter owner, JsonObject json, int index, JsonArray children, Matrix4 global)
        {
            _owner = owner;
            _children = children;
            Json = json;
            Index = index;
            Global = global;
        }

        internal JsonObject Json { get; }

        internal int Index { get; }

        /// <summary>The transform of the entities into the space of the scene.</summary>
        internal Matrix4 Global { get; }

        /// <summary>This place when it is free for one more of a kind, or else a new one below it.</summary>
        internal Place With(string kind, string name) => _taken.Add(kind) ? this
            : Below(name, static _ => { });

        /// <summary>A new node below this one.</summary>
        internal Place Below(string name, Action<JsonObject> setTransform)
        {
            var json = new JsonObject();
            if (name.Length > 0)
                json["name"] = name;
            setTransform(json);
            int index = _owner._document.Add("nodes", json);
            if (_children.Count == 0)
                Json["children"] = _children;
            _children.Add((JsonNode)index);
            return new Place(_owner, json, index, [], Global);
        }
    }
}
