using System;
using System.Collections;
using System.Collections.Generic;
using System.Globalization;
using System.Text;
using Velbor.Voxlar.Animation;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Tests.Gltf;

/// <summary>
/// A scene as lines of text, all that a document can hold included, so that two scenes can be compared.
/// Numbers are told with seven digits, the precision of the format.
/// </summary>
internal static class SceneDescription
{
    public static List<string> Of(Scene scene)
    {
        var lines = new List<string>();
        Describe(scene, lines);
        return lines;
    }

    private static void Describe(Scene scene, List<string> lines)
    {
        AssetInfo asset = scene.AssetInfo;
        // A document always names who wrote it.
        string by = string.IsNullOrEmpty(asset.ApplicationName) ? "velbor.voxlar" : asset.ApplicationName;
        lines.Add($"scene '{scene.Name}' by '{by}' (c) '{asset.Copyright}' '{asset.Title}' '{asset.Author}'");
        Properties(scene, lines);
        Properties(asset, lines);
        foreach (Node node in scene.RootNode.ChildNodes)
            Describe(node, " ", lines);
        foreach (VbrObject item in scene.Library)
        {
            lines.Add($"library {item.GetType().Name} '{item.Name}'");
            if (item is Material material)
                Describe(material, lines);
        }
        foreach (AnimationClip clip in scene.AnimationClips)
            Describe(clip, lines);
        foreach (Scene sub in scene.SubScenes)
            Describe(sub, lines);
    }

    private static void Describe(Node node, string indent, List<string> lines)
    {
        lines.Add($"{indent}node '{node.Name}' {Numbers(node.Transform.TransformMatrix.ToArray())}{(node.Visible ? "" : " hidden")}");
        Properties(node, lines);
        foreach (Entity entity in node.Entities)
            Describe(entity, lines);
        foreach (Material material in node.Materials)
            Describe(material, lines);
        foreach (Node child in node.ChildNodes)
            Describe(child, indent + " ", lines);
    }

    private static void Describe(Entity entity, List<string> lines)
    {
        lines.Add($"{entity.GetType().Name} '{entity.Name}'");
        Properties(entity, lines);
        switch (entity)
        {
            case Geometry geometry:
                Describe(geometry, lines);
                break;
            case Line line:
                lines.Add("points " + Vectors(line.ControlPoints));
                foreach (int[] segment in line.Segments)
                    lines.Add("segment " + string.Join(' ', segment));
                break;
            case Camera camera:
                lines.Add(Text($"{camera.ProjectionType} {camera.FieldOfViewY:G6} {camera.AspectRatio:G6} {camera.OrthoHeight:G6}")
                    + Text($"{camera.Magnification.x} {camera.Magnification.y} {camera.NearPlane:G6} {camera.FarPlane:G6}")
                    + Numbers(camera.Direction.x, camera.Direction.y, camera.Direction.z, camera.Up.x,
                        camera.Up.y, camera.Up.z));
                break;
            case Light light:
                lines.Add(Text($"{light.LightType} {light.Intensity:G6} {light.HotSpot:F3} {light.Falloff:F3}")
                    + Numbers(light.Color.x, light.Color.y, light.Color.z, light.Direction.x,
                        light.Direction.y, light.Direction.z));
                break;
        }
    }

    private static void Describe(Geometry geometry, List<string> lines)
    {
        lines.Add("points " + Vectors(geometry.ControlPoints));
        if (geometry is Mesh mesh)
        {
            var polygons = new StringBuilder("polygons");
            foreach (int[] polygon in mesh.Polygons)
                polygons.Append(' ').AppendJoin(',', polygon);
            lines.Add(polygons.ToString());
        }
        foreach (VertexElement element in geometry.VertexElements)
        {
            string values = element switch
            {
                VertexElementVector4 vectors => Vectors(vectors.Data),
                VertexElementIntsTemplate ints => string.Join(' ', ints.Data),
                VertexElementUserData { Data: Array data } => data.GetType().Name + Value(data),
                _ => "",
            };
            lines.Add($"{element} '{element.Name}' {string.Join(' ', element.Indices)} {values}");
        }
        foreach (Deformer deformer in geometry.Deformers)
        {
            lines.Add($"{deformer.GetType().Name} '{deformer.Name}'");
            Properties(deformer, lines);
            if (deformer is SkinDeformer skin)
                Describe(skin, geometry, lines);
            else if (deformer is MorphTargetDeformer morph)
                Describe(morph, lines);
        }
    }

    // The sum of the weights of a point is 1 in a valid document, whatever it was before.
    private static void Describe(SkinDeformer skin, Geometry geometry, List<string> lines)
    {
        var sums = new double[geometry.ControlPoints.Count];
        foreach (Bone bone in skin.Bones)
        {
            for (int i = 0; i < sums.Length; i++)
                sums[i] += bone.GetWeight(i);
        }
        foreach (Bone bone in skin.Bones)
        {
            Matrix4 inverseBind = bone.Transform.Concatenate(bone.BoneTransform.Inverse());
            var weights = new StringBuilder();
            for (int i = 0; i < geometry.ControlPoints.Count; i++)
                weights.Append(' ').Append(
                    Text($"{Math.Round(bone.GetWeight(i) / (sums[i] == 0 ? 1 : sums[i]), 5) + 0.0:F4}"));
            lines.Add($"bone '{bone.Name}' of '{bone.Node?.Name}' {Numbers(inverseBind.ToArray())}{weights}");
        }
    }

    private static void Describe(MorphTargetDeformer morph, List<string> lines)
    {
        foreach (MorphTargetChannel channel in morph.Channels)
        {
            lines.Add(Text($"channel '{channel.Name}' {channel.ChannelWeight:G6}"));
            foreach (Shape shape in channel.Targets)
                Describe(shape, lines);
        }
    }

    private static void Describe(Material material, List<string> lines)
    {
        string values = material switch
        {
            PbrMaterial m => Text(
                $"{Vector(m.Albedo)} {m.Transparency:F5} {m.MetallicFactor:F5} {m.RoughnessFactor:F5} {m.OcclusionFactor:F5} {Vector(m.EmissiveColor)}"),
            PbrSpecularMaterial m => Text(
                $"{Vector(m.Diffuse)} {m.Transparency:F5} {Vector(m.Specular)} {m.GlossinessFactor:F5} {Vector(m.EmissiveColor)}"),
            PhongMaterial m => Text(
                $"{Vector(m.DiffuseColor)} {Vector(m.AmbientColor)} {Vector(m.SpecularColor)} {m.Shininess:F5} {m.Transparency:F5}"),
            LambertMaterial m =>
                Text($"{Vector(m.DiffuseColor)} {Vector(m.AmbientColor)} {m.Transparency:F5}"),
            _ => "",
        };
        lines.Add($"{material.GetType().Name} '{material.Name}' {values}");
        Properties(material, lines);
        var slots = new List<string>();
        foreach (TextureSlot slot in material)
        {
            var texture = (Texture)slot.Texture;
            int hash = 0;
            foreach (byte b in texture.Content ?? [])
                hash = hash * 31 + b;
            slots.Add(Text($"slot {slot.SlotName} '{texture.Name}' {texture.Content?.Length} {hash} {texture.WrapModeU} {texture.WrapModeV} ")
                + Text($"{texture.MagFilter} {texture.MinFilter} {texture.MipFilter} {texture.EnableMipMap} ")
                + Text($"{Numbers(texture.UVTranslation.x, texture.UVTranslation.y, texture.UVScale.x, texture.UVScale.y, texture.UVRotation.z)} {texture.GetProperty("TexCoord")}"));
        }
        slots.Sort(StringComparer.Ordinal);
        lines.AddRange(slots);
    }

    private static void Describe(AnimationClip clip, List<string> lines)
    {
        lines.Add(Text($"clip '{clip.Name}' {clip.Start:G6} {clip.Stop:G6}"));
        Properties(clip, lines);
        foreach (AnimationNode node in clip.Animations)
        {
            lines.Add($"animation '{node.Name}'");
            foreach (BindPoint point in node.BindPoints)
            {
                foreach (AnimationChannel channel in point.Channels)
                {
                    var keys = new StringBuilder(Text($"{point.Name}.{channel.Name}"));
                    foreach (KeyframeSequence sequence in channel.KeyframeSequences)
                    {
                        foreach (KeyFrame key in sequence.KeyFrames)
                            keys.Append(Text(
                                $" {key.Time:G7}={key.Value:G7} {key.Interpolation} {key.OutTangent.y:G6} {key.NextInTangent.y:G6}"));
                    }
                    lines.Add(keys.ToString());
                }
            }
        }
    }

    private static void Properties(VbrObject item, List<string> lines)
    {
        var own = new List<string>();
        foreach (Property property in item.Properties)
        {
            if (property is UserProperty)
                own.Add($"property {property.Name} = {Value(property.Value)}");
        }
        own.Sort(StringComparer.Ordinal);
        lines.AddRange(own);
    }

    private static string Value(object? value) => value switch
    {
        null => "null",
        string text => $"'{text}'",
        double number => Text($"{(float)number:G6}"),
        float number => Text($"{number:G6}"),
        IDictionary members => Members(members),
        IEnumerable items => Items(items),
        VbrObject named => $"{named.GetType().Name} '{named.Name}'",
        _ => Convert.ToString(value, CultureInfo.InvariantCulture)!,
    };

    private static string Members(IDictionary members)
    {
        var parts = new List<string>();
        foreach (DictionaryEntry member in members)
            parts.Add($"{member.Key}: {Value(member.Value)}");
        return "{" + string.Join(", ", parts) + "}";
    }

    private static string Items(IEnumerable items)
    {
        var parts = new List<string>();
        foreach (object? item in items)
            parts.Add(Value(item));
        return "[" + string.Join(", ", parts) + "]";
    }

    private static string Vector(Vector3 v) => Numbers(v.x, v.y, v.z);

    private static string Vectors(IList<Vector4> values)
    {
        var text = new StringBuilder();
        foreach (Vector4 value in values)
            text.Append(Numbers(value.x, value.y, value.z, value.w)).Append(';');
        return text.ToString();
    }

    // Rounded to an absolute and a relative precision; negative zero counts as zero.
    private static string Numbers(params ReadOnlySpan<double> values)
    {
        var text = new StringBuilder();
        foreach (double value in values)
        {
            double rounded = Math.Round(value, 5) + 0.0;
            text.Append(CultureInfo.InvariantCulture,
                $"{(Math.Abs(rounded) > 10 ? (double)(float)value : rounded):G6} ");
        }
        return text.ToString();
    }

    private static string Text(FormattableString text) => FormattableString.Invariant(text);
}
