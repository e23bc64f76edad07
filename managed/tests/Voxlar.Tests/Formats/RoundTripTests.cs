using System;
using System.IO;
using System.IO.Compression;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Formats;

/// <summary>Saving and opening as a whole, over the glTF reader and writer.</summary>
public class RoundTripTests
{
    private static readonly BoundingBox Box = new(-1, -2, -3, 1, 2, 3);

    [Fact]
    public void FileWithSideFileOpensAgain()
    {
        using TemporaryFolder folder = new();
        BoxScene().Save(folder.File("a.gltf"), Separate());
        Assert.Equal(new[] { "a.gltf", "side.bin" }, folder.Names());
        AssertBox(Scene.FromFile(folder.File("a.gltf")));
    }

    [Fact]
    public void FailedSaveLeavesNoFile()
    {
        using TemporaryFolder folder = new();
        File.WriteAllText(folder.File("a.gltf"), "old");
        GltfSaveOptions options = Separate();
        options.FileSystem = new FailingFileSystem();
        ExportException error = Assert.Throws<ExportException>(
            () => BoxScene().Save(folder.File("a.gltf"), options));
        Assert.Equal($"file '{folder.File("a.gltf")}': it cannot be written: the disk is gone.", error.Message);
        Assert.Equal(new[] { "a.gltf" }, folder.Names());
        Assert.Equal("old", File.ReadAllText(folder.File("a.gltf")));
    }

    [Fact]
    public void FailedSaveLeavesTheStreamEmpty()
    {
        GltfSaveOptions options = Separate();
        options.FileSystem = new FailingFileSystem();
        using MemoryStream stream = new();
        Assert.Throws<ExportException>(() => BoxScene().Save(stream, options));
        Assert.Equal(0, stream.Length);
    }

    [Fact]
    public void StreamThatOnlyRunsForwardIsReadAndWritten()
    {
        using MemoryStream stored = new();
        using (GZipStream packed = new(stored, CompressionMode.Compress, leaveOpen: true))
            BoxScene().Save(packed, FileFormat.GLTF2_Binary);
        stored.Position = 0;
        using GZipStream unpacked = new(stored, CompressionMode.Decompress);
        Scene scene = new();
        scene.Open(unpacked);
        AssertBox(scene);
    }

    [Fact]
    public void StreamIsReadFromItsPosition()
    {
        using MemoryStream stream = new();
        stream.Write([1, 2, 3]);
        BoxScene().Save(stream, FileFormat.GLTF2_Binary);
        stream.Position = 3;
        Scene scene = new();
        scene.RootNode.CreateChildNode("dropped");
        scene.Open(stream);
        AssertBox(scene);
        Assert.Null(scene.RootNode.SelectSingleObject("//dropped"));
    }

    [Fact]
    public void FailedReadLeavesTheSceneEmpty()
    {
        using MemoryStream stream = new();
        BoxScene().Save(stream, FileFormat.GLTF2_Binary);
        using MemoryStream cut = new(stream.ToArray()[..^8]);
        Scene scene = new();
        scene.RootNode.CreateChildNode("dropped");
        Assert.Throws<ImportException>(() => scene.Open(cut));
        Assert.Empty(scene.RootNode.ChildNodes);
    }

    [Fact]
    public void ContentCountsAndNotTheName()
    {
        using TemporaryFolder folder = new();
        BoxScene().Save(folder.File("a.obj"), FileFormat.GLTF2_Binary);
        Assert.Same(FileFormat.GLTF2_Binary, FileFormat.Detect(folder.File("a.obj")));
        AssertBox(Scene.FromFile(folder.File("a.obj")));
        ImportException error = Assert.Throws<ImportException>(
            () => new Scene().Open(folder.File("a.obj"), new ObjLoadOptions()));
        Assert.Contains("the content is GLTF2_Binary", error.Message);
    }

    [Fact]
    public void SceneInAnArchiveTakesItsSideFilesFromThere()
    {
        using TemporaryFolder folder = new();
        using (ZipArchiveFileSystem archive = new(folder.File("a.zip")))
        {
            using MemoryFileSystem files = new();
            GltfSaveOptions options = Separate();
            options.FileSystem = files;
            using MemoryStream main = new();
            BoxScene().Save(main, options);
            Store(archive, "models/readme.txt", []);
            Store(archive, "models/a.gltf", main.ToArray());
            Store(archive, "models/side.bin", files.GetFileContent("side.bin"));
        }
        Assert.True(FileFormat.Zip.CanImport);
        Assert.False(FileFormat.Zip.CanExport);
        AssertBox(Scene.FromFile(folder.File("a.zip")));
    }

    [Fact]
    public void ArchiveWithoutASceneIsRefused()
    {
        using TemporaryFolder folder = new();
        using (ZipArchiveFileSystem archive = new(folder.File("a.zip")))
        {
            Store(archive, "readme.txt", []);
            Store(archive, "inner.zip", []);
        }
        ImportException error = Assert.Throws<ImportException>(() => Scene.FromFile(folder.File("a.zip")));
        Assert.Contains("no scene that can be read, among its 2 files", error.Message);
    }

    [Fact]
    public void MissingSideFileInAnArchiveNamesBothFiles()
    {
        using TemporaryFolder folder = new();
        using (ZipArchiveFileSystem archive = new(folder.File("a.zip")))
        {
            using MemoryFileSystem files = new();
            GltfSaveOptions options = Separate();
            options.FileSystem = files;
            using MemoryStream main = new();
            BoxScene().Save(main, options);
            Store(archive, "a.gltf", main.ToArray());
        }
        string message = Assert.Throws<ImportException>(() => Scene.FromFile(folder.File("a.zip"))).Message;
        Assert.Contains("a.zip/a.gltf", message);
        Assert.Contains("side.bin", message);
    }

    [Fact]
    public void FalseSizesInAnArchiveAreRefused()
    {
        byte[] archive;
        using (MemoryStream stream = new())
        {
            using (ZipArchiveFileSystem files = new(stream))
                Store(files, "a.glb", new byte[1 << 20]);
            archive = stream.ToArray();
        }
        // The size in the central directory, whose entry begins with "PK\1\2" and holds it 24 bytes further
        // on.
        int entry = archive.AsSpan().IndexOf("PK\u0001\u0002"u8);
        foreach (int announced in new[] { 1 << 30, (1 << 20) + 1 })
        {
            BitConverter.TryWriteBytes(archive.AsSpan(entry + 24), announced);
            using ZipArchiveFileSystem damaged = new(new MemoryStream(archive));
            Assert.Throws<InvalidDataException>(() => damaged.ReadFile("a.glb", null));
        }
    }

    private static Scene BoxScene()
    {
        Scene scene = new();
        scene.RootNode.CreateChildNode("box", new Box(1, 1, 1).ToMesh());
        scene.RootNode.ChildNodes[0].Transform.SetScale(2, 4, 6);
        AssertBox(scene);
        return scene;
    }

    private static void AssertBox(Scene scene) => Assert.Equal(Box, scene.RootNode.GetBoundingBox());

    private static GltfSaveOptions Separate() =>
        new(FileFormat.GLTF2) { EmbedAssets = false, BufferFile = "side.bin" };

    private static void Store(FileSystem files, string name, byte[] content)
    {
        using Stream stream = files.WriteFile(name, null);
        stream.Write(content);
    }
}
