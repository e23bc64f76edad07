using System;
using System.Runtime.Intrinsics;
using System.Text;

namespace Velbor.WrpGen.Interop;

/// <summary>Text in both directions.</summary>
internal static unsafe class Strings
{
    /// <summary>The text that a record points to, null for a null string.</summary>
    public static string? Read(PyStringArg* text)
    {
        if (text->Length < 0)
        {
            return null;
        }

        return text->Length == 0
            ? ""
            : text->CharSize switch
            {
                1 => FromLatin1((byte*)text->Chars, text->Length),
                2 => new string((char*)text->Chars, 0, text->Length),
                4 => FromCodePoints((uint*)text->Chars, text->Length),
                _ => throw new ArgumentException($"A character of {text->CharSize} bytes is unknown."),
            };
    }

    /// <summary>
    /// A new Python string, `None` for null; null with the Python error pending when it cannot be made.
    /// </summary>
    public static PyObject* Write(string? text)
    {
        if (text == null)
        {
            return PyCallbacks.fn_get_py_none();
        }

        fixed (char* chars = text)
        {
            return PyCallbacks.fn_conv_clr_string_to_py_string(chars, text.Length);
        }
    }

    /// <summary>
    /// The text with each unpaired surrogate replaced, which Python's decoder would refuse.
    /// </summary>
    public static string Mend(string text)
    {
        for (int at = 0; at < text.Length; at++)
        {
            if (!char.IsSurrogate(text[at]))
            {
                continue;
            }

            if (at + 1 >= text.Length || !char.IsSurrogatePair(text[at], text[at + 1]))
            {
                StringBuilder mended = new(text.Length);
                foreach (Rune rune in text.EnumerateRunes())
                {
                    mended.Append(rune.ToString());
                }

                return mended.ToString();
            }

            at++;
        }

        return text;
    }

    /// <summary>Widens each byte; names are short, so this spares what an encoding asks before it begins.</summary>
    private static string FromLatin1(byte* bytes, int count)
    {
        string text = new('\0', count);
        fixed (char* chars = text)
        {
            int at = 0;
            for (; at + Vector128<byte>.Count <= count; at += Vector128<byte>.Count)
            {
                (Vector128<ushort> low, Vector128<ushort> high) = Vector128.Widen(Vector128.Load(bytes + at));
                low.Store((ushort*)chars + at);
                high.Store((ushort*)chars + at + Vector128<ushort>.Count);
            }

            // The rest in at most two steps of eight or of four, the last of which may go over some once more.
            if (count >= 8)
            {
                if (count - at > 8)
                {
                    Widen8(bytes + at, chars + at);
                }

                if (count > at)
                {
                    Widen8(bytes + count - 8, chars + count - 8);
                }
            }
            else if (count >= 4)
            {
                Widen4(bytes, chars);
                Widen4(bytes + count - 4, chars + count - 4);
            }
            else
            {
                for (; at < count; at++)
                {
                    chars[at] = (char)bytes[at];
                }
            }
        }

        return text;
    }

    private static void Widen8(byte* from, char* to) =>
        Vector128.WidenLower(Vector128.CreateScalar(*(ulong*)from).AsByte()).Store((ushort*)to);

    private static void Widen4(byte* from, char* to) =>
        *(ulong*)to = Vector128.WidenLower(Vector128.CreateScalar(*(uint*)from).AsByte()).AsUInt64().ToScalar();

    private static string FromCodePoints(uint* points, int count)
    {
        int units = count;
        for (int i = 0; i < count; i++)
        {
            if (points[i] > char.MaxValue)
            {
                units++;
            }
        }

        // Filled in place before anybody else sees it; a helper with a delegate would have to wait for the
        // JIT.
        string text = new('\0', units);
        fixed (char* chars = text)
        {
            char* to = chars;
            for (int i = 0; i < count; i++)
            {
                uint point = points[i];
                if (point <= char.MaxValue)
                {
                    *to++ = (char)point;
                }
                else
                {
                    point -= 0x10000;
                    *to++ = (char)(0xD800 + (point >> 10));
                    *to++ = (char)(0xDC00 + (point & 0x3FF));
                }
            }
        }

        return text;
    }
}
