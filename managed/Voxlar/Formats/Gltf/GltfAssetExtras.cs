using System;
using System.Collections.Generic;
using System.Globalization;
using System.Text.Json;
using System.Text.Json.Nodes;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// What is known about the asset and has no member in the document goes to the extras of its asset object.
/// </summary>
internal static class GltfAssetExtras
{
    private sealed record Text(string Name, Func<AssetInfo, string?> Get, Action<AssetInfo, string> Set);

    private static readonly Text[] Texts =
    [
        new("title", a => a.Title, (a, v) => a.Title = v),
        new("subject", a => a.Subject, (a, v) => a.Subject = v),
        new("author", a => a.Author, (a, v) => a.Author = v),
        new("keywords", a => a.Keywords, (a, v) => a.Keywords = v),
        new("revision", a => a.Revision, (a, v) => a.Revision = v),
        new("comment", a => a.Comment, (a, v) => a.Comment = v),
        new("url", a => a.Url, (a, v) => a.Url = v),
        new("applicationVendor", a => a.ApplicationVendor, (a, v) => a.ApplicationVendor = v),
        new("applicationVersion", a => a.ApplicationVersion, (a, v) => a.ApplicationVersion = v),
        new("creationTime", a => TimeText(a.CreationTime), (a, v) => a.CreationTime = TimeFrom(v)),
        new("modificationTime", a => TimeText(a.ModificationTime),
            (a, v) => a.ModificationTime = TimeFrom(v)),
    ];

    internal static void Read(GltfJson asset, AssetInfo info)
    {
        if (!asset.TryGet(GltfNames.Extras, out GltfJson extras))
            return;
        if (!extras.IsObject)
        {
            GltfExtras.Read(extras, info, null);
            return;
        }
        foreach ((string name, GltfJson value) in extras.Members())
        {
            Text? text = Array.Find(Texts, item => item.Name == name);
            if (text is not null && value.Element.ValueKind == JsonValueKind.String)
                text.Set(info, value.AsString());
            else
                GltfExtras.ReadMember(info, name, value);
        }
    }

    internal static void Write(JsonObject asset, AssetInfo info)
    {
        GltfExtras.Write(asset, info);
        foreach (Text text in Texts)
        {
            if (text.Get(info) is not string value)
                continue;
            if (asset["extras"] is not JsonObject extras)
                asset["extras"] = extras = [];
            extras[text.Name] = value;
        }
    }

    private static string? TimeText(DateTime? time) => time?.ToString("o", CultureInfo.InvariantCulture);

    private static DateTime? TimeFrom(string text) =>
        DateTime.TryParse(text, CultureInfo.InvariantCulture, DateTimeStyles.RoundtripKind, out DateTime time)
            ? time : null;
}
