using System;
using System.IO;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Animation;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Writes glTF 2.0, as a binary file or as text with the buffer and the images embedded or in files beside
/// it. Options that ask for what is not there are refused by name.
/// </summary>
internal sealed class GltfWriter : ISceneWriter
{
    private const string Generator = "velbor.voxlar";

    public void Write(Stream stream, Scene scene, WriteContext context)
    {
        GltfSaveOptions options = context.OptionsAs<GltfSaveOptions>();
        bool isBinary = context.Format.ContentType == FileContentType.Binary;
        CheckOptions(options, isBinary, context);
        var document = new GltfDocument();
        var sideFiles = new GltfSideFiles(context, options, isBinary);
        WriteAsset(document.Asset, scene.AssetInfo, options);
        var scenes = new GltfSceneWriter(document, sideFiles, options, context);
        scenes.Write(scene);
        foreach (AnimationClip clip in scene.AnimationClips)
            scenes.WriteAnimation(clip);
        Finish(stream, document, sideFiles, options, isBinary, context);
    }

    private static void CheckOptions(GltfSaveOptions options, bool isBinary, WriteContext context)
    {
        if (options.DracoCompression)
            throw context.Error(
                "GltfSaveOptions.DracoCompression is set, but compression with Draco is not supported");
        if (!string.IsNullOrEmpty(options.ExternalDracoEncoder))
            throw context.Error(
                "GltfSaveOptions.ExternalDracoEncoder is set, but compression with Draco is not supported");
        if (!string.IsNullOrEmpty(options.BufferFile) && (isBinary || options.EmbedAssets))
            throw context.Error(
                "GltfSaveOptions.BufferFile is set, but the buffer is written into the file itself");
        if (options.FallbackNormal is { Length: not > 0 })
            throw context.Error("GltfSaveOptions.FallbackNormal has no direction");
    }

    private static void WriteAsset(JsonObject asset, AssetInfo info, GltfSaveOptions options)
    {
        asset["version"] = "2.0";
        asset["generator"] = string.IsNullOrEmpty(info.ApplicationName) ? Generator : info.ApplicationName;
        if (!string.IsNullOrEmpty(info.Copyright))
            asset["copyright"] = info.Copyright;
        if (options.SaveExtras)
            GltfAssetExtras.Write(asset, info);
    }

    private static void Finish(Stream stream, GltfDocument document, GltfSideFiles sideFiles,
        GltfSaveOptions options,
            bool isBinary, WriteContext context)
    {
        if (isBinary)
        {
            GlbContainer.Write(stream, document.ToUtf8(null, options.PrettyPrint), document.Binary, context);
            return;
        }
        string? uri = null;
        if (sideFiles.IsWhole)
        {
            uri = GltfUri.ToData("application/octet-stream", document.Binary.ToArray());
        }
        else if (document.Binary.Length > 0)
        {
            string name = string.IsNullOrEmpty(options.BufferFile) ? NameOfBuffer(context)
                : options.BufferFile;
            using (Stream file = context.CreateSideFile(name))
                document.Binary.WriteTo(file);
            uri = GltfUri.FromFileName(name);
        }
        stream.Write(document.ToUtf8(uri, options.PrettyPrint));
    }

    private static string NameOfBuffer(WriteContext context) =>
        (context.BaseName.Length == 0 ? "buffer" : context.BaseName) + ".bin";
}
