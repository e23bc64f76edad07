using System;
using System.IO;
using Xunit;

namespace Velbor.Voxlar.Tests.Gltf;

/// <summary>
/// A test over the collection of real files, whose folder the environment variable VELBOR_TEST_ASSETS names.
/// The collection is too large for the repository; without it the test is skipped.
/// </summary>
public sealed class AssetsFactAttribute : FactAttribute
{
    public AssetsFactAttribute()
    {
        if (Folder is null)
            Skip = "VELBOR_TEST_ASSETS does not name the folder of the test files";
    }

    public static string? Folder =>
        Environment.GetEnvironmentVariable("VELBOR_TEST_ASSETS") is { } path
            && File.Exists(Path.Combine(path, "truth.json"))
            ? path : null;
}
