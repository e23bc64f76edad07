using System;
using System.Collections.Generic;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Makes skin deformers: a bone for each joint, with the weights of all control points. The document tells
/// the inverse of where the joint stood when it was bound, in the space of the mesh; so the bone's geometry
/// transform is the identity and its own transform is the inverse of what is told.
/// </summary>
internal sealed class GltfSkinReader
{
    private const double NearlySingular = 1e-30;

    private readonly GltfJson[] _skins;
    private readonly Node[] _nodes;

    internal GltfSkinReader(GltfJson root, Node[] nodes)
    {
        _skins = root.Objects("skins");
        _nodes = nodes;
    }

    internal int Count => _skins.Length;

    internal static bool IsSkinAttribute(string semantic) =>
        semantic.StartsWith("JOINTS_", StringComparison.Ordinal)
            || semantic.StartsWith("WEIGHTS_", StringComparison.Ordinal);

    internal SkinDeformer Make(int skin, List<(GltfPrimitive Primitive, int Start)> blocks,
        GltfAccessors accessors)
    {
        GltfJson json = _skins[skin];
        var deformer = new SkinDeformer(json.StringOrNull("name") ?? string.Empty);
        int root = json.Index("skeleton", _nodes.Length, "node");
        if (root >= 0)
            deformer.SetProperty(GltfNames.SkeletonRoot, _nodes[root]);
        Bone[] bones = MakeBones(json, accessors);
        foreach (Bone bone in bones)
            deformer.Bones.Add(bone);
        foreach ((GltfPrimitive primitive, int start) in blocks)
            ReadWeights(primitive, start, bones, accessors);
        GltfExtras.Read(json, deformer);
        GltfExtensionData.Read(json, deformer);
        return deformer;
    }

    private Bone[] MakeBones(GltfJson json, GltfAccessors accessors)
    {
        GltfJson[] joints = json.Require("joints").Items();
        float[]? inverses = null;
        int accessor = json.Index("inverseBindMatrices", accessors.Count, "accessor");
        if (accessor >= 0)
        {
            GltfPlace place = json.Place.Child("inverseBindMatrices");
            inverses = accessors.ReadFloats(accessor, 16, place);
            if (inverses.Length / 16 < joints.Length)
                throw place.Fault($"{inverses.Length / 16} matrices are there for {joints.Length} joints");
        }
        var bones = new Bone[joints.Length];
        for (int i = 0; i < bones.Length; i++)
        {
            Node node = _nodes[joints[i].AsIndex(_nodes.Length, "node")];
            bones[i] = new Bone(node.Name) { Node = node };
            if (inverses is null)
                continue;
            Matrix4 inverseBind = GltfVectors.MatrixFrom(inverses.AsSpan(i * 16, 16));
            if (Math.Abs(inverseBind.Determinant) > NearlySingular)
                bones[i].BoneTransform = inverseBind.Inverse();
            else
                bones[i].Transform = inverseBind;
        }
        return bones;
    }

    private static void ReadWeights(GltfPrimitive primitive, int start, Bone[] bones, GltfAccessors accessors)
    {
        for (int set = 0; primitive.Attributes.TryGetValue($"JOINTS_{set}", out int jointAccessor); set++)
        {
            GltfPlace place = primitive.Place.Child("attributes").Child($"JOINTS_{set}");
            if (!primitive.Attributes.TryGetValue($"WEIGHTS_{set}", out int weightAccessor))
                throw place.Fault($"there is no WEIGHTS_{set} for it");
            accessors.RequireComponents(jointAccessor, 4, place);
            int[] joints = accessors.ReadIntegers(jointAccessor, place);
            float[] weights = accessors.ReadFloats(weightAccessor, 4,
                primitive.Place.Child("attributes").Child($"WEIGHTS_{set}"));
            for (int i = 0; i < joints.Length; i++)
            {
                if (weights[i] == 0)
                    continue;
                if ((uint)joints[i] >= (uint)bones.Length)
                    throw place.Fault(
                        $"joint {joints[i]} of vertex {i / 4} is past the {bones.Length} joints of the skin");
                Bone bone = bones[joints[i]];
                int vertex = start + i / 4;
                bone.SetWeight(vertex, bone.GetWeight(vertex) + weights[i]);
            }
        }
    }
}
