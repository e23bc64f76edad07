using System;
using System.Collections;
using System.Collections.Generic;
using System.Globalization;
using System.Text.Json;
using System.Text.Json.Nodes;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Turns free JSON values (extras, the content of extensions) into property values and back. Whole numbers
/// become int or long, other numbers double, arrays of numbers int[] or double[], other arrays lists, objects
/// dictionaries by name.
/// </summary>
internal static class GltfValues
{
    internal static object? FromJson(JsonElement value)
    {
        switch (value.ValueKind)
        {
            case JsonValueKind.String:
                return value.GetString();
            case JsonValueKind.True:
                return true;
            case JsonValueKind.False:
                return false;
            case JsonValueKind.Number:
                return NumberFrom(value);
            case JsonValueKind.Array:
                return ArrayFrom(value);
            case JsonValueKind.Object:
                var members = new Dictionary<string, object?>(StringComparer.Ordinal);
                foreach (JsonProperty member in value.EnumerateObject())
                    members[member.Name] = FromJson(member.Value);
                return members;
            default:
                return null;
        }
    }

    private static object NumberFrom(JsonElement value)
    {
        if (value.TryGetInt32(out int small))
            return small;
        if (value.TryGetInt64(out long large))
            return large;
        if (value.TryGetUInt64(out ulong largest))
            return largest;
        return value.GetDouble();
    }

    private static object ArrayFrom(JsonElement value)
    {
        bool numbers = value.GetArrayLength() > 0;
        bool whole = true;
        foreach (JsonElement item in value.EnumerateArray())
        {
            numbers &= item.ValueKind == JsonValueKind.Number;
            whole &= numbers && item.TryGetInt32(out _);
        }
        if (!numbers)
        {
            var items = new List<object?>(value.GetArrayLength());
            foreach (JsonElement item in value.EnumerateArray())
                items.Add(FromJson(item));
            return items;
        }
        if (whole)
        {
            var integers = new List<int>(value.GetArrayLength());
            foreach (JsonElement item in value.EnumerateArray())
                integers.Add(item.GetInt32());
            return integers.ToArray();
        }
        var doubles = new List<double>(value.GetArrayLength());
        foreach (JsonElement item in value.EnumerateArray())
            doubles.Add(item.GetDouble());
        return doubles.ToArray();
    }

    // What is nested deeper would not be read again; it also ends the walk over a value that holds itself.
    private const int Deepest = 64;

    /// <summary>The JSON form of a property's value. What JSON has no form for is written as text.</summary>
    /// <exception cref="InvalidOperationException">The value cannot be read, or is nested too deep.</exception>
    internal static JsonNode? ToJson(Property property)
    {
        try
        {
            return ToJson(property.Value);
        }
        catch (Exception e) when (e is not OutOfMemoryException)
        {
            throw new InvalidOperationException(
                $"the value of the property '{property.Name}' of '{property.Owner.Name}': {e.Message}", e);
        }
    }

    /// <summary>The same for a value that stands at a depth inside another.</summary>
    internal static JsonNode? ToJson(object? value, int depth = 0) => value switch
    {
        null => null,
        string text => JsonValue.Create(text),
        bool flag => JsonValue.Create(flag),
        int number => JsonValue.Create(number),
        long number => JsonValue.Create(number),
        double number => Number(number),
        float number => Number(number),
        byte or sbyte or short or ushort or uint =>
            JsonValue.Create(Convert.ToInt64(value, CultureInfo.InvariantCulture)),
        ulong number => JsonValue.Create(number),
        decimal number => JsonValue.Create(number),
        DateTime or DateTimeOffset =>
            JsonValue.Create(((IFormattable)value).ToString("o", CultureInfo.InvariantCulture)),
        Vector2 v => Numbers(v.x, v.y),
        Vector3 v => Numbers(v.x, v.y, v.z),
        Vector4 v => Numbers(v.x, v.y, v.z, v.w),
        FVector2 v => Numbers(v.x, v.y),
        FVector3 v => Numbers(v.x, v.y, v.z),
        FVector4 v => Numbers(v.x, v.y, v.z, v.w),
        Quaternion q => Numbers(q.x, q.y, q.z, q.w),
        Matrix4 m => Numbers(m.ToArray()),
        IDictionary or IEnumerable when depth == Deepest =>
            throw new InvalidOperationException($"It is nested more than {Deepest} deep, or holds itself."),
        IDictionary members => Members(members, depth + 1),
        IEnumerable items => Items(items, depth + 1),
        _ => JsonValue.Create(Convert.ToString(value, CultureInfo.InvariantCulture)),
    };

    // JSON has no infinities; they are told as text.
    internal static JsonNode Number(double value) => double.IsFinite(value)
        ? JsonValue.Create(value)
        : JsonValue.Create(value.ToString(CultureInfo.InvariantCulture));

    internal static JsonArray Numbers(params ReadOnlySpan<double> values)
    {
        var array = new JsonArray();
        foreach (double value in values)
            array.Add(Number(value));
        return array;
    }

    /// <summary>
    /// Colours and factors: they are single-precision by nature, so the shortest such text is written.
    /// </summary>
    internal static JsonArray Factors(params ReadOnlySpan<double> values)
    {
        var array = new JsonArray();
        foreach (double value in values)
            array.Add(Factor(value));
        return array;
    }

    internal static JsonNode Factor(double value) => JsonValue.Create((float)value);

    private static JsonObject Members(IDictionary members, int depth)
    {
        var result = new JsonObject();
        foreach (DictionaryEntry member in members)
            result[Convert.ToString(member.Key, CultureInfo.InvariantCulture)!] = ToJson(member.Value, depth);
        return result;
    }

    private static JsonArray Items(IEnumerable items, int depth)
    {
        var result = new JsonArray();
        foreach (object? item in items)
            result.Add(ToJson(item, depth));
        return result;
    }
}
