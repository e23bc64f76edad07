using System.Collections.Generic;
using System.IO;
using Velbor.Voxlar.Formats.Text;

namespace Velbor.Voxlar.Formats.Ply;

/// <summary>Writes tables as a PLY file.</summary>
internal static class PlyEncoder
{
    /// <summary>Writes a file.</summary>
    public static void Write(
        Stream stream, List<PlyElement> elements, List<string> comments, List<string> infos,
        FileContentType contentType)
    {
        bool isText = contentType == FileContentType.ASCII;
        TextOutput output = new(stream);
        output.Text("ply\nformat " + (isText ? "ascii" : "binary_little_endian") + " 1.0\n");
        WriteLines(output, "comment ", comments);
        WriteLines(output, "obj_info ", infos);
        foreach (PlyElement element in elements)
        {
            output.Text("element ");
            output.OneLine(element.Name);
            output.Text(" ");
            output.Integer(element.Count);
            output.Text("\n");
            foreach (PlyColumn column in element.Columns)
            {
                output.Text("property ");
                if (column.CountType is { } countType)
                    output.Text($"list {PlyTypes.NameOf(countType)} ");
                output.Text(PlyTypes.NameOf(column.Type) + " ");
                output.OneLine(column.Name);
                output.Text("\n");
            }
        }
        output.Text("end_header\n");
        foreach (PlyElement element in elements)
        {
            PlyColumn[] columns = [.. element.Columns];
            for (int row = 0; row < element.Count; row++)
                WriteRow(output, columns, row, isText);
        }
        output.Flush();
    }

    private static void WriteLines(TextOutput output, string word, List<string> lines)
    {
        foreach (string line in lines)
        {
            output.Text(word);
            output.OneLine(line);
            output.Text("\n");
        }
    }

    private static void WriteRow(TextOutput output, PlyColumn[] columns, int row, bool isText)
    {
        foreach (PlyColumn column in columns)
        {
            if (column.CountType is not { } countType)
            {
                Write(output, column.Type, column.Values[row], isText);
                continue;
            }
            int start = column.Start(row);
            Write(output, countType, column.Ends[row] - start, isText);
            for (int i = start; i < column.Ends[row]; i++)
                Write(output, column.Type, column.Values[i], isText);
        }
        if (isText)
            output.Byte((byte)'\n');
    }

    // In text a blank stands before each value, which readers skip at the start of a line.
    private static void Write(TextOutput output, PlyType type, double value, bool isText)
    {
        switch (type)
        {
            case PlyType.Float when isText:
                output.Number((float)value);
                break;
            case PlyType.Double when isText:
                output.Number(value);
                break;
            case PlyType.Float:
                output.Single((float)value);
                break;
            case PlyType.Double:
                output.Double(value);
                break;
            case var _ when isText:
                output.Byte((byte)' ');
                output.Integer((long)value);
                break;
            default:
                output.Integer((long)value, PlyTypes.SizeOf(type));
                break;
        }
    }
}
