using System;
using System.Globalization;

namespace Velbor.Voxlar.Formats.Text;

/// <summary>
/// Reads words and numbers of a text file straight from its bytes. Blanks are all bytes up to the space but
/// the ends of lines, which are line feeds, carriage returns, or both.
/// </summary>
/// <remarks>
/// Lines are counted only when an error is reported. A line that continues on the next one is joined with a
/// byte (<see cref="JoinedLine"/>) that is a blank and still counts as the end of a line there.
/// </remarks>
internal sealed class TextScanner
{
    /// <summary>Stands where a line feed stood between two joined lines.</summary>
    public const byte JoinedLine = 0x1f;

    private const ulong MostDigits = 1_000_000_000_000_000_000;
    private const ulong MostExact = 1UL << 53;

    // The powers of ten that a double holds exactly: with an exact mantissa, one operation rounds exactly.
    private static readonly double[] Powers =
    [
        1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17,
        1e18, 1e19, 1e20, 1e21, 1e22,
    ];

    private readonly ReadContext _context;
    private readonly byte[] _data;

    /// <summary>Reads from the start of the data.</summary>
    /// <param name="context">For failure reports.</param>
    /// <param name="data">The text as UTF-8.</param>
    /// <param name="name">The file, for failure reports, where it is not the main one; else null.</param>
    public TextScanner(ReadContext context, byte[] data, string? name = null)
    {
        _context = context;
        _data = data;
        Name = name;
    }

    /// <summary>The file, for failure reports, where it is not the main one; else null.</summary>
    public string? Name { get; }

    /// <summary>The place of the next byte.</summary>
    public int Position { get; set; }

    /// <summary>Whether all is read.</summary>
    public bool AtEnd => Position >= _data.Length;

    /// <summary>The bytes that are left, at most.</summary>
    public int Remaining => _data.Length - Position;

    /// <summary>Joins the lines that end with a backslash to those that follow, but for comments.</summary>
    public static void JoinContinuedLines(Span<byte> data)
    {
        int from = 0;
        while (true)
        {
            int found = data[from..].IndexOf((byte)'\\');
            if (found < 0)
                return;
            int at = from + found;
            int end = at + 1;
            if (end < data.Length && data[end] == '\r')
                end++;
            if (end < data.Length && data[end] == '\n' && !IsComment(data[..at]))
            {
                data[at..end].Fill((byte)' ');
                data[end] = JoinedLine;
            }
            from = at + 1;
        }
    }

    /// <summary>Leaves out the blanks before the next word of the line.</summary>
    public void SkipBlanks()
    {
        byte[] data = _data;
        int at = Position;
        while (at < data.Length && data[at] <= ' ' && data[at] != '\n' && data[at] != '\r')
            at++;
        Position = at;
    }

    /// <summary>Leaves out blanks and ends of lines.</summary>
    public void SkipSpace()
    {
        byte[] data = _data;
        int at = Position;
        while (at < data.Length && data[at] <= ' ')
            at++;
        Position = at;
    }

    /// <summary>Leaves out blanks and tells whether the line ends here.</summary>
    public bool AtLineEnd()
    {
        SkipBlanks();
        return AtEnd || _data[Position] is (byte)'\n' or (byte)'\r';
    }

    /// <summary>As <see cref="AtLineEnd"/>, where a "#" starts a comment.</summary>
    public bool AtValuesEnd() => AtLineEnd() || _data[Position] == '#';

    /// <summary>Moves to the start of the next line.</summary>
    public void NextLine()
    {
        byte[] data = _data;
        int at = Position;
        while (at < data.Length && data[at] != '\n' && data[at] != '\r')
            at++;
        if (at < data.Length)
            at += data[at] == '\r' && at + 1 < data.Length && data[at + 1] == '\n' ? 2 : 1;
        Position = at;
    }

    /// <summary>The next word of the line; empty at its end.</summary>
    public ReadOnlySpan<byte> Word()
    {
        SkipBlanks();
        int start = Position;
        int at = start;
        while (at < _data.Length && _data[at] > ' ')
            at++;
        Position = at;
        return _data.AsSpan(start, at - start);
    }

    /// <summary>What is left of the line, without the blanks around it.</summary>
    public string RestOfLine() => TextBytes.ToText(RestBytes());

    /// <summary>What is left of the line, without the blanks around it, as bytes.</summary>
    public ReadOnlySpan<byte> RestBytes()
    {
        SkipBlanks();
        int start = Position;
        int end = start;
        while (end < _data.Length && _data[end] != '\n' && _data[end] != '\r')
            end++;
        Position = end;
        while (end > start && _data[end - 1] <= ' ')
            end--;
        return _data.AsSpan(start, end - start);
    }

    /// <summary>The next number of the line.</summary>
    /// <exception cref="ImportException">There is none.</exception>
    public double Number(string what)
    {
        if (TryNumber(out double value))
            return value;
        throw Malformed(what);
    }

    /// <summary>
    /// The next number of the line, rounded exactly, with nan and inf in their usual spellings. An exponent
    /// behind a stray sign, as in 3.1+e2, counts for nothing, as it does for most readers.
    /// </summary>
    /// <returns>False, and no move, where no number stands.</returns>
    public bool TryNumber(out double value)
    {
        SkipBlanks();
        byte[] data = _data;
        int start = Position;
        int at = start;
        bool negative = false;
        if (at < data.Length && data[at] is (byte)'-' or (byte)'+')
            negative = data[at++] == '-';
        ulong mantissa = 0;
        int exponent = 0;
        bool any = false;
        bool exact = true;
        for (; at < data.Length; at++)
        {
            uint digit = (uint)(data[at] - '0');
            if (digit > 9)
                break;
            any = true;
            if (mantissa < MostDigits)
                mantissa = mantissa * 10 + digit;
            else
                exact = false;
        }
        if (at < data.Length && data[at] == '.')
        {
            for (at++; at < data.Length; at++)
            {
                uint digit = (uint)(data[at] - '0');
                if (digit > 9)
                    break;
                any = true;
                if (mantissa < MostDigits)
                {
                    mantissa = mantissa * 10 + digit;
                    exponent--;
                }
                else
                {
                    exact = false;
                }
            }
        }
        if (!any)
            return TrySpecial(out value);
        if (at < data.Length && (data[at] | 0x20) == 'e')
            at = Exponent(at, ref exponent);
        if (exact && mantissa <= MostExact && exponent is >= -22 and <= 22)
        {
            value = exponent < 0 ? mantissa / Powers[-exponent] : mantissa * Powers[exponent];
            if (negative)
                value = -value;
        }
        else if (!TrySlow(start, at, out value))
        {
            return false;
        }
        return at >= data.Length || data[at] <= ' ' ? Accept(at) : TryTail(at, ref value);
    }

    /// <summary>The next whole number of the line; a fraction of zero is left out.</summary>
    /// <exception cref="ImportException">There is none.</exception>
    public long Integer(string what)
    {
        int start = Position;
        double value = Number(what);
        if (value == Math.Floor(value) && Math.Abs(value) <= MostExact)
            return (long)value;
        Position = start;
        throw Malformed(what);
    }

    /// <summary>A failure in the line of the next byte.</summary>
    public ImportException Error(string reason) => ErrorAt(Position, reason);

    /// <summary>A failure in the line of a byte.</summary>
    public ImportException ErrorAt(int position, string reason)
    {
        long line = LineOf(position);
        return Name is null
            ? _context.ErrorAtLine(line, reason)
            : _context.Error($"in the file '{Name}' beside it, line {line}: {reason}");
    }

    /// <summary>A failure about the next word, which is not what it should be.</summary>
    public ImportException Malformed(string what)
    {
        int at = Position;
        if (AtLineEnd())
            return ErrorAt(at, $"{what} is missing");
        int start = Position;
        ReadOnlySpan<byte> word = Word();
        Position = start;
        string text = TextBytes.ToText(word[..Math.Min(word.Length, 40)]);
        return ErrorAt(start, $"'{text}' stands where {what} is expected");
    }

    private static bool IsComment(ReadOnlySpan<byte> before)
    {
        ReadOnlySpan<byte> line = before[(before.LastIndexOfAny((byte)'\n', (byte)'\r') + 1)..];
        int at = 0;
        while (at < line.Length && line[at] <= ' ')
            at++;
        return at < line.Length && line[at] == '#';
    }

    private long LineOf(int position)
    {
        long line = 1;
        ReadOnlySpan<byte> before = _data.AsSpan(0, Math.Min(position, _data.Length));
        for (int i = 0; i < before.Length; i++)
        {
            bool isPair = before[i] == '\r' && i + 1 < before.Length && before[i + 1] == '\n';
            if (before[i] is (byte)'\n' or (byte)'\r' or JoinedLine && !isPair)
                line++;
        }
        return line;
    }

    private bool Accept(int at)
    {
        Position = at;
        return true;
    }

    private int Exponent(int at, ref int exponent)
    {
        byte[] data = _data;
        int next = at + 1;
        bool negative = false;
        if (next < data.Length && data[next] is (byte)'-' or (byte)'+')
            negative = data[next++] == '-';
        if (next >= data.Length || (uint)(data[next] - '0') > 9)
            return at;
        int told = 0;
        for (; next < data.Length && (uint)(data[next] - '0') <= 9; next++)
            told = Math.Min(told * 10 + (data[next] - '0'), 100_000);
        exponent += negative ? -told : told;
        return next;
    }

    private bool TrySlow(int start, int end, out double value)
    {
        if (_data[start] == '+')
            start++;
        return double.TryParse(
            _data.AsSpan(start, end - start), NumberStyles.Float, CultureInfo.InvariantCulture, out value);
    }

    // What may stand behind the digits: a comment, a stray exponent, or the spelling 1.#INF of some C
    // libraries.
    private bool TryTail(int at, ref double value)
    {
        ReadOnlySpan<byte> rest = _data.AsSpan(at);
        if (_data[at - 1] == '.' && (rest.StartsWith("#INF"u8) || rest.StartsWith("#IND"u8)
            || rest.StartsWith("#QNAN"u8) || rest.StartsWith("#SNAN"u8)))
        {
            value = rest[2] == 'N' && rest[3] == 'F' ? value * double.PositiveInfinity : double.NaN;
        }
        else if (rest[0] == '#')
        {
            return Accept(at);
        }
        else if (rest.Length < 2 || rest[0] is not ((byte)'+' or (byte)'-') || (rest[1] | 0x20) != 'e')
        {
            value = 0;
            return false;
        }
        while (at < _data.Length && _data[at] > ' ')
            at++;
        return Accept(at);
    }

    private bool TrySpecial(out double value)
    {
        int start = Position;
        ReadOnlySpan<byte> word = Word();
        bool negative = word.Length > 0 && word[0] == '-';
        if (word.Length > 0 && word[0] is (byte)'-' or (byte)'+')
            word = word[1..];
        if (IsOneOf(word, "inf"u8, "infinity"u8))
        {
            value = negative ? double.NegativeInfinity : double.PositiveInfinity;
            return true;
        }
        value = double.NaN;
        if (IsOneOf(word, "nan"u8, "nan(ind)"u8))
            return true;
        Position = start;
        return false;
    }

    private static bool IsOneOf(
        ReadOnlySpan<byte> word, ReadOnlySpan<byte> first, ReadOnlySpan<byte> second) =>
        System.Text.Ascii.EqualsIgnoreCase(word, first) || System.Text.Ascii.EqualsIgnoreCase(word, second);
}
