using System;
using System.Buffers.Binary;

namespace Velbor.Voxlar.Formats;

/// <summary>
/// Reads binary values from memory. Every read and every announced count is held against the bytes that are
/// left, so that a false count fails before anything is allocated for it.
/// </summary>
internal sealed class BoundedReader
{
    private readonly ReadContext _context;
    private readonly ReadOnlyMemory<byte> _data;
    private readonly long _offset;

    /// <summary>Reads from the start of the data.</summary>
    /// <param name="data">The data.</param>
    /// <param name="context">For failure reports.</param>
    /// <param name="bigEndian">Whether the high byte comes first.</param>
    /// <param name="offset">Where the data starts in the file, for failure reports.</param>
    public BoundedReader(ReadOnlyMemory<byte> data, ReadContext context, bool bigEndian = false, long offset = 0)
    {
        _data = data;
        _context = context;
        _offset = offset;
        BigEndian = bigEndian;
    }

    /// <summary>Whether the high byte comes first.</summary>
    public bool BigEndian { get; set; }

    /// <summary>The place of the next byte in the data.</summary>
    public int Position { get; private set; }

    /// <summary>The length of the data.</summary>
    public int Length => _data.Length;

    /// <summary>How many bytes are left.</summary>
    public int Remaining => _data.Length - Position;

    /// <summary>Moves to a place in the data.</summary>
    public void Seek(long position, string what)
    {
        if (position < 0 || position > _data.Length)
            throw Error($"{what} starts at byte {position}, outside the data");
        Position = (int)position;
    }

    /// <summary>Leaves out bytes.</summary>
    public void Skip(long count) => Take(count, "data");

    /// <summary>Holds an announced number of elements against the bytes that are left.</summary>
    /// <param name="count">The number.</param>
    /// <param name="elementSize">The least size of an element in bytes, at least 1.</param>
    /// <param name="what">What the elements are, for the message.</param>
    /// <returns>The number, which now is known to fit.</returns>
    public int Count(long count, int elementSize, string what)
    {
        if (count < 0 || count > Remaining / elementSize)
            throw Error($"{count} {what} are announced, but only {Remaining} bytes are left");
        return (int)count;
    }

    /// <summary>The next bytes, not copied.</summary>
    public ReadOnlyMemory<byte> Take(long count, string what)
    {
        if (count < 0 || count > Remaining)
            throw Error($"{what} of {count} bytes is announced, but only {Remaining} bytes are left");
        ReadOnlyMemory<byte> bytes = _data.Slice(Position, (int)count);
        Position += (int)count;
        return bytes;
    }

    /// <summary>An 8-bit unsigned integer.</summary>
    public byte ReadByte() => Next(1)[0];

    /// <summary>An 8-bit integer.</summary>
    public sbyte ReadSByte() => (sbyte)Next(1)[0];

    /// <summary>A 16-bit integer.</summary>
    public short ReadInt16() => (short)ReadUInt16();

    /// <summary>A 16-bit unsigned integer.</summary>
    public ushort ReadUInt16()
    {
        ReadOnlySpan<byte> bytes = Next(sizeof(ushort));
        return BigEndian
            ? BinaryPrimitives.ReadUInt16BigEndian(bytes)
            : BinaryPrimitives.ReadUInt16LittleEndian(bytes);
    }

    /// <summary>A 32-bit integer.</summary>
    public int ReadInt32() => (int)ReadUInt32();

    /// <summary>A 32-bit unsigned integer.</summary>
    public uint ReadUInt32()
    {
        ReadOnlySpan<byte> bytes = Next(sizeof(uint));
        return BigEndian
            ? BinaryPrimitives.ReadUInt32BigEndian(bytes)
            : BinaryPrimitives.ReadUInt32LittleEndian(bytes);
    }

    /// <summary>A 64-bit integer.</summary>
    public long ReadInt64() => (long)ReadUInt64();

    /// <summary>A 64-bit unsigned integer.</summary>
    public ulong ReadUInt64()
    {
        ReadOnlySpan<byte> bytes = Next(sizeof(ulong));
        return BigEndian
            ? BinaryPrimitives.ReadUInt64BigEndian(bytes)
            : BinaryPrimitives.ReadUInt64LittleEndian(bytes);
    }

    /// <summary>A single.</summary>
    public float ReadSingle() => BitConverter.UInt32BitsToSingle(ReadUInt32());

    /// <summary>A double.</summary>
    public double ReadDouble() => BitConverter.UInt64BitsToDouble(ReadUInt64());

    /// <summary>A failure at the present place.</summary>
    public ImportException Error(string reason) => _context.ErrorAtByte(_offset + Position, reason);

    private ReadOnlySpan<byte> Next(int size)
    {
        if (size > Remaining)
            throw Error("the file ends in the middle of a value");
        ReadOnlySpan<byte> bytes = _data.Span.Slice(Position, size);
        Position += size;
        return bytes;
    }
}
