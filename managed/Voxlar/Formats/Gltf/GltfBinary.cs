using System;
using System.Collections.Generic;
using System.IO;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// The bytes of the buffer that is being written, kept in the blocks that they came in and written once.
/// </summary>
internal sealed class GltfBinary
{
    private readonly List<ReadOnlyMemory<byte>> _blocks = [];

    internal long Length { get; private set; }

    /// <summary>Appends a block at the next multiple of four. The block is kept, not copied.</summary>
    /// <returns>The offset at which the block begins.</returns>
    internal long Append(ReadOnlyMemory<byte> block)
    {
        int gap = (int)(-Length & 3);
        if (gap > 0)
        {
            _blocks.Add(new byte[gap]);
            Length += gap;
        }
        long offset = Length;
        _blocks.Add(block);
        Length += block.Length;
        return offset;
    }

    internal void WriteTo(Stream target)
    {
        foreach (ReadOnlyMemory<byte> block in _blocks)
            target.Write(block.Span);
    }

    internal byte[] ToArray()
    {
        var all = new byte[Length];
        int position = 0;
        foreach (ReadOnlyMemory<byte> block in _blocks)
        {
            block.Span.CopyTo(all.AsSpan(position));
            position += block.Length;
        }
        return all;
    }
}
