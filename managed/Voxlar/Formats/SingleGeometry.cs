using System;
using System.Collections.Generic;
using System.IO;
using Velbor.Voxlar.Entities;

namespace Velbor.Voxlar.Formats;

/// <summary>Reads and writes one geometry through the reader and writer of a format.</summary>
internal static class SingleGeometry
{
    /// <summary>The first geometry in a file of the format.</summary>
    public static Geometry Decode(FileFormat format, string fileName, LoadOptions? options)
    {
        Scene scene = new();
        SceneLoader.Load(scene, fileName, options ?? format.CreateLoadOptions());
        return First(scene, ReadContext.DisplayName(fileName));
    }

    /// <summary>The first geometry in a stream of the format.</summary>
    public static Geometry Decode(FileFormat format, Stream stream, LoadOptions? options)
    {
        ArgumentNullException.ThrowIfNull(stream);
        Scene scene = new();
        SceneLoader.Load(scene, stream, null, options ?? format.CreateLoadOptions());
        return First(scene, ReadContext.DisplayName(options?.FileName));
    }

    /// <summary>Writes a scene that holds the entity alone.</summary>
    public static void Encode(FileFormat format, Entity entity, Stream stream, SaveOptions? options)
    {
        ArgumentNullException.ThrowIfNull(entity);
        ArgumentNullException.ThrowIfNull(stream);
        WithScene(entity, scene => SceneSaver.Save(scene, stream, format, options ?? format.CreateSaveOptions()));
    }

    /// <summary>Writes a scene that holds the entity alone.</summary>
    public static void Encode(FileFormat format, Entity entity, string fileName, SaveOptions? options)
    {
        ArgumentNullException.ThrowIfNull(entity);
        WithScene(entity, scene => SceneSaver.Save(scene, fileName, format, options ?? format.CreateSaveOptions()));
    }

    // The entity may stand in another scene; it joins the passing one for the time of writing only.
    private static void WithScene(Entity entity, Action<Scene> save)
    {
        Scene scene = new();
        Node node = scene.RootNode.CreateChildNode(entity);
        try
        {
            save(scene);
        }
        finally
        {
            node.Entities.Clear();
        }
    }

    private static Geometry First(Scene scene, string name)
    {
        Stack<Node> open = new([scene.RootNode]);
        while (open.TryPop(out Node? node))
        {
            foreach (Entity entity in node.Entities)
            {
                if (entity is Geometry geometry)
                {
                    node.Entities.Remove(geometry);
                    return geometry;
                }
            }
            for (int i = node.ChildNodes.Count - 1; i >= 0; i--)
                open.Push(node.ChildNodes[i]);
        }
        throw new ImportException($"{name}: it holds no geometry.");
    }
}
