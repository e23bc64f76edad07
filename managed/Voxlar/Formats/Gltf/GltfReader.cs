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
        private readonly GltfJson root;
        private readonly Scene scene;
        private readonly ReadContext context;
        private readonly GltfJson[] nodeJson;
        private readonly Node[] nodes;
        private readonly int[] parents;
        private readonly GltfAccessors accessors;
        private readonly GltfMaterialReader materials;
        private readonly GltfMeshReader meshes;
        private readonly GltfViewReader views;
        private readonly GltfSkinReader skins;
        private readonly Dictionary<int, List<MorphTargetChannel[]>> morphs = [];

        internal Run(GltfJson root, ReadOnlyMemory<byte>? binary, Scene scene, ReadContext context)
        {
            this.root = root;
            this.scene = scene;
            this.context = context;
            bool flipV = context.OptionsAs<GltfLoadOptions>().FlipTexCoordV;
            nodeJson = root.Objects("nodes");
            nodes = Array.ConvertAll(nodeJson, MakeNode);
            parents = new int[nodes.Length];
            Array.Fill(parents, -1);
            accessors = new GltfAccessors(root, binary, context);
            materials = new GltfMaterialReader(root, new GltfTextureReader(root, accessors, context, flipV));
            skins = new GltfSkinReader(root, nodes);
            meshes = new GltfMeshReader(root, accessors, materials, skins, flipV);
            views = new GltfViewReader(root);
        }

        internal void Read()
        {
            ReadAsset();
            LinkNodes();
            ReadScenes();
            for (int i = 0; i < nodes.Length; i++)
                AddEntities(nodes[i], i);
            new GltfAnimationReader(root, accessors, nodes, node =>
                morphs.GetValueOrDefault(node, [])).ReadInto(scene);
            KeepTheRest();
        }

        private void ReadAsset()
        {
            GltfJson asset = root.Require("asset");
            AssetInfo info = scene.AssetInfo;
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
            var children = new int[nodes.Length][];
            for (int i = 0; i < nodes.Length; i++)
            {
                children[i] = Array.ConvertAll(nodeJson[i].Items("children"), item =>
                    item.AsIndex(nodes.Length, "node"));
                foreach (int child in children[i])
                {
                    if (parents[child] >= 0)
                        throw nodeJson[i].Place.Child("children").Fault(
                            $"node {child} is a child of node {parents[child]} already");
                    parents[child] = i;
                }
            }
            CheckDepths();
            // From the last to the first, since a document names parents first: a child then comes with its
            // own children.
            for (int i = nodes.Length - 1; i >= 0; i--)
            {
                foreach (int child in children[i])
                    nodes[i].AddChildNode(nodes[child]);
            }
        }

        private void CheckDepths()
        {
            var depths = new int[nodes.Length];
            var chain = new List<int>();
            for (int i = 0; i < nodes.Length; i++)
            {
                chain.Clear();
                int at = i;
                while (at >= 0 && depths[at] == 0)
                {
                    chain.Add(at);
                    if (chain.Count > nodes.Length)
                        throw nodeJson[i].Place.Child("children").Fault("the node stands below itself");
                    at = parents[at];
                }
                int depth = at < 0 ? 0 : depths[at];
                for (int k = chain.Count - 1; k >= 0; k--)
                    depths[chain[k]] = ++depth;
                context.CheckDepth(depth, "the hierarchy of nodes");
            }
        }

        private void ReadScenes()
        {
            GltfJson[] scenes = root.Objects("scenes");
            int first = root.Index("scene", scenes.Length, "scene");
            if (scenes.Length == 0)
            {
                for (int i = 0; i < nodes.Length; i++)
                {
                    if (parents[i] < 0)
                        scene.RootNode.AddChildNode(nodes[i]);
                }
                return;
            }
            first = Math.Max(first, 0);
            ReadScene(scenes[first], scene);
            for (int i = 0; i < scenes.Length; i++)
            {
                if (i != first)
                    ReadScene(scenes[i], new Scene(scene, string.Empty));
            }
        }

        private void ReadScene(GltfJson json, Scene target)
        {
            target.Name = json.StringOrNull("name") ?? string.Empty;
            foreach (GltfJson item in json.Items("nodes"))
            {
                int index = item.AsIndex(nodes.Length, "node");
                if (parents[index] >= 0)
                    throw item.Place.Fault(
                        $"node {index} is a child of node {parents[index]} and cannot be the root of a "
                        + "scene");
                bool isTaken = nodes[index].ParentNode is not null;
                target.RootNode.AddChildNode(isTaken ? Copy(index) : nodes[index]);
            }
            GltfExtras.Read(json, target);
            GltfExtensionData.Read(json, target);
        }

        // A node has one place, so a further scene that shows the same tree gets a copy of its nodes;
        // entities stay shared.
        private Node Copy(int index)
        {
            Node copy = MakeNode(nodeJson[index]);
            foreach (GltfJson item in nodeJson[index].Items("children"))
                copy.AddChildNode(Copy(item.AsIndex(nodes.Length, "node")));
            AddEntities(copy, index);
            return copy;
        }

        private void AddEntities(Node node, int index)
        {
            GltfJson json = nodeJson[index];
            int mesh = json.Index("mesh", meshes.Count, "mesh");
            int skin = json.Index("skin", skins.Count, "skin");
            if (mesh >= 0)
            {
                GltfMeshContent content = meshes.Get(mesh, skin, json.DoublesOrNull("weights"));
                foreach (Entity entity in content.Entities)
                    node.AddEntity(entity);
                foreach (Material material in content.Materials)
                    node.Materials.Add(material);
                morphs[index] = content.Morphs;
            }
            views.AddTo(node, json);
        }

        private void KeepTheRest()
        {
            for (int i = 0; i < nodes.Length; i++)
            {
                if (nodes[i].ParentNode is null)
                    scene.Library.Add(nodes[i]);
            }
            // Told before the unused meshes below take up more of them.
            var unused = new List<int>();
            for (int i = 0; i < materials.Count; i++)
            {
                if (!materials.IsUsed(i))
                    unused.Add(i);
            }
            for (int i = 0; i < meshes.Count; i++)
            {
                if (meshes.IsUsed(i))
                    continue;
                foreach (Entity entity in meshes.Get(i, -1, null).Entities)
                    scene.Library.Add(entity);
            }
            foreach (int index in unused)
                scene.Library.Add(materials.Get(index));
            foreach (Entity view in views.Unused())
                scene.Library.Add(view);
        }
    }
}
