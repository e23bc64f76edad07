using System;
using System.Buffers.Binary;
using System.Buffers.Text;
using System.IO;
using System.Text;

namespace Velbor.Voxlar.Formats.Text;

/// <summary>
/// Writes text and binary values through a buffer. Numbers are written as short as they can be to read back
/// the same.
/// </summary>
internal sealed class TextOutput
{
    private const int Largest = 64;

    private readonly Stream _stream;
    private readonly byte[] _buffer = new byte[1 << 16];
    private int _count;
    private bool _isFlushed;

    /// <summary>Writes to a stream, which stays open; <see cref="Flush"/> ends it.</summary>
    public TextOutput(Stream stream) => _stream = stream;

    /// <summary>Whether nothing has been written yet.</summary>
    public bool IsEmpty => _count == 0 && !_isFlushed;

    /// <summary>Writes a byte.</summary>
    public void Byte(byte value)
    {
        if (_count == _buffer.Length)
            Flush();
        _buffer[_count++] = value;
    }

    /// <summary>Writes bytes.</summary>
    public void Bytes(ReadOnlySpan<byte> bytes)
    {
        if (bytes.Length > _buffer.Length - _count)
        {
            Flush();
            if (bytes.Length > _buffer.Length)
            {
                _stream.Write(bytes);
                _isFlushed = true;
                return;
            }
        }
        bytes.CopyTo(_buffer.AsSpan(_count));
        _count += bytes.Length;
    }

    /// <summary>Writes text as UTF-8.</summary>
    public void Text(string text) => Bytes(Encoding.UTF8.GetBytes(text));

    /// <summary>
    /// Writes text that must not end its line: line breaks and other control characters become blanks.
    /// </summary>
    public void OneLine(string text)
    {
        foreach (char c in text)
        {
            if (char.IsControl(c))
            {
                text = string.Create(text.Length, text, static (target, source) =>
                {
                    for (int i = 0; i < source.Length; i++)
                        target[i] = char.IsControl(source[i]) ? ' ' : source[i];
                });
                break;
            }
        }
        Text(text);
    }

    /// <summary>Writes a blank and a number.</summary>
    public void Number(double value)
    {
        Span<byte> target = Room();
        target[0] = (byte)' ';
        Utf8Formatter.TryFormat(value, target[1..], out int written);
        _count += written + 1;
    }

    /// <summary>Writes a blank and a number of single precision.</summary>
    public void Number(float value)
    {
        Span<byte> target = Room();
        target[0] = (byte)' ';
        Utf8Formatter.TryFormat(value, target[1..], out int written);
        _count += written + 1;
    }

    /// <summary>Writes a whole number, without a blank.</summary>
    public void Integer(long value)
    {
        Utf8Formatter.TryFormat(value, Room(), out int written);
        _count += written;
    }

    /// <summary>Writes a single, low byte first.</summary>
    public void Single(float value)
    {
        BinaryPrimitives.WriteSingleLittleEndian(Room(), value);
        _count += sizeof(float);
    }

    /// <summary>Writes a double, low byte first.</summary>
    public void Double(double value)
    {
        BinaryPrimitives.WriteDoubleLittleEndian(Room(), value);
        _count += sizeof(double);
    }

    /// <summary>Writes the low bytes of a whole number, low byte first.</summary>
    public void Integer(long value, int size)
    {
        BinaryPrimitives.WriteInt64LittleEndian(Room(), value);
        _count += size;
    }

    /// <summary>Brings all to the stream.</summary>
    public void Flush()
    {
        _stream.Write(_buffer, 0, _count);
        _isFlushed |= _count > 0;
        _count = 0;
    }

    private Span<byte> Room()
    {
        if (_buffer.Length - _count < Largest)
            Flush();
        return _buffer.AsSpan(_count);
    }
}
