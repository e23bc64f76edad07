using System;
using System.Collections.Generic;
using Velbor.Voxlar.Formats.Text;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// Reads the statements of an OBJ file into tables. Statements that only tell how a surface is drawn are left
/// out; free-form surfaces and calls of other files are refused by name, since leaving them out would lose
/// geometry.
/// </summary>
internal sealed class ObjParser
{
    private const int MostVertices = int.MaxValue / 4;

    private readonly byte[] _data;
    private readonly TextScanner _text;
    private readonly ObjFile _file = new();
    private readonly Dictionary<ObjGroup, int> _groups = [];
    private readonly Dictionary<string, int> _materials = new(StringComparer.Ordinal);

    // The largest index of each kind that points to what is not yet read, and where it stands.
    private Forward _forwardVertex;
    private Forward _forwardTexCoord;
    private Forward _forwardNormal;

    private string? _object;
    private string? _groupName;
    private int _group;
    private int _material = ObjElements.None;
    private int _smoothing = ObjElements.None;
    private bool _isGroupUsed;
    private bool _isObj;

    private ObjParser(byte[] data, ReadContext context)
    {
        _data = data;
        _text = new TextScanner(context, data);
        SetGroup();
    }

    /// <summary>Reads a file.</summary>
    /// <param name="data">Its bytes in UTF-8, which are changed.</param>
    /// <param name="context">For failure reports.</param>
    /// <exception cref="ImportException">It is malformed.</exception>
    public static ObjFile Parse(byte[] data, ReadContext context)
    {
        TextScanner.JoinContinuedLines(data);
        ObjParser parser = new(data, context);
        parser.Run();
        return parser._file;
    }

    private struct Forward
    {
        public int Index;
        public int Place;
    }

    private void Run()
    {
        while (true)
        {
            _text.SkipSpace();
            if (_text.AtEnd)
                break;
            Statement();
            _text.NextLine();
        }
        Check(_forwardVertex, _file.VertexCount, "vertex", "vertices");
        Check(_forwardTexCoord, _file.TexCoordCount, "texture coordinate", "texture coordinates");
        Check(_forwardNormal, _file.NormalCount, "normal", "normals");
    }

    private void Check(Forward forward, int count, string one, string many)
    {
        if (forward.Index > count)
            throw _text.ErrorAt(
                forward.Place, $"{one} {forward.Index} is used, but the file has {count} {many}");
    }

    private void Statement()
    {
        int start = _text.Position;
        ReadOnlySpan<byte> word = _text.Word();
        switch (word.Length)
        {
            case 1:
                switch (word[0])
                {
                    case (byte)'v':
                        Vertex();
                        _isObj = true;
                        return;
                    case (byte)'f':
                        Element(_file.Faces, 3);
                        return;
                    case (byte)'l':
                        Element(_file.Lines, 2);
                        return;
                    case (byte)'p':
                        Element(_file.Points, 1);
                        return;
                    case (byte)'g':
                        Group();
                        return;
                    case (byte)'o':
                        Object();
                        return;
                    case (byte)'s':
                        Smoothing();
                        return;
                }
                break;
            case 2 when word[0] == 'v' && word[1] == 't':
                TexCoord();
                return;
            case 2 when word[0] == 'v' && word[1] == 'n':
                Normal();
                return;
        }
        if (word[0] == '#')
            return;
        if (word.SequenceEqual("usemtl"u8))
        {
            string name = _text.RestOfLine();
            _material = name == ObjNames.NoMaterial
                ? ObjElements.None : IndexOf(_materials, _file.Materials, name);
            _isObj = true;
        }
        else if (word.SequenceEqual("mtllib"u8))
        {
            _file.Libraries.Add(_text.RestOfLine());
            _isObj = true;
        }
        else
        {
            Other(start, word);
        }
    }

    private void Other(int start, ReadOnlySpan<byte> word)
    {
        string name = TextBytes.ToText(word[..Math.Min(word.Length, 40)]);
        switch (name)
        {
            case "curv" or "curv2" or "surf" or "bzp" or "bsp" or "cdc" or "cdp" or "res":
                throw _text.ErrorAt(
                    start, $"the statement '{name}' (a free-form curve or surface) is not supported");
            case "call":
                throw _text.ErrorAt(
                    start, "the statement 'call' (another file in this place) is not supported");
        }
        // Unknown words are the extensions of other programs; a file that starts with one is no OBJ.
        if (!_isObj)
            throw _text.ErrorAt(start, $"'{name}' is no statement of an OBJ file");
    }

    private void Vertex()
    {
        DoubleBuffer vertices = _file.Vertices;
        if (vertices.Count / 4 >= MostVertices)
            throw _text.Error("the file has more vertices than can be held");
        double x = _text.Number("the x of a vertex");
        double y = _text.Number("the y of a vertex");
        double z = _text.Number("the z of a vertex");
        double w = 1;
        if (!_text.AtValuesEnd())
            w = MoreOfVertex();
        else if (_file.Colors.Count > 0)
            NoColor();
        vertices.Add(x);
        vertices.Add(y);
        vertices.Add(z);
        vertices.Add(w);
    }

    // Behind x y z may stand: w; r g b; r g b a; w r g b a.
    private double MoreOfVertex()
    {
        Span<double> more = stackalloc double[5];
        int count = 0;
        while (!_text.AtValuesEnd() && count < more.Length)
            more[count++] = _text.Number("a value of a vertex");
        if (!_text.AtValuesEnd())
            throw _text.Error("a vertex has more than 8 values");
        switch (count)
        {
            case 1:
                if (_file.Colors.Count > 0)
                    NoColor();
                return more[0];
            case 3:
                Color(more[0], more[1], more[2], 1);
                return 1;
            case 4:
                Color(more[0], more[1], more[2], more[3]);
                return 1;
            case 5:
                Color(more[1], more[2], more[3], more[4]);
                return more[0];
            default:
                throw _text.Error("a vertex has 5 values; it may have x y z, then w, then r g b or r g b a");
        }
    }

    private void Color(double r, double g, double b, double a)
    {
        while (_file.Colors.Count < _file.Vertices.Count)
            _file.Colors.Add(double.NaN);
        _file.Colors.Add(r);
        _file.Colors.Add(g);
        _file.Colors.Add(b);
        _file.Colors.Add(a);
    }

    private void NoColor() => Color(double.NaN, double.NaN, double.NaN, double.NaN);

    private void TexCoord()
    {
        DoubleBuffer coordinates = _file.TexCoords;
        coordinates.Add(_text.Number("the u of a texture coordinate"));
        coordinates.Add(_text.AtValuesEnd() ? 0 : _text.Number("the v of a texture coordinate"));
        coordinates.Add(_text.AtValuesEnd() ? 0 : _text.Number("the w of a texture coordinate"));
    }

    private void Normal()
    {
        DoubleBuffer normals = _file.Normals;
        normals.Add(_text.Number("the x of a normal"));
        normals.Add(_text.Number("the y of a normal"));
        normals.Add(_text.Number("the z of a normal"));
    }

    private void Element(ObjElements table, int least)
    {
        IntBuffer vertices = table.Vertices;
        int start = vertices.Count;
        while (!_text.AtValuesEnd())
            Corner(table);
        int count = vertices.Count - start;
        if (count == 0)
            throw _text.Error("the statement names no vertex");
        if (count < least)
            table = Move(table, start, count == 1 ? _file.Points : _file.Lines);
        table.Ends.Add(table.Vertices.Count);
        table.Groups.Add(_group);
        table.Materials.Add(_material);
        table.Smoothing.Add(_smoothing);
        _isGroupUsed = true;
    }

    // A face of two corners is a line, a face or line of one corner is a point.
    private static ObjElements Move(ObjElements from, int start, ObjElements to)
    {
        for (int i = start; i < from.Vertices.Count; i++)
        {
            to.Vertices.Add(from.Vertices.Items[i]);
            to.TexCoords.Add(from.TexCoords.Items[i]);
            to.Normals.Add(from.Normals.Items[i]);
        }
        from.Vertices.Count = start;
        from.TexCoords.Count = start;
        from.Normals.Count = start;
        return to;
    }

    private void Corner(ObjElements table)
    {
        table.Vertices.Add(Index(_file.VertexCount, ref _forwardVertex, "vertex", "vertices"));
        int texCoord = ObjElements.None;
        int normal = ObjElements.None;
        if (IsSlash())
        {
            if (!IsSlash(0) && !IsWordEnd())
                texCoord = Index(
                    _file.TexCoordCount, ref _forwardTexCoord, "texture coordinate", "texture coordinates");
            if (IsSlash() && !IsWordEnd())
                normal = Index(_file.NormalCount, ref _forwardNormal, "normal", "normals");
        }
        if (!IsWordEnd())
            throw _text.Malformed("a vertex, or vertex/texture coordinate/normal,");
        table.TexCoords.Add(texCoord);
        table.Normals.Add(normal);
    }

    private bool IsWordEnd() => _text.AtEnd || _data[_text.Position] <= ' ';

    private bool IsSlash(int move = 1)
    {
        int at = _text.Position;
        if (at >= _data.Length || _data[at] != '/')
            return false;
        _text.Position = at + move;
        return true;
    }

    // Reads an index, which counts from 1, or back from -1, the last that was read.
    private int Index(int count, ref Forward forward, string one, string many)
    {
        byte[] data = _data;
        int start = _text.Position;
        int at = start;
        bool negative = at < data.Length && data[at] == '-';
        if (negative || (at < data.Length && data[at] == '+'))
            at++;
        int first = at;
        long value = 0;
        for (; at < data.Length; at++)
        {
            uint digit = (uint)(data[at] - '0');
            if (digit > 9)
                break;
            value = Math.Min(value * 10 + digit, int.MaxValue);
        }
        if (at == first)
            throw _text.Malformed($"the index of a {one}");
        _text.Position = at;
        if (value == 0)
            throw _text.ErrorAt(start, $"{one} 0 is used; {many} count from 1");
        if (negative)
        {
            if (value > count)
                throw _text.ErrorAt(
                    start, $"{one} -{value} is used, but only {count} {many} were read before it");
            return count - (int)value;
        }
        if (value > count && value > forward.Index)
            forward = new Forward { Index = (int)value, Place = start };
        return (int)value - 1;
    }

    // An object ends the group before it, unless the group was named just for it.
    private void Object()
    {
        string name = _text.RestOfLine();
        _object = name.Length == 0 ? null : name;
        if (_isGroupUsed)
            _groupName = null;
        SetGroup();
        _isObj = true;
    }

    private void Group()
    {
        string name = _text.RestOfLine();
        _groupName = name.Length == 0 ? null : name;
        SetGroup();
        _isObj = true;
    }

    private void SetGroup()
    {
        ObjGroup group = new(_object, _groupName);
        if (!_groups.TryGetValue(group, out _group))
        {
            _group = _file.Groups.Count;
            _file.Groups.Add(group);
            _groups.Add(group, _group);
        }
        _isGroupUsed = false;
    }

    private void Smoothing()
    {
        _isObj = true;
        if (_text.AtValuesEnd())
        {
            _smoothing = 0;
        }
        else if (_text.TryNumber(out double number))
        {
            if (number is not (>= 0 and <= int.MaxValue))
                throw _text.Error("the number of a smoothing group is negative or too large");
            _smoothing = (int)number;
        }
        else
        {
            int start = _text.Position;
            ReadOnlySpan<byte> word = _text.Word();
            bool isOn = word.SequenceEqual("on"u8);
            if (!isOn && !word.SequenceEqual("off"u8))
                throw _text.ErrorAt(start, $"'{TextBytes.ToText(word)}' is no smoothing group");
            _smoothing = isOn ? 1 : 0;
        }
    }

    private static int IndexOf(Dictionary<string, int> places, List<string> names, string name)
    {
        if (places.TryGetValue(name, out int place))
            return place;
        places.Add(name, names.Count);
        names.Add(name);
        return names.Count - 1;
    }
}
