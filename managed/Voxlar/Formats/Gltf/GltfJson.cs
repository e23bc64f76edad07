using System;
using System.Collections.Generic;
using System.Globalization;
using System.Text;
using System.Text.Json;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Where a JSON value stands: the chain of names and indices that leads to it. Turned into text for errors
/// only.
/// </summary>
internal sealed class GltfPlace
{
    private readonly ReadContext _context;
    private readonly GltfPlace? _parent;
    private readonly string? _key;
    private readonly int _index;

    internal GltfPlace(ReadContext context) => _context = context;

    private GltfPlace(GltfPlace parent, string? key, int index)
    {
        _context = parent._context;
        _parent = parent;
        _key = key;
        _index = index;
    }

    internal GltfPlace Child(string name) => new(this, name, 0);

    internal GltfPlace Item(int position) => new(this, null, position);

    /// <summary>The error to throw for this place: the file, the JSON path and the reason.</summary>
    internal ImportException Fault(string reason)
    {
        string path = ToString();
        return _context.Error(path.Length == 0 ? reason : $"{path}: {reason}");
    }

    public override string ToString()
    {
        if (_parent is null)
            return string.Empty;
        string head = _parent.ToString();
        if (_key is null)
            return head + "[" + _index.ToString(CultureInfo.InvariantCulture) + "]";
        return head.Length == 0 ? _key : head + "." + _key;
    }
}

/// <summary>
/// A JSON value together with its place, so that every getter can refuse a wrong value by file and path.
/// </summary>
internal readonly struct GltfJson
{
    /// <summary>
    /// Deeper nesting than any real file has; it bounds the recursion of everything that walks the document.
    /// </summary>
    private const int MaximumDepth = 96;

    private readonly JsonElement _element;

    internal GltfJson(JsonElement element, GltfPlace place)
    {
        _element = element;
        Place = place;
    }

    internal GltfPlace Place { get; }

    internal JsonElement Element => _element;

    internal bool IsObject => _element.ValueKind == JsonValueKind.Object;

    /// <summary>Parses a whole document. Syntax errors name the line and the byte in it.</summary>
    /// <param name="context">For failure reports.</param>
    /// <param name="text">UTF-8 text; it must stay unchanged while the document is in use.</param>
    internal static JsonDocument Parse(ReadContext context, ReadOnlyMemory<byte> text)
    {
        if (text.Span.StartsWith("\uFEFF"u8))
            text = text[3..];
        try
        {
            JsonDocument document =
                JsonDocument.Parse(text, new JsonDocumentOptions { MaxDepth = MaximumDepth });
            if (document.RootElement.ValueKind != JsonValueKind.Object)
            {
                document.Dispose();
                throw context.ErrorAtLine(1, "the document is not a JSON object");
            }
            return document;
        }
        catch (JsonException e)
        {
            long line = (e.LineNumber ?? 0) + 1;
            long column = (e.BytePositionInLine ?? 0) + 1;
            throw context.ErrorAtLine(line,
                $"not valid JSON at byte {column} of the line: {FirstSentence(e.Message)}", e);
        }
    }

    private static string FirstSentence(string message)
    {
        int end = message.IndexOf(" LineNumber", StringComparison.Ordinal);
        return (end < 0 ? message : message[..end]).TrimEnd('.');
    }

    internal bool TryGet(string name, out GltfJson value)
    {
        if (_element.ValueKind == JsonValueKind.Object
            && _element.TryGetProperty(name, out JsonElement found))
        {
            value = new GltfJson(found, Place.Child(name));
            return true;
        }
        value = default;
        return false;
    }

    internal GltfJson Require(string name) =>
        TryGet(name, out GltfJson value) ? value : throw Place.Fault($"the member \"{name}\" is missing");

    /// <summary>The member as an object, or nothing where it is absent.</summary>
    internal bool TryGetObject(string name, out GltfJson value)
    {
        if (!TryGet(name, out value))
            return false;
        if (value._element.ValueKind != JsonValueKind.Object)
            throw value.Place.Fault("an object is expected");
        return true;
    }

    internal bool TryGetExtension(string name, out GltfJson value)
    {
        value = default;
        return TryGetObject("extensions", out GltfJson all) && all.TryGetObject(name, out value);
    }

    /// <summary>The items of an array member; empty where it is absent.</summary>
    internal GltfJson[] Items(string name)
    {
        if (!TryGet(name, out GltfJson array))
            return [];
        return array.Items();
    }

    internal GltfJson[] Items()
    {
        if (_element.ValueKind != JsonValueKind.Array)
            throw Place.Fault("an array is expected");
        var items = new GltfJson[_element.GetArrayLength()];
        int position = 0;
        foreach (JsonElement item in _element.EnumerateArray())
        {
            items[position] = new GltfJson(item, Place.Item(position));
            position++;
        }
        return items;
    }

    /// <summary>The items of an array of objects.</summary>
    internal GltfJson[] Objects(string name)
    {
        GltfJson[] items = Items(name);
        foreach (GltfJson item in items)
        {
            if (!item.IsObject)
                throw item.Place.Fault("an object is expected");
        }
        return items;
    }

    internal IEnumerable<(string Name, GltfJson Value)> Members()
    {
        if (_element.ValueKind != JsonValueKind.Object)
            throw Place.Fault("an object is expected");
        foreach (JsonProperty member in _element.EnumerateObject())
            yield return (member.Name, new GltfJson(member.Value, Place.Child(member.Name)));
    }

    internal string AsString()
    {
        if (_element.ValueKind != JsonValueKind.String)
            throw Place.Fault("a string is expected");
        try
        {
            return _element.GetString()!;
        }
        catch (InvalidOperationException)
        {
            throw Place.Fault("the string is not valid text");
        }
    }

    internal string? StringOrNull(string name) => TryGet(name, out GltfJson value) ? value.AsString() : null;

    internal double AsDouble()
    {
        if (_element.ValueKind != JsonValueKind.Number || !_element.TryGetDouble(out double number))
            throw Place.Fault("a number is expected");
        if (!double.IsFinite(number))
            throw Place.Fault("the number is out of range");
        return number;
    }

    internal double Double(string name, double otherwise) =>
        TryGet(name, out GltfJson value) ? value.AsDouble() : otherwise;

    internal bool Bool(string name, bool otherwise)
    {
        if (!TryGet(name, out GltfJson value))
            return otherwise;
        return value._element.ValueKind switch
        {
            JsonValueKind.True => true,
            JsonValueKind.False => false,
            _ => throw value.Place.Fault("true or false is expected"),
        };
    }

    internal double[] Doubles(string name, int count)
    {
        GltfJson[] items = Require(name).Items();
        if (items.Length != count)
            throw Place.Child(name).Fault($"{count} numbers are expected, {items.Length} are there");
        return Array.ConvertAll(items, static item => item.AsDouble());
    }

    internal double[]? DoublesOrNull(string name) =>
        TryGet(name, out GltfJson value) ? Array.ConvertAll(value.Items(), static item => item.AsDouble())
            : null;

    /// <summary>A whole number that is not negative. Some writers put 3.0 for 3; that is taken too.</summary>
    internal long AsCount()
    {
        if (_element.ValueKind == JsonValueKind.Number)
        {
            if (_element.TryGetInt64(out long whole) && whole >= 0)
                return whole;
            if (_element.TryGetDouble(out double number) && number >= 0 && number < 9e15
                && Math.Floor(number) == number)
                return (long)number;
        }
        throw Place.Fault("a whole number that is not negative is expected");
    }

    internal long Count(string name, long otherwise) => TryGet(name, out GltfJson value) ? value.AsCount()
        : otherwise;

    internal long RequireCount(string name) => Require(name).AsCount();

    /// <summary>An index into an array of the document, checked against the array's length.</summary>
    internal int AsIndex(int length, string what)
    {
        long _index = AsCount();
        if (_index >= length)
            throw Place.Fault($"there is no {what} {_index}; the file has {length}");
        return (int)_index;
    }

    /// <summary>The index that a member holds, or -1 where the member is absent.</summary>
    internal int Index(string name, int length, string what) =>
        TryGet(name, out GltfJson value) ? value.AsIndex(length, what) : -1;

    /// <summary>The raw UTF-8 bytes between the quotes of a string, or nothing when it has escapes.</summary>
    internal bool TryGetRawString(out ReadOnlySpan<byte> raw)
    {
        raw = default;
        if (_element.ValueKind != JsonValueKind.String)
            return false;
        ReadOnlySpan<byte> quoted = System.Runtime.InteropServices.JsonMarshal.GetRawUtf8Value(_element);
        raw = quoted[1..^1];
        return raw.IndexOf((byte)'\\') < 0;
    }

    public override string ToString() => Encoding.UTF8.GetString(
        System.Runtime.InteropServices.JsonMarshal.GetRawUtf8Value(_element));
}
