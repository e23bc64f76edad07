using System;
using System.Buffers.Binary;
using System.IO;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>The binary container: a header of 12 bytes, a JSON chunk and at most one binary chunk.</summary>
internal static class GlbContainer
{
    internal const int HeaderSize = 12;
    internal const int ChunkHeaderSize = 8;

    private const uint Magic = 0x46546C67;
    private const uint JsonChunk = 0x4E4F534A;
    private const uint BinaryChunk = 0x004E4942;

    internal static bool HasMagic(ReadOnlySpan<byte> head) =>
        head.Length >= 4 && BinaryPrimitives.ReadUInt32LittleEndian(head) == Magic;

    /// <summary>The version that the header tells, or 0 when the header is not whole.</summary>
    internal static uint VersionOf(ReadOnlySpan<byte> head) =>
        head.Length >= 8 ? BinaryPrimitives.ReadUInt32LittleEndian(head[4..]) : 0;

    /// <summary>
    /// Finds the chunks. Unknown chunks after the first two are skipped, as the container's rules ask.
    /// </summary>
    /// <exception cref="ImportException">The container is cut short or its lengths contradict each
    /// other.</exception>
    internal static (ReadOnlyMemory<byte> Json, ReadOnlyMemory<byte>? Binary) Split(ReadContext context,
        ReadOnlyMemory<byte> file)
    {
        ReadOnlySpan<byte> bytes = file.Span;
        if (bytes.Length < HeaderSize)
            throw context.ErrorAtByte(bytes.Length, "the file ends inside the header of 12 bytes");
        uint version = VersionOf(bytes);
        if (version == 1)
            throw context.ErrorAtByte(4, "this is binary glTF 1.0, which is not supported; glTF 2.0 is");
        if (version != 2)
            throw context.ErrorAtByte(4, $"binary glTF of version {version} is not supported; version 2 is");
        long declared = BinaryPrimitives.ReadUInt32LittleEndian(bytes[8..]);
        if (declared > bytes.Length)
            throw context.ErrorAtByte(bytes.Length,
                $"the file is cut short: its header tells {declared} bytes, {bytes.Length} are there");
        if (declared < HeaderSize + ChunkHeaderSize)
            throw context.ErrorAtByte(8,
                $"the header tells a length of {declared} bytes, too few for a JSON chunk");

        int end = (int)declared;
        int position = HeaderSize;
        ReadOnlyMemory<byte>? json = null;
        ReadOnlyMemory<byte>? binary = null;
        for (int number = 0; position + ChunkHeaderSize <= end; number++)
        {
            uint length = BinaryPrimitives.ReadUInt32LittleEndian(bytes[position..]);
            uint type = BinaryPrimitives.ReadUInt32LittleEndian(bytes[(position + 4)..]);
            int start = position + ChunkHeaderSize;
            if (length > (uint)(end - start))
                throw context.ErrorAtByte(position,
                    $"chunk {number} tells {length} bytes, {end - start} are left");
            ReadOnlyMemory<byte> content = file.Slice(start, (int)length);
            if (number == 0)
            {
                if (type != JsonChunk)
                    throw context.ErrorAtByte(position, "the first chunk is not the JSON chunk");
                json = content;
            }
            else if (number == 1 && type == BinaryChunk)
            {
                binary = content;
            }
            position = start + (int)length;
        }
        return (json ?? throw context.ErrorAtByte(HeaderSize, "there is no JSON chunk"), binary);
    }

    /// <summary>
    /// Writes a whole container: header, JSON padded with spaces, binary chunk padded with zeros.
    /// </summary>
    /// <param name="target">Receives the bytes; stays open.</param>
    /// <param name="json">The JSON text in UTF-8.</param>
    /// <param name="binary">The content of the binary chunk; no chunk is written when it is empty.</param>
    /// <param name="context">For failure reports.</param>
    /// <exception cref="ExportException">The whole would be longer than the container's 32-bit length can
    /// tell.</exception>
    internal static void Write(Stream target, ReadOnlySpan<byte> json, GltfBinary binary,
        WriteContext context)
    {
        long jsonLength = Align((long)json.Length);
        long binaryLength = Align(binary.Length);
        long total = HeaderSize + ChunkHeaderSize + jsonLength
            + (binaryLength > 0 ? ChunkHeaderSize + binaryLength : 0);
        if (total > uint.MaxValue)
            throw context.Error($"binary glTF holds at most {uint.MaxValue} bytes; the scene needs {total}");

        Span<byte> head = stackalloc byte[HeaderSize + ChunkHeaderSize];
        BinaryPrimitives.WriteUInt32LittleEndian(head, Magic);
        BinaryPrimitives.WriteUInt32LittleEndian(head[4..], 2);
        BinaryPrimitives.WriteUInt32LittleEndian(head[8..], (uint)total);
        BinaryPrimitives.WriteUInt32LittleEndian(head[12..], (uint)jsonLength);
        BinaryPrimitives.WriteUInt32LittleEndian(head[16..], JsonChunk);
        target.Write(head);
        target.Write(json);
        Pad(target, jsonLength - json.Length, (byte)' ');
        if (binaryLength == 0)
            return;
        BinaryPrimitives.WriteUInt32LittleEndian(head, (uint)binaryLength);
        BinaryPrimitives.WriteUInt32LittleEndian(head[4..], BinaryChunk);
        target.Write(head[..ChunkHeaderSize]);
        binary.WriteTo(target);
        Pad(target, binaryLength - binary.Length, 0);
    }

    private static long Align(long length) => (length + 3) & ~3L;

    private static void Pad(Stream target, long count, byte value)
    {
        for (long i = 0; i < count; i++)
            target.WriteByte(value);
    }
}
