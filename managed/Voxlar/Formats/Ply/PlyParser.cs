using System;
using System.Collections.Generic;
using Velbor.Voxlar.Formats.Text;

namespace Velbor.Voxlar.Formats.Ply;

/// <summary>Reads a PLY file into tables: text, and binary of both byte orders.</summary>
internal sealed class PlyParser
{
    private readonly ReadContext _context;
    private readonly byte[] _data;
    private readonly TextScanner _text;
    private bool _isText;
    private bool _isBigEndian;

    /// <summary>Reads a file.</summary>
    /// <exception cref="ImportException">It is malformed.</exception>
    public PlyParser(byte[] data, ReadContext context)
    {
        _context = context;
        _data = data;
        _text = new TextScanner(context, data);
        ReadHeader();
        if (_isText)
            Elements.ForEach(ReadText);
        else
            ReadBinary();
    }

    /// <summary>The elements in their order.</summary>
    public List<PlyElement> Elements { get; } = [];

    /// <summary>The comments of the header.</summary>
    public List<string> Comments { get; } = [];

    /// <summary>The lines of obj_info of the header.</summary>
    public List<string> Infos { get; } = [];

    /// <summary>A failure in a row: the line of a text, else the byte.</summary>
    public ImportException ErrorIn(PlyElement element, int row, string reason) => _isText
        ? _text.ErrorAt(element.Places[row], reason)
        : _context.ErrorAtByte(element.Places[row], reason);

    private void ReadHeader()
    {
        if (!_text.Word().SequenceEqual("ply"u8))
            throw _context.ErrorAtLine(1, "the file does not start with 'ply'");
        // A carriage return alone ends lines only where it does so here; data may start with any byte.
        bool isReturn = _text.AtLineEnd() && !_text.AtEnd && _data[_text.Position] == '\r'
            && (_text.Remaining < 2 || _data[_text.Position + 1] != '\n');
        bool hasFormat = false;
        while (true)
        {
            _text.NextLine();
            if (_text.AtEnd)
                throw _text.Error("the file ends before the end of the header ('end_header')");
            int start = _text.Position;
            switch (TextBytes.ToText(_text.Word()))
            {
                case "format":
                    ReadFormat();
                    hasFormat = true;
                    break;
                case "element":
                    ReadElement();
                    break;
                case "property":
                    ReadProperty();
                    break;
                case "comment":
                    Comments.Add(_text.RestOfLine());
                    break;
                case "obj_info":
                    Infos.Add(_text.RestOfLine());
                    break;
                case "":
                    break;
                case "end_header":
                    if (!hasFormat)
                        throw _text.ErrorAt(start, "the header tells no format");
                    EndHeader(isReturn);
                    return;
                default:
                    // Comments of more than one line, whose second lines lack the word, are about.
                    _text.Position = start;
                    Comments.Add(_text.RestOfLine());
                    break;
            }
        }
    }

    private void EndHeader(bool isReturn)
    {
        bool atEnd = _text.AtLineEnd() && _text.AtEnd;
        if (isReturn && !atEnd)
            _text.Position++;
        else
            _text.NextLine();
    }

    private void ReadFormat()
    {
        string name = TextBytes.ToText(_text.Word());
        _isText = name == "ascii";
        _isBigEndian = name == "binary_big_endian";
        if (!_isText && !_isBigEndian && name != "binary_little_endian")
            throw _text.Error($"there is no format '{name}'");
    }

    private void ReadElement()
    {
        int start = _text.Position;
        string name = TextBytes.ToText(_text.Word());
        if (name.Length == 0)
            throw _text.Error("the name of an element is missing");
        long count = _text.Integer($"the number of '{name}'");
        if (count < 0)
            throw _text.ErrorAt(start, $"the number of '{name}' is negative: {count}");
        Elements.Add(new PlyElement(name, count));
    }

    private void ReadProperty()
    {
        if (Elements.Count == 0)
            throw _text.Error("a property stands before the first element");
        PlyElement element = Elements[^1];
        string first = TextBytes.ToText(_text.Word());
        PlyType? countType = null;
        if (first == "list")
        {
            countType = TypeOf(TextBytes.ToText(_text.Word()));
            if (countType is PlyType.Float or PlyType.Double)
                throw _text.Error("the length of a list is no whole number");
            first = TextBytes.ToText(_text.Word());
        }
        PlyType type = TypeOf(first);
        string name = TextBytes.ToText(_text.Word());
        if (name.Length == 0)
            throw _text.Error("the name of a property is missing");
        if (element.Find(name) is not null)
            throw _text.Error($"the element '{element.Name}' has two properties '{name}'");
        element.Columns.Add(new PlyColumn(name, type, countType));
    }

    private PlyType TypeOf(string name) =>
        PlyTypes.Find(name) ?? throw _text.Error($"there is no type '{name}'");

    private void ReadText(PlyElement element)
    {
        // A value takes a character and a blank at least.
        if (element.Announced > (_text.Remaining + 1L) / 2 / Math.Max(element.Columns.Count, 1))
            throw _text.Error(
                $"{element.Announced} '{element.Name}' are announced, "
                + $"but only {_text.Remaining} bytes are left");
        element.Count = (int)element.Announced;
        DoubleBuffer[] lists = Prepare(element);
        for (int row = 0; row < element.Count; row++)
        {
            _text.SkipSpace();
            element.Places[row] = _text.Position;
            for (int i = 0; i < element.Columns.Count; i++)
            {
                PlyColumn column = element.Columns[i];
                if (column.CountType is null)
                {
                    column.Values[row] = Value(column);
                    continue;
                }
                long count = _text.Integer(column.Name);
                if (count < 0 || count > (_text.Remaining + 1L) / 2)
                    throw _text.Error($"a list '{column.Name}' of {count} values is announced, "
                        + $"but only {_text.Remaining} bytes are left");
                for (; count > 0; count--)
                    lists[i].Add(Value(column));
                column.Ends[row] = lists[i].Count;
            }
            if (!_text.AtLineEnd())
                throw _text.Error($"a row of '{element.Name}' has more values than it has properties");
        }
        Finish(element, lists);
    }

    // A single is one in text too, so that text and binary files of the same values are the same.
    private double Value(PlyColumn column)
    {
        double value = _text.Number(column.Name);
        return column.Type == PlyType.Float ? (float)value : value;
    }

    private static DoubleBuffer[] Prepare(PlyElement element)
    {
        element.Places = new int[element.Count];
        DoubleBuffer[] lists = new DoubleBuffer[element.Columns.Count];
        for (int i = 0; i < lists.Length; i++)
        {
            PlyColumn column = element.Columns[i];
            if (column.CountType is null)
                column.Values = new double[element.Count];
            else
                column.Ends = new int[element.Count];
            lists[i] = new DoubleBuffer();
        }
        return lists;
    }

    private static void Finish(PlyElement element, DoubleBuffer[] lists)
    {
        for (int i = 0; i < lists.Length; i++)
        {
            if (element.Columns[i].CountType is not null)
                element.Columns[i].Values = lists[i].Items.AsSpan(0, lists[i].Count).ToArray();
        }
    }

    private void ReadBinary()
    {
        BoundedReader reader = new(_data, _context, _isBigEndian);
        reader.Seek(_text.Position, "the data");
        foreach (PlyElement element in Elements)
            ReadBinary(element, reader);
    }

    private static void ReadBinary(PlyElement element, BoundedReader reader)
    {
        int least = 0;
        foreach (PlyColumn column in element.Columns)
            least += PlyTypes.SizeOf(column.CountType ?? column.Type);
        element.Count = reader.Count(element.Announced, Math.Max(least, 1), $"'{element.Name}'");
        DoubleBuffer[] lists = Prepare(element);
        PlyColumn[] columns = [.. element.Columns];
        for (int row = 0; row < element.Count && least > 0; row++)
        {
            element.Places[row] = reader.Position;
            for (int i = 0; i < columns.Length; i++)
            {
                PlyColumn column = columns[i];
                if (column.CountType is not { } countType)
                {
                    column.Values[row] = Value(reader, column.Type);
                    continue;
                }
                long announced = (long)Value(reader, countType);
                int count = reader.Count(
                    announced, PlyTypes.SizeOf(column.Type), $"values of a list '{column.Name}'");
                for (; count > 0; count--)
                    lists[i].Add(Value(reader, column.Type));
                column.Ends[row] = lists[i].Count;
            }
        }
        Finish(element, lists);
    }

    private static double Value(BoundedReader reader, PlyType type) => type switch
    {
        PlyType.Char => reader.ReadSByte(),
        PlyType.UChar => reader.ReadByte(),
        PlyType.Short => reader.ReadInt16(),
        PlyType.UShort => reader.ReadUInt16(),
        PlyType.Int => reader.ReadInt32(),
        PlyType.UInt => reader.ReadUInt32(),
        PlyType.Float => reader.ReadSingle(),
        _ => reader.ReadDouble(),
    };
}
