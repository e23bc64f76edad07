using System;
using Velbor.Voxlar.Entities;

namespace Velbor.Voxlar.Utilities;

/// <summary>Hidden texts in meshes.</summary>
/// <remarks>This build has no watermark codec; every method raises
/// <see cref="NotSupportedException"/>.</remarks>
public sealed class Watermark
{
    private const string NotBuilt = "Watermarks in meshes are not available in this version.";

    private Watermark()
    {
    }

    /// <summary>Puts a text into a copy of the mesh.</summary>
    /// <exception cref="NotSupportedException">Always.</exception>
    public static Mesh EncodeWatermark(Mesh input, string text) => throw new NotSupportedException(NotBuilt);

    /// <summary>Puts a text, guarded by a password, into a copy of the mesh.</summary>
    /// <exception cref="NotSupportedException">Always.</exception>
    public static Mesh EncodeWatermark(Mesh input, string text, string password) =>
        throw new NotSupportedException(NotBuilt);

    /// <summary>Gets the text out of the mesh.</summary>
    /// <exception cref="NotSupportedException">Always.</exception>
    public static string DecodeWatermark(Mesh input) => throw new NotSupportedException(NotBuilt);

    /// <summary>Gets the text, guarded by a password, out of the mesh.</summary>
    /// <exception cref="NotSupportedException">Always.</exception>
    public static string DecodeWatermark(Mesh input, string password) => throw new NotSupportedException(NotBuilt);
}
