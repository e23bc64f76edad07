using System;
using System.Collections.Generic;
using System.IO;
using Velbor.Voxlar.Animation;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>A scene: a graph of nodes, animation clips, poses, further objects and scenes inside the
/// scene.</summary>
public class Scene : SceneObject
{
    private readonly SubSceneList _subScenes;
    private readonly ClipList _clips;
    private AnimationClip? _currentClip;
    private AssetInfo _assetInfo = new();

    /// <summary>Makes an empty scene.</summary>
    public Scene()
        : base("")
    {
        _subScenes = new SubSceneList(this);
        _clips = new ClipList(this);
        RootNode = new Node("") { OwnerScene = this };
    }

    /// <summary>Makes a scene with one node that holds the entity.</summary>
    /// <exception cref="ArgumentNullException"><paramref name="entity"/> is null.</exception>
    public Scene(Entity entity)
        : this()
    {
        ArgumentNullException.ThrowIfNull(entity);
        RootNode.CreateChildNode(entity);
    }

    /// <summary>Makes an empty scene inside another one.</summary>
    /// <param name="parentScene">The scene among whose sub scenes the new one is.</param>
    /// <param name="name">The name.</param>
    public Scene(Scene parentScene, string name)
        : this()
    {
        ArgumentNullException.ThrowIfNull(parentScene);
        Name = name;
        parentScene.SubScenes.Add(this);
    }

    /// <summary>Makes a scene out of a file.</summary>
    /// <exception cref="ImportException">The file cannot be read.</exception>
    public Scene(string fileName)
        : this() => Open(fileName);

    /// <summary>The scenes inside this one. A scene stands in at most one other, and in no circle.</summary>
    public IList<Scene> SubScenes => _subScenes;

    /// <summary>Objects that belong to the scene but stand nowhere in its graph.</summary>
    public IList<VbrObject> Library { get; } = new List<VbrObject>();

    /// <summary>The animation clips.</summary>
    public IList<AnimationClip> AnimationClips => _clips;

    /// <summary>The clip that is played, or null. A clip of no scene is added when it is set here.</summary>
    public AnimationClip? CurrentAnimationClip
    {
        get => _currentClip;
        set
        {
            if (value is not null && !_clips.Contains(value))
                _clips.Add(value);
            _currentClip = value;
        }
    }

    /// <summary>What is known about the scene as an asset; never null, a new one in place of null.</summary>
    public AssetInfo AssetInfo
    {
        get => _assetInfo;
        set => _assetInfo = value ?? new AssetInfo();
    }

    /// <summary>The poses.</summary>
    public ICollection<Pose> Poses { get; } = new List<Pose>();

    /// <summary>The root of the graph; it stays the same object as long as the scene lives.</summary>
    public Node RootNode { get; }

    /// <summary>Reads a scene from a stream, whose content tells the format. What the scene held is
    /// dropped.</summary>
    /// <remarks>After a failure the scene is empty.</remarks>
    /// <param name="stream">The stream; it stays open.</param>
    /// <exception cref="ImportException">The content cannot be read.</exception>
    public void Open(Stream stream)
    {
        ArgumentNullException.ThrowIfNull(stream);
        SceneLoader.Load(this, stream, null, null);
    }

    /// <summary>Reads a scene from a file. What the scene held is dropped.</summary>
    /// <remarks>
    /// The content tells the format; where it does not, the options and then the extension do. Options of
    /// another format than the content's are refused. After a failure the scene is empty.
    /// </remarks>
    /// <param name="fileName">The name of the file.</param>
    /// <param name="options">How it is read; null for the defaults.</param>
    /// <exception cref="ImportException">The file cannot be read.</exception>
    public void Open(string fileName, LoadOptions? options) => SceneLoader.Load(this, fileName, options);

    /// <summary>Reads a scene from a file. What the scene held is dropped.</summary>
    /// <exception cref="ImportException">The file cannot be read.</exception>
    public void Open(string fileName) => Open(fileName, null);

    /// <summary>Writes the scene to a stream.</summary>
    /// <param name="stream">The stream; it stays open.</param>
    /// <param name="format">The format.</param>
    /// <exception cref="ExportException">The scene cannot be written.</exception>
    public void Save(Stream stream, FileFormat format)
    {
        ArgumentNullException.ThrowIfNull(stream);
        ArgumentNullException.ThrowIfNull(format);
        SceneSaver.Save(this, stream, format, format.CreateSaveOptions());
    }

    /// <summary>Writes the scene to a stream in the format of the options.</summary>
    /// <param name="stream">The stream; it stays open.</param>
    /// <param name="options">How it is written.</param>
    /// <exception cref="ExportException">The scene cannot be written.</exception>
    public void Save(Stream stream, SaveOptions options)
    {
        ArgumentNullException.ThrowIfNull(stream);
        ArgumentNullException.ThrowIfNull(options);
        SceneSaver.Save(this, stream, options.FileFormat, options);
    }

    /// <summary>Writes the scene to a file; the extension tells the format.</summary>
    /// <remarks>The file, and those beside it, appear when all is written; a failure leaves what was
    /// there.</remarks>
    /// <exception cref="ExportException">The scene cannot be written.</exception>
    public void Save(string fileName) => SceneSaver.Save(this, fileName, null, null);

    /// <summary>Writes the scene to a file.</summary>
    /// <exception cref="ExportException">The scene cannot be written.</exception>
    public void Save(string fileName, FileFormat format)
    {
        ArgumentNullException.ThrowIfNull(format);
        SceneSaver.Save(this, fileName, format, format.CreateSaveOptions());
    }

    /// <summary>Writes the scene to a file in the format of the options.</summary>
    /// <exception cref="ExportException">The scene cannot be written.</exception>
    public void Save(string fileName, SaveOptions options)
    {
        ArgumentNullException.ThrowIfNull(options);
        SceneSaver.Save(this, fileName, options.FileFormat, options);
    }

    /// <summary>Draws the scene into an image file of 1024 by 1024 pixels; the extension tells its
    /// format.</summary>
    /// <exception cref="NotSupportedException">Rendering is not available.</exception>
    public void Render(Camera camera, string fileName) => throw RenderingIsMissing();

    /// <summary>Draws the scene into an image file.</summary>
    /// <param name="camera">The camera.</param>
    /// <param name="fileName">The name of the image file.</param>
    /// <param name="size">Width and height in pixels.</param>
    /// <param name="format">The format of the image, such as "png".</param>
    /// <exception cref="NotSupportedException">Rendering is not available.</exception>
    public void Render(Camera camera, string fileName, Vector2 size, string format) => throw RenderingIsMissing();

    /// <summary>Draws the scene into an image file.</summary>
    /// <param name="camera">The camera.</param>
    /// <param name="fileName">The name of the image file.</param>
    /// <param name="size">Width and height in pixels.</param>
    /// <param name="format">The format of the image, such as "png".</param>
    /// <param name="options">How it is drawn.</param>
    /// <exception cref="NotSupportedException">Rendering is not available.</exception>
    public void Render(Camera camera, string fileName, Vector2 size, string format, ImageRenderOptions options) =>
        throw RenderingIsMissing();

    /// <summary>Draws the scene into an image in memory, in its size.</summary>
    /// <exception cref="NotSupportedException">Rendering is not available.</exception>
    public void Render(Camera camera, TextureData bitmap) => throw RenderingIsMissing();

    /// <summary>Draws the scene into an image in memory, in its size.</summary>
    /// <exception cref="NotSupportedException">Rendering is not available.</exception>
    public void Render(Camera camera, TextureData bitmap, ImageRenderOptions options) => throw RenderingIsMissing();

    /// <summary>The first animation clip of that name, or null.</summary>
    public AnimationClip? GetAnimationClip(string name)
    {
        for (int index = 0; index < _clips.Count; index++)
        {
            if (_clips[index].Name == name)
                return _clips[index];
        }
        return null;
    }

    /// <summary>Drops everything; only the name, the root node object and the place in a parent scene
    /// stay.</summary>
    public void Clear()
    {
        RootNode.Reset();
        RootNode.Name = "";
        _subScenes.Clear();
        _clips.Clear();
        Library.Clear();
        Poses.Clear();
        AssetInfo = new AssetInfo();
        ClearUserProperties();
    }

    /// <summary>Makes an animation clip; the first one becomes the current one.</summary>
    public AnimationClip CreateAnimationClip(string name)
    {
        AnimationClip clip = new(name);
        _clips.Add(clip);
        _currentClip ??= clip;
        return clip;
    }

    /// <summary>Makes a scene out of a file.</summary>
    /// <exception cref="ImportException">The file cannot be read.</exception>
    public static Scene FromFile(string fileName)
    {
        Scene scene = new();
        scene.Open(fileName);
        return scene;
    }

    private static NotSupportedException RenderingIsMissing() =>
        new("Rendering a scene into an image is not available in this version.");
}
