using System;
using System.Collections.Generic;
using System.IO;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Shading;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>Writes textures, samplers and images; equal ones are written once.</summary>
internal sealed class GltfTextureWriter
{
    private readonly GltfDocument _document;
    private readonly GltfSideFiles _sideFiles;
    private readonly GltfSaveOptions _options;
    private readonly WriteContext _context;
    private readonly Dictionary<(int Image, int Sampler, string Name), int> _textureOf = [];
    private readonly Dictionary<(int Mag, int Min, int WrapS, int WrapT), int> _samplerOf = [];
    private readonly List<(Texture Source, string Name, int Index)> _images = [];

    internal GltfTextureWriter(GltfDocument document, GltfSideFiles sideFiles, GltfSaveOptions options,
        WriteContext context)
    {
        _context = context;
        _document = document;
        _sideFiles = sideFiles;
        _options = options;
    }

    /// <summary>The use of a texture by a material: index, texture coordinates, transform.</summary>
    internal JsonObject InfoOf(TextureBase source)
    {
        if (source is not Texture texture)
            throw _context.Error(
                $"glTF has no form for a texture of the type {source.GetType().Name} ('{source.Name}')");
        var info = new JsonObject { ["index"] = IndexOf(texture) };
        if (texture.GetProperty(GltfNames.TexCoord) is int texCoord && texCoord > 0)
            info["texCoord"] = texCoord;
        GltfUVTransform transform = GltfUVTransform.Of(texture);
        if (transform == GltfUVTransform.Identity)
            return info;
        if (_options.FlipTexCoordV)
            transform = transform.Flip();
        var told = new JsonObject();
        if ((float)transform.OffsetU != 0 || (float)transform.OffsetV != 0)
            told["offset"] = GltfValues.Factors(transform.OffsetU, transform.OffsetV);
        if (transform.Rotation != 0)
            told["rotation"] = GltfValues.Factor(transform.Rotation);
        if (transform.ScaleU != 1 || transform.ScaleV != 1)
            told["scale"] = GltfValues.Factors(transform.ScaleU, transform.ScaleV);
        _document.AddExtension(info, GltfNames.TextureTransform, told);
        return info;
    }

    private int IndexOf(Texture texture)
    {
        int image = ImageOf(texture);
        int sampler = SamplerOf(texture);
        var key = (image, sampler, texture.Name);
        if (_textureOf.TryGetValue(key, out int known))
            return known;
        var json = new JsonObject { ["sampler"] = sampler };
        // A texture without a name goes by the name of its image.
        if (texture.Name.Length > 0 && (image < 0 || texture.Name != ImageNameOf(texture)))
            json["name"] = texture.Name;
        if (image >= 0)
        {
            string? extension = GltfImages.MediaTypeOf(texture.Content) switch
            {
                GltfImages.Webp => GltfNames.WebpImages,
                GltfImages.Ktx2 => GltfNames.BasisImages,
                _ => null,
            };
            if (extension is null)
                json["source"] = image;
            else
                _document.AddExtension(json, extension, new JsonObject { ["source"] = image });
        }
        if (_options.SaveExtras)
            GltfExtras.Write(json, texture, static name => name is GltfNames.TexCoord or GltfNames.ImageName);
        return _textureOf[key] = _document.Add("textures", json);
    }

    private int SamplerOf(Texture texture)
    {
        const int Nearest = 9728;
        const int Linear = 9729;
        int mag = texture.MagFilter is TextureFilter.Point or TextureFilter.None ? Nearest : Linear;
        bool isPoint = texture.MinFilter is TextureFilter.Point or TextureFilter.None;
        int min = texture.EnableMipMap ? texture.MipFilter switch
        {
            TextureFilter.None => isPoint ? Nearest : Linear,
            TextureFilter.Point => isPoint ? 9984 : 9985,
            _ => isPoint ? 9986 : 9987,
        } : isPoint ? Nearest : Linear;
        var key = (mag, min, WrapOf(texture.WrapModeU), WrapOf(texture.WrapModeV));
        if (_samplerOf.TryGetValue(key, out int known))
            return known;
        var json = new JsonObject { ["magFilter"] = key.mag, ["minFilter"] = key.min };
        json["wrapS"] = key.Item3;
        json["wrapT"] = key.Item4;
        return _samplerOf[key] = _document.Add("samplers", json);
    }

    // Two modes have no equal: mirroring once is nearest to mirroring, a border of one colour to the edge's
    // colour.
    private static int WrapOf(WrapMode mode) => mode switch
    {
        WrapMode.Wrap => 10497,
        WrapMode.Mirror or WrapMode.MirrorOnce => 33648,
        _ => 33071,
    };

    private int ImageOf(Texture texture)
    {
        if (texture.Content is null && string.IsNullOrEmpty(texture.FileName))
            return -1;
        string name = ImageNameOf(texture);
        foreach ((Texture source, string known, int index) in _images)
        {
            if (known == name && IsSameImage(source, texture))
                return index;
        }
        JsonObject json = [];
        if (name.Length > 0)
            json["name"] = name;
        WriteImage(json, texture);
        int added = _document.Add("images", json);
        _images.Add((texture, name, added));
        return added;
    }

    private static string ImageNameOf(Texture texture)
    {
        if (texture.GetProperty(GltfNames.ImageName) is string told)
            return told;
        return texture.Name.Length > 0 ? texture.Name : Path.GetFileNameWithoutExtension(texture.FileName)
            ?? string.Empty;
    }

    private static bool IsSameImage(Texture a, Texture b)
    {
        if (a.FileName != b.FileName)
            return false;
        return ReferenceEquals(a.Content, b.Content)
            || (a.Content is not null && b.Content is not null
                && a.Content.AsSpan().SequenceEqual(b.Content));
    }

    private void WriteImage(JsonObject json, Texture texture)
    {
        byte[]? content = texture.Content ?? _sideFiles.FindImage(texture.FileName!);
        if (content is null)
        {
            if (_options.ExportTextures || _options.EmbedAssets)
                throw _context.Error(
                    $"the image file '{texture.FileName}' of the texture '{texture.Name}' cannot be found");
            json["uri"] = UriOf(texture.FileName!);
            return;
        }
        bool isConverted = Convert(ref content, texture);
        string? mediaType = GltfImages.MediaTypeOf(content);
        if (_sideFiles.ImagePlace == GltfImagePlace.SideFile)
        {
            string fileName = string.IsNullOrEmpty(texture.FileName) || GltfUri.HasScheme(texture.FileName)
                ? GltfImages.SafeFileName(texture.Name) + GltfImages.ExtensionOf(mediaType ?? string.Empty)
                : isConverted ? Path.ChangeExtension(texture.FileName, GltfImages.ExtensionOf(mediaType!))
                    : texture.FileName;
            json["uri"] = GltfUri.FromFileName(_sideFiles.WriteImage(fileName, content));
        }
        else if (mediaType is not null && _sideFiles.ImagePlace == GltfImagePlace.Buffer)
        {
            json["bufferView"] = _document.AddImageView(content);
            json["mimeType"] = mediaType;
        }
        else
        {
            // A buffer view is for the kinds that documents name; an image of another kind is kept as it is
            // all the same.
            json["uri"] = GltfUri.ToData(mediaType ?? "application/octet-stream", content);
        }
    }

    private static string UriOf(string fileName) => GltfUri.HasScheme(fileName) ? fileName
        : GltfUri.FromFileName(fileName);

    /// <summary>Brings an image into the format that the options ask for.</summary>
    /// <returns>Whether it had to be changed.</returns>
    private bool Convert(ref byte[] content, Texture texture)
    {
        (string? mediaType, string extension) = _options.ImageFormat switch
        {
            GltfEmbeddedImageFormat.JPEG => (GltfImages.Jpeg, "jpg"),
            GltfEmbeddedImageFormat.PNG => (GltfImages.Png, "png"),
            _ => (null, string.Empty),
        };
        if (mediaType is null || GltfImages.MediaTypeOf(content) == mediaType)
            return false;
        try
        {
            using var converted = new MemoryStream();
            TextureCodec.Encode(TextureCodec.Decode(new MemoryStream(content), false), converted, extension);
            content = converted.ToArray();
            return true;
        }
        catch (Exception e) when (e is NotSupportedException or InvalidDataException)
        {
            throw _context.Error(
                $"GltfSaveOptions.ImageFormat asks for {mediaType}, but the image of the texture "
                + $"'{texture.Name}' "
                + $"cannot be converted: {ReadContext.Reason(e)}", e);
        }
    }
}
