using System.IO;
using System.Linq;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Zip;

/// <summary>
/// Reads the scene inside an archive: the first file, in the archive's order, whose extension names a format
/// that can be read. The files beside it are taken from the archive. An archive inside an archive is not
/// looked into.
/// </summary>
internal sealed class ZipReader : ISceneReader
{
    public void Read(Stream stream, Scene scene, ReadContext context)
    {
        using ZipArchiveFileSystem archive = new(stream);
        string[] names = [.. archive.EntryNames];
        string name = names.FirstOrDefault(IsScene)
            ?? throw context.Error($"the archive holds no scene that can be read, among its {names.Length} files");
        // The file system whose base is the folder of the scene file shares the stream; nothing is read at
        // once.
        using ZipArchiveFileSystem beside = new(stream, Path.GetDirectoryName(name));
        LoadOptions options = new(null) { FileSystem = beside, Encoding = context.Options.Encoding };
        using Stream content = archive.ReadFile(name, options);
        SceneLoader.Load(scene, content, context.Inside(name), options);
    }

    private static bool IsScene(string name) =>
        FormatDetector.ByName(name) is { CanImport: true } format && format != FileFormat.Zip;
}
