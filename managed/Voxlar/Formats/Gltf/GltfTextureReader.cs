using System;
using System.Collections.Generic;
using System.IO;
using Velbor.Voxlar.Shading;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Makes textures. Two uses of one texture with the same coordinates and transform give the same object.
/// Images are read when they lie in the document or in a file beside it; a file that is not there leaves its
/// name.
/// </summary>
internal sealed class GltfTextureReader
{
    private const int Nearest = 9728;
    private const int Linear = 9729;
    private const int NearestMipNearest = 9984;
    private const int LinearMipNearest = 9985;
    private const int NearestMipLinear = 9986;
    private const int LinearMipLinear = 9987;
    private const int ClampToEdge = 33071;
    private const int MirroredRepeat = 33648;
    private const int Repeat = 10497;

    private readonly GltfJson[] _textures;
    private readonly GltfJson[] _images;
    private readonly GltfJson[] _samplers;
    private readonly GltfAccessors _accessors;
    private readonly ReadContext _context;
    private readonly bool _flipV;
    private readonly Image?[] _read;
    private readonly Dictionary<(int Texture, long TexCoord, GltfUVTransform Transform), Texture> _made = [];

    internal GltfTextureReader(GltfJson root, GltfAccessors accessors, ReadContext context, bool flipV)
    {
        _textures = root.Objects("textures");
        _images = root.Objects("images");
        _samplers = root.Objects("samplers");
        _read = new Image?[_images.Length];
        _accessors = accessors;
        _context = context;
        _flipV = flipV;
    }

    private sealed record Image(string? Name, string? FileName, byte[]? Content);

    /// <summary>Reads the texture that a member of a material tells.</summary>
    internal bool TryRead(GltfJson owner, string name, out Texture? texture, out GltfJson info)
    {
        texture = null;
        info = default;
        if (!owner.IsObject || !owner.TryGetObject(name, out info))
            return false;
        info.Require("index");
        int index = info.Index("index", _textures.Length, "texture");
        long texCoord = info.Count("texCoord", 0);
        GltfUVTransform transform = GltfUVTransform.Identity;
        if (info.TryGetExtension(GltfNames.TextureTransform, out GltfJson told))
        {
            double[] offset = told.TryGet("offset", out _) ? told.Doubles("offset", 2) : [0, 0];
            double[] scale = told.TryGet("scale", out _) ? told.Doubles("scale", 2) : [1, 1];
            transform = new GltfUVTransform(offset[0], offset[1], told.Double("rotation", 0), scale[0],
                scale[1]);
            texCoord = told.Count("texCoord", texCoord);
        }
        if (_made.TryGetValue((index, texCoord, transform), out texture))
            return true;
        texture = Make(_textures[index]);
        if (transform != GltfUVTransform.Identity)
            (_flipV ? transform.Flip() : transform).ApplyTo(texture);
        if (texCoord != 0)
            texture.SetProperty(GltfNames.TexCoord, (int)Math.Min(texCoord, int.MaxValue));
        _made[(index, texCoord, transform)] = texture;
        return true;
    }

    private Texture Make(GltfJson json)
    {
        int source = json.Index("source", _images.Length, "image");
        foreach (string extension in new[] { GltfNames.WebpImages, GltfNames.BasisImages })
        {
            if (source < 0 && json.TryGetExtension(extension, out GltfJson other))
                source = other.Index("source", _images.Length, "image");
        }
        Image? image = source < 0 ? null : _read[source] ??= ReadImage(source);
        string? name = json.StringOrNull("name");
        var texture = new Texture(name ?? image?.Name ?? Path.GetFileNameWithoutExtension(image?.FileName)
            ?? string.Empty)
        {
            FileName = image?.FileName,
            Content = image?.Content,
        };
        if (name is not null && image?.Name is string imageName && imageName != name)
            texture.SetProperty(GltfNames.ImageName, imageName);
        int sampler = json.Index("sampler", _samplers.Length, "sampler");
        if (sampler >= 0)
            ApplySampler(_samplers[sampler], texture);
        GltfExtras.Read(json, texture);
        return texture;
    }

    private static void ApplySampler(GltfJson sampler, Texture texture)
    {
        texture.WrapModeU = WrapFrom(sampler, "wrapS");
        texture.WrapModeV = WrapFrom(sampler, "wrapT");
        if (sampler.TryGet("magFilter", out GltfJson mag))
        {
            texture.MagFilter = mag.AsCount() switch
            {
                Nearest => TextureFilter.Point,
                Linear => TextureFilter.Linear,
                long other => throw mag.Place.Fault($"there is no filter {other} for magnification"),
            };
        }
        if (sampler.TryGet("minFilter", out GltfJson min))
        {
            (texture.MinFilter, texture.MipFilter) = min.AsCount() switch
            {
                Nearest => (TextureFilter.Point, TextureFilter.None),
                Linear => (TextureFilter.Linear, TextureFilter.None),
                NearestMipNearest => (TextureFilter.Point, TextureFilter.Point),
                LinearMipNearest => (TextureFilter.Linear, TextureFilter.Point),
                NearestMipLinear => (TextureFilter.Point, TextureFilter.Linear),
                LinearMipLinear => (TextureFilter.Linear, TextureFilter.Linear),
                long other => throw min.Place.Fault($"there is no filter {other} for minification"),
            };
            texture.EnableMipMap = texture.MipFilter != TextureFilter.None;
        }
    }

    private static WrapMode WrapFrom(GltfJson sampler, string name)
    {
        if (!sampler.TryGet(name, out GltfJson value))
            return WrapMode.Wrap;
        return value.AsCount() switch
        {
            Repeat => WrapMode.Wrap,
            ClampToEdge => WrapMode.Clamp,
            MirroredRepeat => WrapMode.Mirror,
            long other => throw value.Place.Fault($"there is no wrap mode {other}"),
        };
    }

    private Image ReadImage(int index)
    {
        GltfJson json = _images[index];
        string? name = json.StringOrNull("name");
        string mediaType = json.StringOrNull("mimeType") ?? string.Empty;
        byte[]? content;
        string? fileName = null;
        if (json.TryGet("uri", out GltfJson uri))
        {
            string text = uri.AsString();
            if (GltfUri.IsData(text))
            {
                content = GltfUri.DecodeData(uri, out string told);
                mediaType = mediaType.Length > 0 ? mediaType : told;
            }
            else
            {
                bool isLocal = !GltfUri.HasScheme(text);
                fileName = isLocal ? GltfUri.ToFileName(text) : text;
                content = isLocal ? ReadFile(fileName) : null;
            }
        }
        else if (json.TryGet("bufferView", out _))
        {
            int view = json.Index("bufferView", _accessors.ViewCount, "buffer view");
            content = _accessors.ReadView(view).ToArray();
        }
        else
        {
            throw json.Place.Fault("the image has neither a URI nor a buffer view");
        }
        // Other formats keep images in files; a name that tells their kind is of use there.
        fileName ??= (string.IsNullOrEmpty(name) ? $"image{index}" : GltfImages.SafeFileName(name))
            + GltfImages.ExtensionOf(GltfImages.MediaTypeOf(content) ?? mediaType);
        return new Image(name, fileName, content);
    }

    // A scene without one of its images is still of use; the name of the file stays.
    private byte[]? ReadFile(string fileName)
    {
        using Stream? file = _context.TryOpenSideFile(fileName);
        return file is null ? null : _context.ReadAll(file);
    }
}
