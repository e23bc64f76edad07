using System;
using System.IO;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Formats;

public class SaveTests
{
    [Fact]
    public void UnknownExtensionAndMissingWriterAreNamed()
    {
        Scene scene = new();
        Assert.Contains("'.none'", Assert.Throws<ExportException>(() => scene.Save("a.none")).Message);
        Assert.Contains("SiemensJT9", Assert.Throws<ExportException>(() => scene.Save("a.jt")).Message);
        Assert.Throws<ExportException>(() => scene.Save(""));
        Assert.Throws<ExportException>(() => scene.Save(Path.GetTempPath()));
        Assert.Throws<ExportException>(() => scene.Save(new MemoryStream(), FileFormat.SiemensJT9));
        Assert.Throws<ArgumentNullException>(() => scene.Save("a.obj", (FileFormat)null!));
        Assert.False(File.Exists("a.jt"));
    }

    [Fact]
    public void FilesAppearWhenAllIsWritten()
    {
        using TemporaryFolder folder = new();
        using SaveTransaction files = new(folder.Path);
        files.Begin(folder.File("main.obj")).WriteByte(1);
        using (Stream side = files.Begin(folder.File("sub/side.bin")))
            side.WriteByte(2);
        Assert.False(File.Exists(folder.File("main.obj")));
        files.Commit();
        Assert.Equal(new[] { "main.obj", "sub" }, folder.Names());
        Assert.Equal(new byte[] { 1 }, File.ReadAllBytes(folder.File("main.obj")));
        Assert.Equal(new[] { folder.File("sub/side.bin") }, Directory.GetFiles(folder.File("sub")));
    }

    [Fact]
    public void FailedSaveLeavesWhatWasThere()
    {
        using TemporaryFolder folder = new();
        File.WriteAllText(folder.File("main.obj"), "old");
        using (SaveTransaction files = new(folder.Path))
        {
            files.Begin(folder.File("main.obj")).WriteByte(1);
            files.Begin(folder.File("sub/side.bin")).WriteByte(2);
        }
        Assert.Equal(new[] { "main.obj" }, folder.Names());
        Assert.Equal("old", File.ReadAllText(folder.File("main.obj")));
    }

    [Fact]
    public void LinkStaysAndItsTargetGetsTheContent()
    {
        using TemporaryFolder folder = new();
        File.WriteAllText(folder.File("real.obj"), "old");
        File.CreateSymbolicLink(folder.File("link.obj"), folder.File("real.obj"));
        using SaveTransaction files = new(folder.Path);
        files.Begin(folder.File("link.obj")).WriteByte(1);
        files.Commit();
        Assert.Equal(new byte[] { 1 }, File.ReadAllBytes(folder.File("real.obj")));
        Assert.NotNull(new FileInfo(folder.File("link.obj")).LinkTarget);
    }

    [Fact]
    public void DeviceIsWrittenToAndNotReplaced()
    {
        using SaveTransaction files = new("/dev");
        files.Begin("/dev/null").WriteByte(1);
        files.Commit();
        using FileStream still = new("/dev/null", FileMode.Open, FileAccess.Read);
        Assert.Equal(-1, still.ReadByte());
        Assert.Empty(Directory.GetFiles("/dev", ".null*"));
    }

    [Fact]
    public void MainFileNeedsItsFolder()
    {
        using TemporaryFolder folder = new();
        using SaveTransaction files = new(folder.File("none"));
        Assert.Throws<DirectoryNotFoundException>(() => files.Begin(folder.File("none/main.obj")));
        Assert.Empty(folder.Names());
    }

    [Fact]
    public void FileSystemGetsSideFilesAtTheEnd()
    {
        using MemoryFileSystem memory = new();
        ObjSaveOptions options = new() { FileSystem = memory };
        using SaveTransaction files = new(null);
        WriteContext context = new(null, FileFormat.WavefrontOBJ, options, files);
        Assert.True(context.HasSideFiles);
        context.CreateSideFile("a.mtl").WriteByte(7);
        Assert.Empty(memory.FileNames);
        files.Commit();
        Assert.Equal(new byte[] { 7 }, memory.GetFileContent("a.mtl"));
    }

    [Fact]
    public void SideFilesStayInTheFolder()
    {
        using TemporaryFolder folder = new();
        using SaveTransaction files = new(folder.Path);
        WriteContext context = new(folder.File("a.obj"), FileFormat.WavefrontOBJ, new ObjSaveOptions(), files);
        Assert.Equal("a", context.BaseName);
        foreach (string name in new[] { "../b.mtl", "/tmp/b.mtl", "" })
            Assert.Throws<ExportException>(() => context.CreateSideFile(name));
        Assert.Empty(folder.Names());
    }

    [Fact]
    public void StreamWithoutFileSystemHasNoPlaceForSideFiles()
    {
        using SaveTransaction files = new(null);
        WriteContext context = new(null, FileFormat.WavefrontOBJ, new ObjSaveOptions(), files);
        Assert.False(context.HasSideFiles);
        ExportException error = Assert.Throws<ExportException>(() => context.CreateSideFile("a.mtl"));
        Assert.Contains("FileSystem", error.Message);
    }
}
