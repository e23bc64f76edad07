using System;
using System.Globalization;
using Velbor.Voxlar.Shading;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// The options of a texture in a material library: -s and -o are the scale and offset of the coordinates,
/// -clamp the wrap mode; the others are kept as they stand, as properties "mtl.-" and the name of the option.
/// </summary>
internal static class MtlOptions
{
    // How many values an option takes at most; the first so many must be there.
    private static readonly (string Name, int Least, int Most)[] Options =
    [
        ("-s", 1, 3), ("-o", 1, 3), ("-t", 1, 3), ("-mm", 2, 2), ("-bm", 1, 1), ("-boost", 1, 1),
        ("-texres", 1, 1), ("-blendu", 1, 1), ("-blendv", 1, 1), ("-clamp", 1, 1), ("-cc", 1, 1),
        ("-imfchan", 1, 1), ("-type", 1, 1),
    ];

    /// <summary>The words of a text.</summary>
    public static string[] Words(string text) =>
        text.Split((char[]?)null, StringSplitOptions.RemoveEmptyEntries);

    /// <summary>Reads numbers until a word is none, or enough are read.</summary>
    /// <returns>How many were read.</returns>
    public static int TryNumbers(string[] words, int start, int most, out double[] numbers)
    {
        numbers = new double[most];
        int count = 0;
        while (count < most && start + count < words.Length && double.TryParse(
            words[start + count], NumberStyles.Float, CultureInfo.InvariantCulture, out numbers[count]))
            count++;
        return count;
    }

    /// <summary>Reads options and a file name, which may have blanks in it.</summary>
    /// <param name="text">What stands behind the key.</param>
    /// <param name="type">The value of -type; empty when there is none.</param>
    public static Texture Parse(string text, out string type)
    {
        Texture texture = new();
        type = "";
        string rest = text;
        while (rest.StartsWith('-'))
        {
            string[] words = Words(rest);
            int used = Take(texture, words);
            if (used == 0)
                break;
            if (words[0] == "-type")
                type = words[1];
            for (int i = 0; i < used; i++)
                rest = rest[words[i].Length..].TrimStart();
        }
        texture.FileName = rest;
        return texture;
    }

    // Takes the first option; the number of words it has, or 0 when this is none.
    private static int Take(Texture texture, string[] words)
    {
        int at = Array.FindIndex(Options, option => option.Name == words[0]);
        if (at < 0)
            return 0;
        (string name, int least, int most) = Options[at];
        // The last word is the name of the file.
        if (words.Length - 2 < least)
            return 0;
        int count = least;
        if (name is "-s" or "-o" or "-t")
        {
            count = TryNumbers(words, 1, Math.Min(most, words.Length - 2), out double[] numbers);
            if (count == 0)
                return 0;
            Set(texture, name, numbers, count);
            if (name == "-t" || count == 3)
                Keep(texture, words, count);
        }
        else if (name == "-clamp")
        {
            texture.WrapModeU = texture.WrapModeV = words[1] == "on" ? WrapMode.Clamp : WrapMode.Wrap;
        }
        else
        {
            Keep(texture, words, count);
        }
        return count + 1;
    }

    private static void Set(Texture texture, string name, double[] numbers, int count)
    {
        if (name == "-s")
            texture.SetScale(numbers[0], count > 1 ? numbers[1] : 1);
        else if (name == "-o")
            texture.SetTranslation(numbers[0], count > 1 ? numbers[1] : 0);
    }

    private static void Keep(Texture texture, string[] words, int count) =>
        texture.SetProperty(ObjNames.Mtl + words[0], string.Join(' ', words, 1, count));
}
