using System;
using System.Collections;
using System.Text.Json;
using System.Text.Json.Nodes;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Extensions that are not understood, on other objects than materials. Their data is carried on as a dynamic
/// property of the extension's name, unless it holds whole numbers: those may be indices into the document,
/// which change when it is written.
/// </summary>
internal static class GltfExtensionData
{
    internal static void Read(GltfJson owner, VbrObject target)
    {
        if (!owner.TryGetObject("extensions", out GltfJson all))
            return;
        foreach ((string name, GltfJson content) in all.Members())
        {
            bool isCarried = !GltfNames.IsUnderstood(name)
                && GltfNames.TrySplitExtension(name, out _, out string member)
                && member.Length == 0 && content.IsObject && !HoldsWholeNumbers(content.Element);
            if (isCarried)
                target.SetProperty(name, GltfValues.FromJson(content.Element));
        }
    }

    private static bool HoldsWholeNumbers(JsonElement value)
    {
        switch (value.ValueKind)
        {
            case JsonValueKind.Number:
                return value.TryGetInt64(out _);
            case JsonValueKind.Array:
                foreach (JsonElement item in value.EnumerateArray())
                {
                    if (HoldsWholeNumbers(item))
                        return true;
                }
                return false;
            case JsonValueKind.Object:
                foreach (JsonProperty member in value.EnumerateObject())
                {
                    if (HoldsWholeNumbers(member.Value))
                        return true;
                }
                return false;
            default:
                return false;
        }
    }

    /// <summary>Whether a property carries the data of an extension, and so is no extra.</summary>
    internal static bool IsData(Property property) =>
        property is UserProperty { Value: IDictionary }
        && GltfNames.TrySplitExtension(property.Name, out _, out string member) && member.Length == 0;

    internal static void Write(GltfDocument document, JsonObject json, VbrObject source)
    {
        foreach (Property property in source.Properties)
        {
            if (IsData(property))
                document.AddExtension(json, property.Name, GltfValues.ToJson(property)!);
        }
    }
}
