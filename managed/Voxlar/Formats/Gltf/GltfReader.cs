using System;
using System.Collections.Generic;
using System.IO;
using System.Text.Json;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Reads glTF 2.0, both forms. What a document holds besides its scenes (nodes, materials, meshes that no
/// scene shows) goes to the library of the scene, so that nothing is lost. Required extensions that are not
/// understood are refused by name.
/// </summary>
internal sealed class GltfReader : ISceneReader
{
    private const double MetreInCentimetres = 100;

    public void Read(Stream stream, Scene scene, ReadContext context)
    {
        ReadOnlyMemory<byte> file = context.ReadAll(stream);
        ReadOnlyMemory<byte>? binary = null;
        ReadOnlyMemory<byte> text = file;
        if (GlbContainer.HasMagic(file.Span))
            (text, binary) = GlbContainer.Split(context, file);
        using JsonDocument document = GltfJson.Parse(context, text);
        var root = new GltfJson(document.RootElement, new GltfPlace(context));
        CheckVersion(root);
        CheckExtensions(root);
        new Run(root, binary, scene, context).Read();
    }

    private static void CheckVersion(GltfJson root)
    {
        if (!root.TryGetObject("asset", out GltfJson asset))
            throw root.Place.Fault("the member \"asset\" is missing, so this is no glTF 2.0");
        string version = asset.Require("version").AsString();
        if (version.StartsWith("1.", StringComparison.Ordinal) || version == "1")
            throw asset.Place.Child("version").Fault(
                $"this is glTF {version}, which is not supported; glTF 2.0 is");
        if (!version.StartsWith("2.", StringComparison.Ordinal))
            throw asset.Place.Child("version").Fault(
                $"glTF of version \"{version}\" is not supported; version 2.0 is");
        if (asset.StringOrNull("minVersion") is string least && least != "2.0")
            throw asset.Place.Child("minVersion").Fault(
                $"the file needs a reader of version \"{least}\"; this one is of version 2.0");
    }

    private static void CheckExtensions(GltfJson root)
    {
        foreach (GltfJson item in root.Items("extensionsRequired"))
        {
            string name = item.AsString();
            if (!GltfNames.IsUnderstood(name))
                throw item.Place.Fault($"the file requires the extension {name}, which is not supported");
        }
    }

    /// <summary>One reading of one document.</summary>
    private sealed class Run
    {
        private readonly GltfJson _root;
        private readonly Scene _scene;
        private readonly ReadContext _context;
        private readonly GltfJson[] _nodeJson;
        private readonly Node[] _nodes;
        private readonly int[] _parents;
        private readonly GltfAccessors _accessors;
        private readonly GltfMaterialReader _materials;
        private readonly GltfMeshReader _meshes;
        private readonly GltfViewReader _views;
        private readonly GltfSkinReader _skins;
        private readonly Dictionary<int, List<MorphTargetChannel[]>> _morphs = [];

        internal Run(GltfJson root, ReadOnlyMemory<byte>? binary, Scene scene, ReadContext context)
        {
            _root = root;
            _scene = scene;
            _context = context;
            bool flipV = context.OptionsAs<GltfLoadOptions>().FlipTexCoordV;
            _nodeJson = root.Objects("nodes");
            _nodes = Array.ConvertAll(_nodeJson, MakeNode);
            _parents = new int[_nodes.Length];
            Array.Fill(_parents, -1);
            _accessors = new GltfAccessors(root, binary, context);
            _materials = new GltfMaterialReader(root,
                new GltfTextureReader(root, _accessors, context, flipV));
            _skins = new GltfSkinReader(root, _nodes);
            _meshes = new GltfMeshReader(root, _accessors, _materials, _skins, flipV);
            _views = new GltfViewReader(root);
        }

        internal void Read()
        {
            ReadAsset();
            LinkNodes();
            ReadScenes();
            for (int i = 0; i < _nodes.Length; i++)
                AddEntities(_nodes[i], i);
            new GltfAnimationReader(_root, _accessors, _nodes, node =>
                _morphs.GetValueOrDefault(node, [])).ReadInto(_scene);
            KeepTheRest();
        }

        private void ReadAsset()
        {
            GltfJson asset = _root.Require("asset");
            AssetInfo info = _scene.AssetInfo;
            info.ApplicationName = asset.StringOrNull("generator");
            info.Copyright = asset.StringOrNull("copyright");
            info.CoordinatedSystem = CoordinatedSystem.RightHanded;
            info.UpVector = Axis.YAxis;
            info.UnitName = "m";
            info.UnitScaleFactor = MetreInCentimetres;
            GltfAssetExtras.Read(asset, info);
        }

        private static Node MakeNode(GltfJson json)
        {
            var node = new Node(json.StringOrNull("name") ?? string.Empty);
            if (json.TryGet("matrix", out _))
            {
                double[] m = json.Doubles("matrix", 16);
                node.Transform.TransformMatrix = new Matrix4(m);
            }
            else
            {
                if (json.TryGet("translation", out _))
                    node.Transform.Translation = Vector(json.Doubles("translation", 3));
                if (json.TryGet("rotation", out _))
                {
                    double[] q = json.Doubles("rotation", 4);
                    node.Transform.Rotation = new Quaternion(q[3], q[0], q[1], q[2]);
                }
                if (json.TryGet("scale", out _))
                    node.Transform.Scale = Vector(json.Doubles("scale", 3));
            }
            if (json.TryGetExtension(GltfNames.NodeVisibility, out GltfJson visibility))
                node.Visible = visibility.Bool("visible", true);
            GltfExtras.Read(json, node);
            GltfExtensionData.Read(json, node);
            return node;
        }

        private static Vector3 Vector(double[] values) => new(values[0], values[1], values[2]);

        private void LinkNodes()
        {
            var children = new int[_nodes.Length][];
            for (int i = 0; i < _nodes.Length; i++)
            {
                children[i] = Array.ConvertAll(_nodeJson[i].Items("children"), item =>
                    item.AsIndex(_nodes.Length, "node"));
                foreach (int child in children[i])
                {
                    if (_parents[child] >= 0)
                        throw _nodeJson[i].Place.Child("children").Fault(
                            $"node {child} is a child of node {_parents[child]} already");
                    _parents[child] = i;
                }
            }
            CheckDepths();
            // From the last to the first, since a document names parents first: a child then comes with its
            // own children.
            for (int i = _nodes.Length - 1; i >= 0; i--)
            {
                foreach (int child in children[i])
                    _nodes[i].AddChildNode(_nodes[child]);
            }
        }

        private void CheckDepths()
        {
            var depths = new int[_nodes.Length];
            var chain = new List<int>();
            for (int i = 0; i < _nodes.Length; i++)
            {
                chain.Clear();
                int at = i;
                while (at >= 0 && depths[at] == 0)
                {
                    chain.Add(at);
                    if (chain.Count > _nodes.Length)
                        throw _nodeJson[i].Place.Child("children").Fault("the node stands below itself");
                    at = _parents[at];
                }
                int depth = at < 0 ? 0 : depths[at];
                for (int k = chain.Count - 1; k >= 0; k--)
                    depths[chain[k]] = ++depth;
                _context.CheckDepth(depth, "the hierarchy of nodes");
            }
        }

        private void ReadScenes()
        {
            GltfJson[] scenes = _root.Objects("scenes");
            int first = _root.Index("scene", scenes.Length, "scene");
            if (scenes.Length == 0)
            {
                for (int i = 0; i < _nodes.Length; i++)
                {
                    if (_parents[i] < 0)
                        _scene.RootNode.AddChildNode(_nodes[i]);
                }
                return;
            }
            first = Math.Max(first, 0);
            ReadScene(scenes[first], _scene);
            for (int i = 0; i < scenes.Length; i++)
            {
                if (i != first)
                    ReadScene(scenes[i], new Scene(_scene, string.Empty));
            }
        }

        private void ReadScene(GltfJson json, Scene target)
        {
            target.Name = json.StringOrNull("name") ?? string.Empty;
            foreach (GltfJson item in json.Items("nodes"))
            {
                int index = item.AsIndex(_nodes.Length, "node");
                if (_parents[index] >= 0)
                    throw item.Place.Fault(
                        $"node {index} is a child of node {_parents[index]} and cannot be the root of a "
                        + "scene");
                bool isTaken = _nodes[index].ParentNode is not null;
                target.RootNode.AddChildNode(isTaken ? Copy(index) : _nodes[index]);
            }
            GltfExtras.Read(json, target);
            GltfExtensionData.Read(json, target);
        }

        // A node has one place, so a further scene that shows the same tree gets a copy of its nodes;
        // entities stay shared.
        private Node Copy(int index)
        {
            Node copy = MakeNode(_nodeJson[index]);
            foreach (GltfJson item in _nodeJson[index].Items("children"))
                copy.AddChildNode(Copy(item.AsIndex(_nodes.Length, "node")));
            AddEntities(copy, index);
            return copy;
        }

        private void AddEntities(Node node, int index)
        {
            GltfJson json = _nodeJson[index];
            int mesh = json.Index("mesh", _meshes.Count, "mesh");
            int skin = json.Index("skin", _skins.Count, "skin");
            if (mesh >= 0)
            {
                GltfMeshContent content = _meshes.Get(mesh, skin, json.DoublesOrNull("weights"));
                foreach (Entity entity in content.Entities)
                    node.AddEntity(entity);
                foreach (Material material in content.Materials)
                    node.Materials.Add(material);
                _morphs[index] = content.Morphs;
            }
            _views.AddTo(node, json);
        }

        private void KeepTheRest()
        {
            for (int i = 0; i < _nodes.Length; i++)
            {
                if (_nodes[i].ParentNode is null)
                    _scene.Library.Add(_nodes[i]);
            }
            // Told before the unused meshes below take up more of them.
            var unused = new List<int>();
            for (int i = 0; i < _materials.Count; i++)
            {
                if (!_materials.IsUsed(i))
                    unused.Add(i);
            }
            for (int i = 0; i < _meshes.Count; i++)
            {
                if (_meshes.IsUsed(i))
                    continue;
                foreach (Entity entity in _meshes.Get(i, -1, null).Entities)
                    _scene.Library.Add(entity);
            }
            foreach (int index in unused)
                _scene.Library.Add(_materials.Get(index));
            foreach (Entity view in _views.Unused())
                _scene.Library.Add(view);
        }
    }
}
