using System;
using System.Text.Json.Nodes;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Extras are the properties that the user added to an object. An extra whose name is that of an own property
/// of the object stands under "extras." and its name.
/// </summary>
internal static class GltfExtras
{
    private const string Prefix = GltfNames.Extras + ".";

    internal static void Read(GltfJson owner, VbrObject target)
    {
        if (owner.TryGet(GltfNames.Extras, out GltfJson extras))
            Read(extras, target, null);
    }

    /// <summary>Takes over the extras, without one name that has been read otherwise.</summary>
    internal static void Read(GltfJson extras, VbrObject target, string? except)
    {
        if (!extras.IsObject)
        {
            target.SetProperty(GltfNames.Extras, GltfValues.FromJson(extras.Element));
            return;
        }
        foreach ((string name, GltfJson value) in extras.Members())
        {
            if (name != except)
                ReadMember(target, name, value);
        }
    }

    internal static void ReadMember(VbrObject target, string name, GltfJson value) =>
        target.SetProperty(NameFor(target, name), GltfValues.FromJson(value.Element));

    private static string NameFor(VbrObject target, string name)
    {
        // What looks like the data of an extension must not be taken for it on the way out.
        bool isFree = name.Length > 0 && !GltfNames.TrySplitExtension(name, out _, out _)
            && target.FindProperty(name) is null or UserProperty
            && !name.StartsWith(Prefix, StringComparison.Ordinal) && name != GltfNames.Extras;
        return isFree ? name : Prefix + name;
    }

    /// <summary>
    /// Writes the added properties of an object, but those that have a place of their own in the document.
    /// </summary>
    /// <param name="json">The object of the document.</param>
    /// <param name="source">The object whose properties are written.</param>
    /// <param name="hasOwnPlace">Tells the names that are written elsewhere.</param>
    internal static void Write(JsonObject json, VbrObject source, Predicate<string>? hasOwnPlace = null)
    {
        JsonObject? members = null;
        JsonNode? whole = null;
        foreach (Property property in source.Properties)
        {
            if (property is not UserProperty || GltfExtensionData.IsData(property)
                || (hasOwnPlace is not null && hasOwnPlace(property.Name)))
                continue;
            if (property.Name == GltfNames.Extras)
            {
                whole = GltfValues.ToJson(property);
                continue;
            }
            string name = property.Name.StartsWith(Prefix, StringComparison.Ordinal)
                ? property.Name[Prefix.Length..] : property.Name;
            (members ??= [])[name] = GltfValues.ToJson(property);
        }
        if (members is not null && whole is not null)
            members[GltfNames.Extras] = whole;
        if ((JsonNode?)members is { } node)
            json["extras"] = node;
        else if (whole is not null)
            json["extras"] = whole;
    }
}
