using System;
using System.Collections.Generic;
using System.IO;
using System.IO.Compression;
using System.Linq;
using System.Reflection;
using System.Text;
using Velbor.Voxlar.Formats;
using Xunit;

namespace Velbor.Voxlar.Tests.Formats;

public class FileFormatTests
{
    public static IEnumerable<object[]> Contents()
    {
        static object[] Row(FileFormat format, params object[] parts)
        {
            MemoryStream content = new();
            foreach (object part in parts)
                content.Write(part is string text ? Encoding.Latin1.GetBytes(text) : (byte[])part);
            return [format.ToString(), content.ToArray()];
        }

        static byte[] Zip(params string[] names)
        {
            MemoryStream stream = new();
            using (ZipArchive archive = new(stream, ZipArchiveMode.Create, leaveOpen: true))
            {
                foreach (string name in names)
                    archive.CreateEntry(name);
            }
            return stream.ToArray();
        }

        yield return Row(FileFormat.FBX7400Binary, "Kaydara FBX Binary  \0\x1a\0", BitConverter.GetBytes(7400));
        yield return Row(FileFormat.FBX7700Binary, "Kaydara FBX Binary  \0\x1a\0", BitConverter.GetBytes(7700));
        yield return Row(FileFormat.FBX6100Binary, "Kaydara FBX Binary  \0\x1a\0", BitConverter.GetBytes(6100));
        yield return Row(FileFormat.FBX7300ASCII, "; FBX 7.3.0 project file\n; ------\n");
        yield return Row(FileFormat.GLTF2_Binary, "glTF", BitConverter.GetBytes(2), new byte[40]);
        yield return Row(FileFormat.GLTF_Binary, "glTF", BitConverter.GetBytes(1), new byte[40]);
        yield return Row(FileFormat.GLTF2, "{ \"scenes\": [], \"asset\": { \"version\": \"2.0\" } }");
        yield return Row(FileFormat.GLTF, "\n{\"asset\":{\"generator\":\"x\",\"version\":\"1.0\"}}");
        yield return Row(FileFormat.PDF, "%PDF-1.7\n");
        yield return Row(FileFormat.Draco, "DRACO\x02\x02");
        yield return Row(FileFormat.Universal3D, "U3D\0", new byte[32]);
        yield return Row(FileFormat.USD, "PXR-USDC", new byte[32]);
        yield return Row(FileFormat.USD, "#usda 1.0\n(\n)");
        yield return Row(FileFormat.RvmBinary, "\0\0\0H\0\0\0E\0\0\0A\0\0\0D", new byte[8]);
        yield return Row(FileFormat.RvmText, "HEAD\n     1     2\n");
        yield return Row(FileFormat.DXF, "AutoCAD Binary DXF\r\n\x1a\0");
        yield return Row(FileFormat.DXF, "999\nmade by hand\n  0\nSECTION\n  2\nHEADER\n");
        yield return Row(FileFormat.MayaASCII, "//Maya ASCII 2016 scene\n");
        yield return Row(FileFormat.MayaBinary, "FOR4\0\0\0\x10Maya");
        yield return Row(FileFormat.XText, "xof 0303txt 0032\n");
        yield return Row(FileFormat.XBinary, "xof 0303bin 0032", new byte[4]);
        yield return Row(FileFormat.SiemensJT9, "Version 9.5 JT  DM 6.4".PadRight(80), new byte[20]);
        yield return Row(FileFormat.SiemensJT8, "Version 8.1 JT ".PadRight(80), new byte[20]);
        yield return Row(FileFormat.PLY, "ply\nformat binary_little_endian 1.0\n", new byte[20]);
        yield return Row(FileFormat.PLY, "ply\r\nformat ascii 1.0\r\n");
        yield return Row(FileFormat.VRML, "#VRML V2.0 utf8\n");
        yield return Row(FileFormat.IFC, "ISO-10303-21;\nHEADER;\n");
        yield return Row(FileFormat.ASE, "*3DSMAX_ASCIIEXPORT\t200\n");
        yield return Row(FileFormat.Pcd, "# .PCD v0.7\nVERSION .7\nFIELDS x y z\nDATA ascii\n1 2 3\n");
        yield return Row(FileFormat.PcdBinary, "VERSION .7\nFIELDS x y z\nDATA binary\n", new byte[12]);
        yield return Row(FileFormat.Collada, "\xef\xbb\xbf<?xml version=\"1.0\"?>\n<COLLADA xmlns=\"x\">");
        yield return Row(FileFormat.AMF, "<?xml version=\"1.0\"?>\n<amf unit=\"inch\">");
        yield return Row(FileFormat.HTML5, "<!DOCTYPE html>\n<html>");
        yield return Row(FileFormat.STLASCII, "solid part\n facet normal 0 0 1\n");
        yield return Row(FileFormat.STLBinary, new byte[80], BitConverter.GetBytes(2), new byte[100]);
        yield return Row(
            FileFormat.STLBinary, "solid in name only".PadRight(80), BitConverter.GetBytes(1), new byte[50]);
        yield return Row(FileFormat.Discreet3DS, new byte[] { 0x4d, 0x4d, 16, 0, 0, 0, 2, 0, 10, 0, 0, 0, 3, 0, 0, 0 });
        yield return Row(FileFormat.WavefrontOBJ, "# a cube\r\nmtllib cube.mtl\r\no Cube\r\nv 1.0 -1 0\r\n");
        yield return Row(FileFormat.Microsoft3MF, Zip("[Content_Types].xml", "3D/3dmodel.model"));
        yield return Row(FileFormat.USDZ, Zip("scene.usdc", "texture.png"));
        yield return Row(FileFormat.AMF, Zip("part.amf"));
        yield return Row(FileFormat.Zip, Zip("scene.obj", "scene.mtl"));
        yield return Row(FileFormat.Zip, "PK\x03\x04", new byte[30]);
    }

    [Theory]
    [MemberData(nameof(Contents))]
    public void ContentTellsTheFormat(string name, byte[] content)
    {
        using MemoryStream stream = new(content);
        Assert.Equal(name, FileFormat.Detect(stream, "file.unknown")?.ToString());
        Assert.Equal(0, stream.Position);
        using MemoryStream shifted = new([1, 2, 3, .. content]);
        shifted.Position = 3;
        Assert.Equal(name, FileFormat.Detect(shifted, null)?.ToString());
        Assert.Equal(3, shifted.Position);
    }

    [Fact]
    public void CutContentNeverFails()
    {
        foreach (object[] row in Contents())
        {
            byte[] content = (byte[])row[1];
            for (int length = 0; length < content.Length; length++)
            {
                using MemoryStream stream = new(content[..length]);
                _ = FileFormat.Detect(stream, null);
            }
        }
    }

    [Fact]
    public void ExtensionTellsTheFormatWhereTheContentDoesNot()
    {
        using MemoryStream stream = new(Encoding.UTF8.GetBytes("1 2 3\n4 5 6\n"));
        Assert.Same(FileFormat.Xyz, FileFormat.Detect(stream, "points.XYZ"));
        Assert.Null(FileFormat.Detect(stream, "points"));
        Assert.Null(FileFormat.Detect(stream, "points.none"));
        Assert.Null(FileFormat.Detect(new MemoryStream(), null));
    }

    [Fact]
    public void GuessGivesWayToTheExtension()
    {
        using MemoryStream text = new(Encoding.UTF8.GetBytes("# comment\nv 1 2 3\n"));
        Assert.Same(FileFormat.WavefrontOBJ, FileFormat.Detect(text, null));
        Assert.Same(FileFormat.WavefrontOBJ, FileFormat.Detect(text, "a.none"));
        Assert.Same(FileFormat.Xyz, FileFormat.Detect(text, "a.xyz"));
        using MemoryStream solid = new(Encoding.UTF8.GetBytes("solid x\nfacet normal 0 0 1\n"));
        Assert.Same(FileFormat.STLASCII, FileFormat.Detect(solid, "a.stl"));
        using MemoryStream ply = new(Encoding.UTF8.GetBytes("ply\nformat ascii 1.0\n"));
        Assert.Same(FileFormat.PLY, FileFormat.Detect(ply, "a.obj"));
    }

    [Fact]
    public void AssetBehindLongTablesIsFound()
    {
        string table = new('x', 300_000);
        string document = $"{{\"extras\":\"{table}\",\"asset\":{{\"version\":\"2.0\"}}}}";
        using MemoryStream stream = new(Encoding.UTF8.GetBytes(document));
        Assert.Same(FileFormat.GLTF2, FileFormat.Detect(stream, null));
    }

    [Fact]
    public void DetectNeedsASeekableStream()
    {
        using MemoryStream closed = new();
        closed.Dispose();
        Assert.Throws<ArgumentException>(() => FileFormat.Detect(closed, null));
        Assert.Throws<ArgumentNullException>(() => FileFormat.Detect((Stream)null!, null));
        Assert.Throws<ImportException>(() => FileFormat.Detect("/no/such/file"));
    }

    [Theory]
    [InlineData(".obj", "WavefrontOBJ")]
    [InlineData("OBJ", "WavefrontOBJ")]
    [InlineData(".glb", "GLTF2_Binary")]
    [InlineData("gltf", "GLTF2")]
    [InlineData(".stl", "STLBinary")]
    [InlineData(".usda", "USD")]
    [InlineData(".htm", "HTML5")]
    [InlineData(".none", null)]
    [InlineData("", null)]
    public void ExtensionNamesTheFormatToWrite(string extension, string? name) =>
        Assert.Equal(name, FileFormat.GetFormatByExtension(extension)?.ToString());

    [Fact]
    public void EveryFormatIsComplete()
    {
        FieldInfo[] fields = typeof(FileFormat).GetFields(BindingFlags.Public | BindingFlags.Static);
        Assert.Equal(49, fields.Length);
        Assert.Equal(fields.Select(f => f.GetValue(null)), FileFormat.Known);
        foreach (FieldInfo field in fields)
        {
            FileFormat format = (FileFormat)field.GetValue(null)!;
            Assert.Equal(field.Name, format.ToString());
            Assert.StartsWith(".", format.Extension);
            Assert.Equal(format.Extension, format.Extensions[0]);
            Assert.NotNull(format.Version);
            Assert.NotNull(format.FileFormatType);
            FileFormat? written = FileFormat.GetFormatByExtension(format.Extension);
            Assert.Same(format.FileFormatType, written?.FileFormatType);
            Assert.Same(field.FieldType, format.GetType());
        }
        Assert.Equal(26, typeof(FileFormatType).GetFields(BindingFlags.Public | BindingFlags.Static).Length);
    }

    [Fact]
    public void OptionsBelongToTheirFormat()
    {
        foreach (FileFormat format in FileFormat.Known)
        {
            LoadOptions load = format.CreateLoadOptions();
            SaveOptions save = format.CreateSaveOptions();
            Assert.True(OptionTable.Fit(load, format));
            Assert.True(OptionTable.Fit(save, format));
            Assert.Same(format.FileFormatType, (save.FileFormat ?? format).FileFormatType);
        }
        Assert.IsType<ObjLoadOptions>(FileFormat.WavefrontOBJ.CreateLoadOptions());
        Assert.IsType<GltfSaveOptions>(FileFormat.GLTF2_Binary.CreateSaveOptions());
        Assert.Same(FileFormat.GLTF2_Binary, FileFormat.GLTF2_Binary.CreateSaveOptions().FileFormat);
        Assert.Same(FileFormat.STLASCII, FileFormat.STLASCII.CreateSaveOptions().FileFormat);
        Assert.Same(FileFormat.GLTF2, new GltfSaveOptions(FileContentType.ASCII).FileFormat);
        Assert.Same(FileFormat.FBX7500Binary, new FbxSaveOptions(FileContentType.Binary).FileFormat);
        Assert.IsType<LoadOptions>(FileFormat.Xyz.CreateLoadOptions());
        Assert.Throws<ArgumentException>(() => new GltfSaveOptions(FileFormat.PLY));
        Assert.False(OptionTable.Fit(new ObjLoadOptions(), FileFormat.PLY));
        Assert.False(OptionTable.Fit(new GltfLoadOptions(), FileFormat.PLY));
    }

    [Fact]
    public void ExtensionsAreACopy()
    {
        FileFormat.WavefrontOBJ.Extensions[0] = "changed";
        Assert.Equal(".obj", FileFormat.WavefrontOBJ.Extension);
        Assert.Equal([".obj"], FileFormat.WavefrontOBJ.Extensions);
    }
}
