using System.IO;
using Velbor.Voxlar.Formats;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Tests.Formats;

/// <summary>A file system on which every access fails.</summary>
public sealed class FailingFileSystem : FileSystem
{
    public override Stream ReadFile(string fileName, IOConfig? options) => throw new IOException("the disk is gone.");

    public override Stream WriteFile(string fileName, IOConfig? options) => throw new IOException("the disk is gone.");
}
