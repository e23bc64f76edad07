using System;
using System.IO;
using System.Text;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Formats;

public class LoadTests
{
    [Fact]
    public void MissingFileIsNamed()
    {
        ImportException error = Assert.Throws<ImportException>(() => Scene.FromFile("/no/such/file.obj"));
        Assert.Equal("file '/no/such/file.obj': there is no such file.", error.Message);
        Assert.Throws<ImportException>(() => new Scene().Open(""));
        Assert.Throws<ArgumentNullException>(() => new Scene().Open((string)null!));
    }

    [Fact]
    public void FolderIsRefused()
    {
        using TemporaryFolder folder = new();
        string path = folder.File("a.obj");
        Directory.CreateDirectory(path);
        Assert.Equal($"file '{path}': it is a folder.", Assert.Throws<ImportException>(() => new Scene(path)).Message);
    }

    [Fact]
    public void UnknownAndEmptyFilesAreRefused()
    {
        using TemporaryFolder folder = new();
        File.WriteAllText(folder.File("a.none"), "nothing known");
        File.WriteAllText(folder.File("plain"), "nothing known");
        File.WriteAllText(folder.File("empty.obj"), "");
        Assert.Contains("extension '.none'", Refusal(folder.File("a.none")));
        Assert.Contains("tells no known format", Refusal(folder.File("plain")));
        Assert.EndsWith("it is empty.", Refusal(folder.File("empty.obj")));
    }

    [Fact]
    public void FormatWithoutReaderIsNamed()
    {
        Assert.False(FileFormat.SiemensJT9.CanImport);
        Assert.False(FileFormat.SiemensJT9.CanExport);
        using TemporaryFolder folder = new();
        File.WriteAllText(folder.File("a.jt"), "Version 9.5 JT ".PadRight(100));
        Assert.EndsWith("reading the format SiemensJT9 (version 9.0) is not supported.", Refusal(folder.File("a.jt")));
        // What the content surely is counts, not the name.
        File.WriteAllText(folder.File("a.obj"), "Version 9.5 JT ".PadRight(100));
        Assert.EndsWith("reading the format SiemensJT9 (version 9.0) is not supported.", Refusal(folder.File("a.obj")));
    }

    [Fact]
    public void OptionsOfAnotherFormatAreRefused()
    {
        using TemporaryFolder folder = new();
        File.WriteAllText(folder.File("a.jt"), "Version 9.5 JT ".PadRight(100));
        ImportException error = Assert.Throws<ImportException>(
            () => new Scene().Open(folder.File("a.jt"), new ObjLoadOptions()));
        Assert.Contains("the content is SiemensJT9, but ObjLoadOptions", error.Message);
    }

    [Fact]
    public void FileInUseIsRefused()
    {
        using TemporaryFolder folder = new();
        using FileStream held = new(folder.File("a.obj"), FileMode.Create, FileAccess.Write, FileShare.None);
        Assert.Contains("it cannot be opened", Refusal(folder.File("a.obj")));
    }

    [Fact]
    public void FailureLeavesTheSceneAsItWasUntilReadingStarts()
    {
        Scene scene = new();
        scene.RootNode.CreateChildNode("kept");
        Assert.Throws<ImportException>(() => scene.Open("/no/such/file.obj"));
        Assert.Single(scene.RootNode.ChildNodes);
    }

    [Fact]
    public void MessagesTellThePlace()
    {
        ReadContext context = new("a.obj", FileFormat.WavefrontOBJ, new ObjLoadOptions());
        Assert.Equal("file 'a.obj', line 7: no number.", context.ErrorAtLine(7, "no number").Message);
        Assert.Equal("file 'a.obj', byte 9: cut off.", context.ErrorAtByte(9, "cut off").Message);
        ReadContext nameless = new(null, FileFormat.WavefrontOBJ, new ObjLoadOptions());
        Assert.Equal("the stream: wrong.", nameless.Error("wrong").Message);
        context.CheckDepth(ReadContext.MaxDepth, "the node");
        Assert.Throws<ImportException>(() => context.CheckDepth(ReadContext.MaxDepth + 1, "the node"));
    }

    [Fact]
    public void EncodingComesFromTheOptions()
    {
        ReadContext context = new("a", FileFormat.WavefrontOBJ, new ObjLoadOptions { Encoding = "utf-16" });
        Assert.Equal("utf-16", context.TextEncoding(Encoding.UTF8).WebName);
        context.Options.Encoding = null;
        Assert.Equal("utf-8", context.TextEncoding(Encoding.UTF8).WebName);
        context.Options.Encoding = "klingon";
        Assert.Throws<ImportException>(() => context.TextEncoding(Encoding.UTF8));
    }

    [Fact]
    public void SideFilesAreLookedForBesideTheFileAndInTheLookupPaths()
    {
        using TemporaryFolder folder = new();
        Directory.CreateDirectory(folder.File("scene"));
        Directory.CreateDirectory(folder.File("textures"));
        File.WriteAllText(folder.File("scene/a.mtl"), "beside");
        File.WriteAllText(folder.File("textures/a.mtl"), "looked up");
        File.WriteAllText(folder.File("textures/b.png"), "looked up");
        ObjLoadOptions options = new();
        ReadContext context = new(folder.File("scene/a.obj"), FileFormat.WavefrontOBJ, options);
        Assert.Equal("beside", Text(context.OpenSideFile("a.mtl")));
        Assert.Null(context.TryOpenSideFile("b.png"));
        options.LookupPaths.Add(folder.File("textures"));
        Assert.Equal("beside", Text(context.OpenSideFile("a.mtl")));
        Assert.Equal("looked up", Text(context.OpenSideFile("b.png")));
        options.LookupPaths = ["../textures"];
        Assert.Equal("looked up", Text(context.OpenSideFile("b.png")));
        Assert.Contains("'c.png'", Assert.Throws<ImportException>(() => context.OpenSideFile("c.png")).Message);
        foreach (string name in new[] { "../textures/b.png", "/etc/hostname", "", "x/../../textures/b.png" })
            Assert.Throws<ImportException>(() => context.TryOpenSideFile(name));
        using MemoryFileSystem memory = new();
        using (Stream stream = memory.WriteFile("a.mtl", null))
            stream.WriteByte((byte)'m');
        options.FileSystem = memory;
        Assert.Equal("m", Text(context.OpenSideFile("a.mtl")));
        Assert.Null(context.TryOpenSideFile("b.png"));
    }

    [Fact]
    public void BoundedReaderHoldsCountsAgainstTheBytesLeft()
    {
        ReadContext context = new("a.bin", FileFormat.STLBinary, new StlLoadOptions());
        byte[] data = [1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0x80, 0x3f];
        BoundedReader reader = new(data, context);
        Assert.Equal(0x04030201u, reader.ReadUInt32());
        reader.BigEndian = true;
        Assert.Equal(0x0506, reader.ReadUInt16());
        Assert.Equal(3, reader.Count(3, 2, "numbers"));
        Assert.Throws<ImportException>(() => reader.Count(4, 2, "numbers"));
        Assert.Throws<ImportException>(() => reader.Count(-1, 2, "numbers"));
        Assert.Throws<ImportException>(() => reader.Count(uint.MaxValue, 50, "triangles"));
        Assert.Throws<ImportException>(() => reader.ReadInt64());
        Assert.Throws<ImportException>(() => reader.Take(7, "the block"));
        reader.Skip(2);
        reader.BigEndian = false;
        Assert.Equal(1f, reader.ReadSingle());
        Assert.Equal(0, reader.Remaining);
        ImportException error = Assert.Throws<ImportException>(() => reader.ReadByte());
        Assert.Equal("file 'a.bin', byte 12: the file ends in the middle of a value.", error.Message);
        Assert.Throws<ImportException>(() => reader.Seek(13, "the block"));
        reader.Seek(0, "the block");
        Assert.Equal(1, reader.ReadByte());
    }

    private static string Refusal(string path) => Assert.Throws<ImportException>(() => Scene.FromFile(path)).Message;

    private static string Text(Stream stream)
    {
        using StreamReader reader = new(stream);
        return reader.ReadToEnd();
    }
}
