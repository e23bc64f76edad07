using System;
using System.Globalization;
using System.IO;
using System.IO.Compression;
using System.Text;
using System.Text.RegularExpressions;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats;

/// <summary>Finds the format of a file by its content or by its name.</summary>
internal static partial class FormatDetector
{
    private const int HeadLength = 1 << 16;

    // A row answers with a format, or with null when the head is not its own.
    private delegate FileFormat? Sniffer(ReadOnlySpan<byte> head, string text, Stream stream);

    private static readonly (bool Certain, Sniffer Sniff)[] Rows =
    [
        (true, (head, _, _) => head.StartsWith("Kaydara FBX Binary  \0"u8) ? FbxBinary(head) : null),
        (true, (head, _, _) => head.StartsWith("glTF"u8) ? GlbVersion(head) : null),
        (true, (head, _, _) => head.StartsWith("%PDF-"u8) ? FileFormat.PDF : null),
        (true, (head, _, _) => head.StartsWith("DRACO"u8) ? FileFormat.Draco : null),
        (true, (head, _, _) => head.StartsWith("U3D\0"u8) ? FileFormat.Universal3D : null),
        (true, (head, _, _) => head.StartsWith("PXR-USDC"u8) ? FileFormat.USD : null),
        (true, (head, _, _) => head.StartsWith("\0\0\0H\0\0\0E\0\0\0A\0\0\0D"u8) ? FileFormat.RvmBinary : null),
        (true, (head, _, _) => head.StartsWith("AutoCAD Binary DXF"u8) ? FileFormat.DXF : null),
        (true, (head, _, _) => IsMayaBinary(head) ? FileFormat.MayaBinary : null),
        (true, (head, _, stream) => head.StartsWith("PK\u0003\u0004"u8) ? Archive(stream) : null),
        (true, (head, _, _) => head.StartsWith("xof "u8) ? XFile(head) : null),
        (true, (head, _, _) => head.StartsWith("Version "u8) ? JtVersion(head) : null),
        (true, (head, _, _) => head.StartsWith("ply\n"u8) || head.StartsWith("ply\r"u8) ? FileFormat.PLY : null),
        (true, (_, text, _) => text.StartsWith("#VRML V2", StringComparison.Ordinal) ? FileFormat.VRML : null),
        (true, (_, text, _) => text.StartsWith("#usda ", StringComparison.Ordinal) ? FileFormat.USD : null),
        (true, (_, text, _) => text.StartsWith("ISO-10303-21;", StringComparison.Ordinal) ? FileFormat.IFC : null),
        (true, (_, text, _) => text.StartsWith("//Maya ASCII", StringComparison.Ordinal) ? FileFormat.MayaASCII : null),
        (true, (_, text, _) => text.StartsWith("*3DSMAX_ASCIIEXPORT", StringComparison.Ordinal) ? FileFormat.ASE : null),
        (true, (head, _, _) => head.StartsWith("# .PCD"u8) || head.StartsWith("VERSION "u8) ? Pcd(head) : null),
        (true, (_, text, _) => FbxHead().Match(text) is { Success: true } head ? FbxText(head) : null),
        (true, (_, text, _) => text.StartsWith('<') && ColladaRoot().IsMatch(text) ? FileFormat.Collada : null),
        (true, (_, text, _) => text.StartsWith('<') && AmfRoot().IsMatch(text) ? FileFormat.AMF : null),
        (true, (_, text, stream) => text.StartsWith('{') ? Gltf(text, stream) : null),
        (true, (head, _, stream) => IsBinaryStl(head, stream) ? FileFormat.STLBinary : null),
        (true, (head, _, stream) => Is3ds(head, stream) ? FileFormat.Discreet3DS : null),
        (false, (head, _, _) => head.StartsWith("PK\u0003\u0004"u8) ? FileFormat.Zip : null),
        (false, (_, text, _) => StlSolid().IsMatch(text) ? FileFormat.STLASCII : null),
        (false, (_, text, _) => HtmlRoot().IsMatch(text) ? FileFormat.HTML5 : null),
        (false, (_, text, _) => RvmHead().IsMatch(text) ? FileFormat.RvmText : null),
        (false, (_, text, _) => IsDxf(text) ? FileFormat.DXF : null),
        (false, (_, text, _) => IsObj(text) ? FileFormat.WavefrontOBJ : null),
    ];

    /// <summary>The format that the content shows.</summary>
    /// <param name="stream">A seekable stream; it is looked at from its position on, which is put
    /// back.</param>
    /// <param name="certain">Whether the content is marked; false for a guess from the look of a
    /// text.</param>
    /// <returns>The format; null when the content shows none.</returns>
    public static FileFormat? ByContent(Stream stream, out bool certain)
    {
        long start = stream.Position;
        byte[] head = new byte[(int)Math.Clamp(stream.Length - start, 0, HeadLength)];
        int length = stream.ReadAtLeast(head, head.Length, throwOnEndOfStream: false);
        stream.Position = start;
        try
        {
            ReadOnlySpan<byte> span = head.AsSpan(0, length);
            string text = Text(span);
            foreach ((bool sure, Sniffer sniff) in Rows)
            {
                stream.Position = start;
                if (sniff(span, text, stream) is { } format)
                {
                    certain = sure;
                    return format;
                }
            }
        }
        finally
        {
            stream.Position = start;
        }
        certain = false;
        return null;
    }

    /// <summary>The format of a file by its content, by what the caller told, and by its name.</summary>
    /// <remarks>
    /// What the content surely is comes first. A guess from the look of a text gives way to the told format
    /// and to the extension, unless these name the same family, where the guess tells the version or the
    /// content.
    /// </remarks>
    /// <returns>The format; null when nothing tells it.</returns>
    public static FileFormat? Decide(Stream stream, string? fileName, FileFormat? told)
    {
        FileFormat? found = ByContent(stream, out bool certain);
        told ??= ByName(fileName);
        bool overruled = !certain && told is not null && told.FileFormatType != found?.FileFormatType;
        return overruled ? told : found ?? told;
    }

    /// <summary>The format that the extension names; null when there is none or it is not known.</summary>
    public static FileFormat? ByName(string? fileName)
    {
        string extension = Path.GetExtension(fileName) ?? "";
        return extension.Length > 1 ? FileFormat.GetFormatByExtension(extension) : null;
    }

    // The head as text without byte-order mark and leading blanks; empty when it holds null characters, as no
    // text does.
    private static string Text(ReadOnlySpan<byte> head)
    {
        if (head.StartsWith((ReadOnlySpan<byte>)[0xff, 0xfe]))
            return Encoding.Unicode.GetString(head[2..]).TrimStart();
        if (head.Contains((byte)0))
            return "";
        return Encoding.Latin1.GetString(head.StartsWith((ReadOnlySpan<byte>)[0xef, 0xbb, 0xbf]) ? head[3..] : head)
            .TrimStart();
    }

    private static FileFormat Fbx(int version, bool binary)
    {
        // Unknown minor versions count as the nearest one below; what is older than 7 is 6.1.
        int known = version < 7000 ? 6100 : Math.Clamp(version / 100 * 100, 7200, 7700);
        string name = "FBX" + known.ToString(CultureInfo.InvariantCulture) + (binary ? "Binary" : "ASCII");
        foreach (FileFormat format in FileFormat.Known)
        {
            if (format.Name == name)
                return format;
        }
        return binary ? FileFormat.FBX7500Binary : FileFormat.FBX7500ASCII;
    }

    private static FileFormat FbxBinary(ReadOnlySpan<byte> head) =>
        Fbx(head.Length < 27 ? 7400 : BitConverter.ToInt32(head[23..27]), binary: true);

    private static FileFormat FbxText(Match head) => Fbx(
        int.Parse(head.Groups[1].ValueSpan, CultureInfo.InvariantCulture) * 1000
            + int.Parse(head.Groups[2].ValueSpan, CultureInfo.InvariantCulture) * 100,
        binary: false);

    private static FileFormat GlbVersion(ReadOnlySpan<byte> head) =>
        head.Length >= 8 && BitConverter.ToInt32(head[4..8]) == 1 ? FileFormat.GLTF_Binary : FileFormat.GLTF2_Binary;

    private static FileFormat? Gltf(string text, Stream stream)
    {
        Match asset = GltfVersion().Match(text);
        if (!asset.Success && stream.Length - stream.Position > HeadLength)
        {
            // The asset may stand anywhere; behind long tables it mostly stands at the end.
            stream.Seek(-HeadLength, SeekOrigin.End);
            byte[] tail = new byte[HeadLength];
            stream.ReadExactly(tail);
            asset = GltfVersion().Match(Encoding.Latin1.GetString(tail));
        }
        if (!asset.Success)
            return null;
        return asset.Groups[1].Value == "1" ? FileFormat.GLTF : FileFormat.GLTF2;
    }

    private static FileFormat? JtVersion(ReadOnlySpan<byte> head)
    {
        Match match = JtHead().Match(Encoding.Latin1.GetString(head[..Math.Min(head.Length, 80)]));
        if (!match.Success)
            return null;
        return match.Groups[1].Value is "6" or "7" or "8" ? FileFormat.SiemensJT8 : FileFormat.SiemensJT9;
    }

    private static FileFormat? Pcd(ReadOnlySpan<byte> head)
    {
        int data = head.IndexOf("\nDATA "u8);
        if (data < 0 || head.IndexOf("FIELDS "u8) < 0)
            return null;
        return head[(data + 6)..].StartsWith("ascii"u8) ? FileFormat.Pcd : FileFormat.PcdBinary;
    }

    private static bool IsObj(string text)
    {
        foreach (ReadOnlySpan<char> raw in text.AsSpan().EnumerateLines())
        {
            ReadOnlySpan<char> line = raw.Trim();
            if (line.IsEmpty || line[0] == '#')
                continue;
            int space = line.IndexOfAny(' ', '\t');
            ReadOnlySpan<char> word = space < 0 ? line : line[..space];
            ReadOnlySpan<char> rest = space < 0 ? default : line[space..].TrimStart();
            bool number = !rest.IsEmpty && (char.IsAsciiDigit(rest[0]) || rest[0] is '-' or '+' or '.');
            if (number && word is "v" or "f")
                return true;
            if (word is not ("mtllib" or "usemtl" or "o" or "g" or "s" or "vn" or "vt" or "vp"))
                return false;
        }
        return false;
    }

    private static bool IsDxf(string text)
    {
        // Pairs of lines, a code and a value; comments, code 999, may stand before the first section.
        string code = "";
        bool isValue = false;
        foreach (ReadOnlySpan<char> raw in text.AsSpan().EnumerateLines())
        {
            ReadOnlySpan<char> line = raw.Trim();
            if (!isValue)
                code = line.Length <= 3 ? line.ToString() : "";
            else if (code != "999")
                return code == "0" && line is "SECTION";
            isValue = !isValue;
        }
        return false;
    }

    private static bool IsMayaBinary(ReadOnlySpan<byte> head) =>
        (head.StartsWith("FOR4"u8) && HasWord(head, 8, "Maya"))
        || (head.StartsWith("FOR8"u8) && HasWord(head, 16, "Maya"));

    private static FileFormat? XFile(ReadOnlySpan<byte> head)
    {
        if (HasWord(head, 8, "txt"))
            return FileFormat.XText;
        bool binary = HasWord(head, 8, "bin") || HasWord(head, 8, "tzip") || HasWord(head, 8, "bzip");
        return binary ? FileFormat.XBinary : null;
    }

    private static bool HasWord(ReadOnlySpan<byte> head, int at, string word) =>
        head.Length >= at + word.Length && Encoding.Latin1.GetString(head.Slice(at, word.Length)) == word;

    // 80 bytes of any text, the number of triangles, and 50 bytes a triangle: a length that fits is the mark.
    private static bool IsBinaryStl(ReadOnlySpan<byte> head, Stream stream) =>
        head.Length >= 84 && stream.Length - stream.Position == 84 + 50L * BitConverter.ToUInt32(head[80..84]);

    private static bool Is3ds(ReadOnlySpan<byte> head, Stream stream)
    {
        if (head.Length < 12 || head[0] != 0x4d || head[1] != 0x4d)
            return false;
        uint length = BitConverter.ToUInt32(head[2..6]);
        ushort first = BitConverter.ToUInt16(head[6..8]);
        return length <= stream.Length - stream.Position + 6 && first is 0x0002 or 0x3d3d or 0xb000 or 0x3d3e;
    }

    private static FileFormat? Archive(Stream stream)
    {
        // An archive counts its places from the start of the stream.
        using MemoryStream? rest = stream.Position == 0 ? null : new MemoryStream(IOUtils.ReadToEnd(stream));
        try
        {
            using ZipArchive archive = new(rest ?? stream, ZipArchiveMode.Read, leaveOpen: true);
            bool first = true;
            foreach (ZipArchiveEntry entry in archive.Entries)
            {
                string extension = Path.GetExtension(entry.FullName).ToLowerInvariant();
                if (extension == ".model" && entry.FullName.StartsWith("3D/", StringComparison.OrdinalIgnoreCase))
                    return FileFormat.Microsoft3MF;
                if (first && extension is ".usd" or ".usda" or ".usdc")
                    return FileFormat.USDZ;
                if (extension == ".amf" && archive.Entries.Count == 1)
                    return FileFormat.AMF;
                first = false;
            }
        }
        catch (InvalidDataException)
        {
            // What an archive without a directory was for, its name may still tell.
            return null;
        }
        return FileFormat.Zip;
    }

    [GeneratedRegex(@"^;\s*FBX\s+(\d)\.(\d)\.\d")]
    private static partial Regex FbxHead();

    [GeneratedRegex(@"<(\w+:)?COLLADA[\s>]")]
    private static partial Regex ColladaRoot();

    [GeneratedRegex(@"<amf[\s>]", RegexOptions.IgnoreCase)]
    private static partial Regex AmfRoot();

    [GeneratedRegex(@"""asset""\s*:\s*\{[^}]*?""version""\s*:\s*""(\d)")]
    private static partial Regex GltfVersion();

    [GeneratedRegex(@"^Version (\d+)\.\d+ +JT ")]
    private static partial Regex JtHead();

    [GeneratedRegex(@"^solid\b[^\n]*\n\s*(facet|endsolid)\b", RegexOptions.IgnoreCase)]
    private static partial Regex StlSolid();

    [GeneratedRegex(@"^<(!DOCTYPE\s+html|html[\s>])", RegexOptions.IgnoreCase)]
    private static partial Regex HtmlRoot();

    [GeneratedRegex(@"^HEAD\s*\r?\n")]
    private static partial Regex RvmHead();
}
