using System;
using System.Collections.Generic;
using System.Globalization;
using System.Text;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Writes skins: the nodes of the bones and where they stood when they were bound. Equal skins are written
/// once.
/// </summary>
internal sealed class GltfSkinWriter
{
    private readonly GltfDocument _document;
    private readonly IReadOnlyDictionary<Node, int> _nodeIndices;
    private readonly bool _saveExtras;
    private readonly WriteContext _context;
    private readonly Dictionary<string, int> _written = new(StringComparer.Ordinal);

    internal GltfSkinWriter(GltfDocument document, IReadOnlyDictionary<Node, int> nodeIndices,
        bool saveExtras, WriteContext context)
    {
        _document = document;
        _nodeIndices = nodeIndices;
        _saveExtras = saveExtras;
        _context = context;
    }

    internal static SkinDeformer? SkinOf(Geometry geometry, WriteContext context)
    {
        SkinDeformer? found = null;
        foreach (Deformer deformer in geometry.Deformers)
        {
            if (deformer is not SkinDeformer skin)
                continue;
            if (found is not null)
                throw context.Error(
                    $"the geometry '{geometry.Name}' has several skin deformers; glTF holds one");
            found = skin;
        }
        return found;
    }

    internal int IndexOf(SkinDeformer skin)
    {
        var joints = new JsonArray();
        var matrices = new float[skin.Bones.Count * 16];
        var key = new StringBuilder(skin.Name).Append('|');
        for (int i = 0; i < skin.Bones.Count; i++)
        {
            int joint = JointOf(skin.Bones[i], skin);
            joints.Add((JsonNode)joint);
            InverseBind(skin.Bones[i], matrices.AsSpan(i * 16, 16));
            key.Append(CultureInfo.InvariantCulture, $"{joint} ");
        }
        int accessor = _document.AddNumbers(matrices, 16, false);
        key.Append(CultureInfo.InvariantCulture, $"|{accessor}");
        var json = new JsonObject();
        if (skin.Name.Length > 0)
            json["name"] = skin.Name;
        json["inverseBindMatrices"] = accessor;
        if (skin.GetProperty(GltfNames.SkeletonRoot) is Node root
            && _nodeIndices.TryGetValue(root, out int skeleton))
        {
            json["skeleton"] = skeleton;
            key.Append(CultureInfo.InvariantCulture, $"|{skeleton}");
        }
        json["joints"] = joints;
        if (_saveExtras)
            GltfExtras.Write(json, skin, static name => name == GltfNames.SkeletonRoot);
        GltfExtensionData.Write(_document, json, skin);
        key.Append(json["extras"]?.ToJsonString()).Append(json["extensions"]?.ToJsonString());
        if (!_written.TryGetValue(key.ToString(), out int index))
            _written[key.ToString()] = index = _document.Add("skins", json);
        return index;
    }

    private int JointOf(Bone bone, SkinDeformer skin)
    {
        if (bone.Node is null)
            throw _context.Error($"the bone '{bone.Name}' of the skin '{skin.Name}' has no node");
        return _nodeIndices.TryGetValue(bone.Node, out int joint) ? joint
            : throw _context.Error(
                $"the node '{bone.Node.Name}' of the bone '{bone.Name}' is not written with the scene");
    }

    private void InverseBind(Bone bone, Span<float> target)
    {
        Matrix4 matrix = bone.Transform;
        if (bone.BoneTransform != Matrix4.Identity)
        {
            if (bone.BoneTransform.Determinant == 0)
                throw _context.Error($"the bone transform of the bone '{bone.Name}' has no inverse");
            matrix = matrix.Concatenate(bone.BoneTransform.Inverse());
        }
        double[] values = matrix.ToArray();
        for (int i = 0; i < 16; i++)
            target[i] = (float)values[i];
        // The last column is fixed for transforms in space; rounding must not show in it.
        target[3] = 0;
        target[7] = 0;
        target[11] = 0;
        target[15] = 1;
    }
}
