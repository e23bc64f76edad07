using System;
using System.IO;
using System.IO.Compression;
using System.Text;
using Velbor.Voxlar.Utilities;
using Xunit;

namespace Velbor.Voxlar.Tests.Utilities;

public class FileSystemTests
{
    public static readonly TheoryData<string> LeadingOut = new()
    {
        "../secret.txt", "a/../../secret.txt", "..\\secret.txt", "/etc/hostname", "C:\\secret.txt", "a/../..",
        "link/secret.txt", "linkfile", "chain/secret.txt",
    };

    [Fact]
    public void LocalFilesAreWrittenAndRead()
    {
        using TemporaryFolder folder = new();
        using LocalFileSystem files = new(folder.Path);
        Write(files, "textures/a.bin", "abc");
        Assert.Equal("abc", Read(files, "textures/a.bin"));
        Assert.Equal("abc", Read(files, "./textures\\x\\..\\a.bin"));
        Assert.True(File.Exists(folder.File("textures/a.bin")));
        Write(files, "textures/a.bin", "z");
        Assert.Equal("z", Read(files, "textures/a.bin"));
        Assert.Throws<FileNotFoundException>(() => files.ReadFile("b.bin", null));
    }

    [Theory]
    [MemberData(nameof(LeadingOut))]
    public void NoNameLeavesTheFolder(string name)
    {
        using TemporaryFolder folder = new();
        File.WriteAllText(folder.File("secret.txt"), "secret");
        string inside = folder.File("inside");
        Directory.CreateDirectory(inside);
        Directory.CreateSymbolicLink(Path.Combine(inside, "link"), folder.Path);
        File.CreateSymbolicLink(Path.Combine(inside, "linkfile"), folder.File("new.txt"));
        Directory.CreateSymbolicLink(Path.Combine(inside, "chain"), Path.Combine(inside, "link", "."));
        using LocalFileSystem files = new(inside);
        Assert.Throws<UnauthorizedAccessException>(() => files.ReadFile(name, null).Dispose());
        Assert.Throws<UnauthorizedAccessException>(() => files.WriteFile(name, null).Dispose());
        Assert.Equal("secret", File.ReadAllText(folder.File("secret.txt")));
        Assert.Equal(new[] { "inside", "secret.txt" }, folder.Names());
    }

    [Fact]
    public void LinksInsideTheFolderWork()
    {
        using TemporaryFolder folder = new();
        File.WriteAllText(folder.File("a.txt"), "a");
        File.CreateSymbolicLink(folder.File("b.txt"), folder.File("a.txt"));
        using LocalFileSystem files = new(folder.Path);
        Assert.Equal("a", Read(files, "b.txt"));
    }

    [Fact]
    public void CircleOfLinksEndsWithAnError()
    {
        using TemporaryFolder folder = new();
        File.CreateSymbolicLink(folder.File("a"), folder.File("b"));
        File.CreateSymbolicLink(folder.File("b"), folder.File("a"));
        using LocalFileSystem files = new(folder.Path);
        Assert.Throws<IOException>(() => files.ReadFile("a", null));
    }

    [Theory]
    [InlineData("")]
    [InlineData(".")]
    [InlineData("a\0b")]
    public void NamesOfNoFileAreRefused(string name)
    {
        using MemoryFileSystem files = new();
        Assert.Throws<ArgumentException>(() => files.WriteFile(name, null));
    }

    [Fact]
    public void MemoryFilesHaveTheirContentOnceTheStreamIsDisposed()
    {
        using MemoryFileSystem files = new();
        Write(files, "b.txt", "two");
        Write(files, "a/x.txt", "one");
        Assert.Equal(new[] { "b.txt", "a/x.txt" }, files.FileNames);
        Assert.Equal("one", Encoding.UTF8.GetString(files.GetFileContent("a\\x.txt")));
        Assert.Equal("two", Read(files, "b.txt"));
        files.GetFileContent("b.txt")[0] = (byte)'X';
        Assert.Equal("two", Read(files, "b.txt"));
        Write(files, "b.txt", "three");
        Assert.Equal("three", Read(files, "b.txt"));
        Assert.Equal(2, files.FileNames.Count);
        Assert.Throws<FileNotFoundException>(() => files.GetFileContent("none"));
        Assert.Throws<UnauthorizedAccessException>(() => files.ReadFile("../b.txt", null));
    }

    [Fact]
    public void DummyDropsWhatIsWritten()
    {
        using DummyFileSystem files = new();
        Write(files, "a", "content");
        Assert.Throws<FileNotFoundException>(() => files.ReadFile("a", null));
    }

    [Fact]
    public void ArchiveInAFileKeepsWhatIsWritten()
    {
        using TemporaryFolder folder = new();
        string path = folder.File("a.zip");
        using (ZipArchiveFileSystem files = new(path))
        {
            Write(files, "x/one.txt", "one");
            Write(files, "two.txt", "two");
            Write(files, "two.txt", "three");
            Assert.Equal("three", Read(files, "two.txt"));
        }
        byte[] stored = File.ReadAllBytes(path);
        using (ZipArchiveFileSystem files = new(path))
        {
            Assert.Equal("one", Read(files, "x/one.txt"));
            Assert.Equal("three", Read(files, "two.txt"));
            Assert.Throws<FileNotFoundException>(() => files.ReadFile("one.txt", null));
        }
        Assert.Equal(stored, File.ReadAllBytes(path));
    }

    [Fact]
    public void ArchiveInAStreamIsServedBelowItsBase()
    {
        using MemoryStream stream = new();
        using (ZipArchive archive = new(stream, ZipArchiveMode.Create, leaveOpen: true))
        {
            using StreamWriter writer = new(archive.CreateEntry("base/one.txt").Open());
            writer.Write("one");
        }
        using (ZipArchiveFileSystem files = new(stream, "base"))
        {
            Assert.Equal("one", Read(files, "one.txt"));
            Assert.Throws<UnauthorizedAccessException>(() => files.ReadFile("../base/one.txt", null));
            Write(files, "two.txt", "two");
        }
        using ZipArchiveFileSystem all = new(stream);
        Assert.Equal("two", Read(all, "base/two.txt"));
        all.Dispose();
        Assert.Throws<ObjectDisposedException>(() => all.ReadFile("base/two.txt", null));
        Assert.True(stream.CanRead);
    }

    [Fact]
    public void DamagedArchiveIsRefused()
    {
        using ZipArchiveFileSystem files = new(new MemoryStream(new byte[100]));
        Assert.Throws<InvalidDataException>(() => files.ReadFile("a", null));
    }

    [Fact]
    public void ReadOnlyArchiveCannotBeChanged()
    {
        using MemoryStream stream = new();
        using (ZipArchiveFileSystem files = new(stream))
            Write(files, "a", "a");
        using ZipArchiveFileSystem fixedFiles = new(new MemoryStream(stream.ToArray(), writable: false));
        Assert.Equal("a", Read(fixedFiles, "a"));
        Assert.Throws<NotSupportedException>(() => fixedFiles.WriteFile("b", null));
    }

    private static void Write(FileSystem files, string name, string text)
    {
        using Stream stream = files.WriteFile(name, null);
        stream.Write(Encoding.UTF8.GetBytes(text));
    }

    private static string Read(FileSystem files, string name)
    {
        using StreamReader reader = new(files.ReadFile(name, null));
        return reader.ReadToEnd();
    }
}
