using System;
using System.Buffers.Binary;
using System.Numerics;
using System.Runtime.InteropServices;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Decodes buffer views of EXT_meshopt_compression. Every read is held against the bytes that are left; what
/// does not fit together ends in an error with the place of the view.
/// </summary>
internal ref struct MeshoptDecoder
{
    private const int GroupSize = 16;
    private const int MaximumBlock = 256;
    private const int BlockBytes = 8192;
    private const int LeastTail = 32;
    private const int IndexTail = 16;
    private const int SequenceTail = 4;

    private readonly GltfPlace _place;
    private readonly ReadOnlySpan<byte> _data;
    private int _position;

    private MeshoptDecoder(GltfPlace place, ReadOnlySpan<byte> data)
    {
        _place = place;
        _data = data;
    }

    /// <summary>Decodes a view.</summary>
    /// <param name="extension">The extension of the view.</param>
    /// <param name="data">The compressed bytes.</param>
    internal static byte[] Decode(GltfJson extension, ReadOnlySpan<byte> data)
    {
        GltfPlace place = extension.Place;
        long stride = extension.RequireCount("byteStride");
        long count = extension.RequireCount("count");
        string mode = extension.Require("mode").AsString();
        string filter = extension.StringOrNull("filter") ?? "NONE";
        if (stride is < 1 or > 256)
            throw place.Child("byteStride").Fault($"a stride of {stride} bytes is not allowed");
        // Nothing is shorter than two bits for sixteen bytes, so a false count fails before it is allocated.
        if (count < 1 || count > Array.MaxLength / stride || count * stride > (data.Length + 1L) * 64)
            throw place.Child("count").Fault(
                $"{count} elements of {stride} bytes cannot come out of {data.Length} bytes");
        var decoder = new MeshoptDecoder(place, data);
        var result = new byte[count * stride];
        switch (mode)
        {
            case "ATTRIBUTES":
                decoder.Attributes(result, (int)count, (int)stride);
                decoder.Filter(filter, result, (int)stride);
                break;
            case "TRIANGLES" when stride is 2 or 4 && count % 3 == 0:
                decoder.Triangles(result, (int)count, (int)stride);
                break;
            case "INDICES" when stride is 2 or 4:
                decoder.Sequence(result, (int)count, (int)stride);
                break;
            default:
                throw place.Fault($"the mode \"{mode}\" does not fit {count} elements of {stride} bytes");
        }
        return result;
    }

    private byte Next()
    {
        if (_position >= _data.Length)
            throw _place.Fault("the compressed data ends too early");
        return _data[_position++];
    }

    private void RequireHeader(int expected, int mask)
    {
        byte header = Next();
        if ((header & mask) != expected)
            throw _place.Fault($"the compressed data begins with {header}, which is no known version");
    }

    private ReadOnlySpan<byte> Take(int count)
    {
        if (count > _data.Length - _position)
            throw _place.Fault("the compressed data ends too early");
        _position += count;
        return _data.Slice(_position - count, count);
    }

    // Elements are stored byte by byte: for a block of elements first all first bytes, then all second ones.
    // Each is a difference to the byte of the element before; the tail holds the element before the first.
    private void Attributes(Span<byte> result, int count, int stride)
    {
        RequireHeader(0xA0, 0xFF);
        int tail = Math.Max(LeastTail, stride);
        if (_data.Length < 1 + tail)
            throw _place.Fault("the compressed data has no tail");
        Span<byte> last = stackalloc byte[stride];
        _data[^stride..].CopyTo(last);
        int blockSize = Math.Min(BlockBytes / stride & ~(GroupSize - 1), MaximumBlock);
        if (blockSize == 0)
            throw _place.Child("byteStride").Fault($"a stride of {stride} bytes is not allowed");
        Span<byte> differences = stackalloc byte[MaximumBlock];
        for (int start = 0; start < count; start += blockSize)
        {
            int elements = Math.Min(blockSize, count - start);
            for (int k = 0; k < stride; k++)
            {
                Block(differences, (elements + GroupSize - 1) / GroupSize);
                byte value = last[k];
                for (int i = 0; i < elements; i++)
                {
                    value += (byte)(-(differences[i] & 1) ^ (differences[i] >> 1));
                    result[(start + i) * stride + k] = value;
                }
                last[k] = value;
            }
        }
    }

    private void Block(scoped Span<byte> differences, int groups)
    {
        ReadOnlySpan<byte> header = Take((groups + 3) / 4);
        for (int group = 0; group < groups; group++)
        {
            int kind = header[group / 4] >> (group % 4 * 2) & 3;
            Span<byte> target = differences.Slice(group * GroupSize, GroupSize);
            if (kind == 0)
                target.Clear();
            else if (kind == 3)
                Take(GroupSize).CopyTo(target);
            else
                Packed(target, kind * 2);
        }
    }

    // Small values in a few bits each, the first one highest; the greatest value says that a byte follows.
    private void Packed(scoped Span<byte> target, int bits)
    {
        ReadOnlySpan<byte> packed = Take(GroupSize * bits / 8);
        int perByte = 8 / bits;
        int escape = (1 << bits) - 1;
        for (int i = 0; i < GroupSize; i++)
        {
            int value = packed[i / perByte] >> (8 - bits - i % perByte * bits) & escape;
            target[i] = value == escape ? Next() : (byte)value;
        }
    }

    private readonly void Filter(string filter, Span<byte> data, int stride)
    {
        switch (filter)
        {
            case "NONE":
                break;
            case "OCTAHEDRAL" when stride == 4:
                Octahedral(MemoryMarshal.Cast<byte, sbyte>(data));
                break;
            case "OCTAHEDRAL" when stride == 8:
                Octahedral(MemoryMarshal.Cast<byte, short>(data));
                break;
            case "QUATERNION" when stride == 8:
                Quaternions(MemoryMarshal.Cast<byte, short>(data));
                break;
            case "EXPONENTIAL" when stride % 4 == 0:
                Exponents(data);
                break;
            default:
                throw _place.Child("filter").Fault(
                    $"the filter \"{filter}\" does not fit a stride of {stride} bytes");
        }
    }

    // A unit vector folded onto a square: x and y, and in place of z the value that stands for 1.
    private static void Octahedral<T>(Span<T> values)
        where T : unmanaged, IBinaryInteger<T>, IMinMaxValue<T>
    {
        float full = float.CreateChecked(T.MaxValue);
        for (int i = 0; i + 3 < values.Length; i += 4)
        {
            float x = float.CreateChecked(values[i]);
            float y = float.CreateChecked(values[i + 1]);
            float z = float.CreateChecked(values[i + 2]) - MathF.Abs(x) - MathF.Abs(y);
            float fold = MathF.Min(z, 0);
            x += x >= 0 ? fold : -fold;
            y += y >= 0 ? fold : -fold;
            float length = MathF.Sqrt(x * x + y * y + z * z);
            float scale = length > 0 ? full / length : 0;
            values[i] = Round<T>(x * scale);
            values[i + 1] = Round<T>(y * scale);
            values[i + 2] = Round<T>(z * scale);
        }
    }

    // The three smaller parts of a quaternion; the low bits of the fourth value tell which part is left out.
    private static void Quaternions(Span<short> values)
    {
        float root = 1 / MathF.Sqrt(2);
        for (int i = 0; i + 3 < values.Length; i += 4)
        {
            int left = values[i + 3] & 3;
            float scale = root / (values[i + 3] | 3);
            float x = values[i] * scale;
            float y = values[i + 1] * scale;
            float z = values[i + 2] * scale;
            float w = MathF.Sqrt(MathF.Max(0, 1 - x * x - y * y - z * z));
            values[i + (left + 1 & 3)] = Round<short>(x * short.MaxValue);
            values[i + (left + 2 & 3)] = Round<short>(y * short.MaxValue);
            values[i + (left + 3 & 3)] = Round<short>(z * short.MaxValue);
            values[i + left] = Round<short>(w * short.MaxValue);
        }
    }

    // 24 bits of a whole number and 8 bits of the power of two to multiply it with.
    private static void Exponents(Span<byte> data)
    {
        for (int i = 0; i < data.Length; i += 4)
        {
            int packed = BinaryPrimitives.ReadInt32LittleEndian(data[i..]);
            BinaryPrimitives.WriteSingleLittleEndian(data[i..], MathF.ScaleB(packed << 8 >> 8, packed >> 24));
        }
    }

    private static T Round<T>(float value)
        where T : unmanaged, IBinaryInteger<T> =>
            T.CreateSaturating(MathF.Truncate(value + (value >= 0 ? 0.5f : -0.5f)));

    // Triangles by edges and vertices that came shortly before. A code of one byte for each triangle, then
    // free data, then a table of sixteen frequent codes.
    private void Triangles(Span<byte> result, int count, int stride)
    {
        byte header = Next();
        if (header is not (0xE0 or 0xE1))
            throw _place.Fault($"the compressed data begins with {header}, which is no known version");
        int lastNear = header == 0xE1 ? 13 : 15;
        ReadOnlySpan<byte> codes = Take(count / 3);
        if (_data.Length - _position < IndexTail)
            throw _place.Fault("the compressed data has no tail");
        ReadOnlySpan<byte> table = _data[^IndexTail..];
        var history = new History();
        uint last = 0;
        for (int i = 0; i < codes.Length; i++)
        {
            int code = codes[i];
            uint a;
            uint b;
            uint c;
            if (code < 0xF0)
            {
                (a, b) = history.Edge(code >> 4);
                int near = code & 15;
                if (near < lastNear)
                {
                    c = near == 0 ? history.NewVertex() : history.Vertex(near + 1);
                    history.Push(c, near == 0);
                }
                else
                {
                    c = last = near == 15 ? Index(last) : last + (uint)(near - (near ^ 3));
                    history.Push(c, true);
                }
            }
            else
            {
                bool isFrequent = code < 0xFE;
                int pair = isFrequent ? table[code & 15] : Next();
                int nearB = pair >> 4;
                int nearC = pair & 15;
                if (!isFrequent && pair == 0)
                    history.Restart();
                a = code == 0xFF ? 0 : history.NewVertex();
                b = nearB == 0 ? history.NewVertex() : history.Vertex(nearB);
                c = nearC == 0 ? history.NewVertex() : history.Vertex(nearC);
                if (code == 0xFF)
                    a = last = Index(last);
                if (!isFrequent && nearB == 15)
                    b = last = Index(last);
                if (!isFrequent && nearC == 15)
                    c = last = Index(last);
                history.Push(a, true);
                history.Push(b, nearB == 0 || (!isFrequent && nearB == 15));
                history.Push(c, nearC == 0 || (!isFrequent && nearC == 15));
                history.PushEdge(b, a);
            }
            history.PushEdge(c, b);
            history.PushEdge(a, c);
            Put(result, i * 3, stride, a);
            Put(result, i * 3 + 1, stride, b);
            Put(result, i * 3 + 2, stride, c);
        }
    }

    // Indices as differences to one of two that came before.
    private void Sequence(Span<byte> result, int count, int stride)
    {
        RequireHeader(0xD0, 0xFE);
        if (_data.Length < 1 + SequenceTail)
            throw _place.Fault("the compressed data has no tail");
        Span<uint> last = stackalloc uint[2];
        last.Clear();
        for (int i = 0; i < count; i++)
        {
            uint value = Number();
            ref uint before = ref last[(int)(value & 1)];
            before += Signed(value >> 1);
            Put(result, i, stride, before);
        }
    }

    private uint Index(uint last) => last + Signed(Number());

    private static uint Signed(uint value) => value >> 1 ^ (uint)-(int)(value & 1);

    // Seven bits a byte, the lowest first; the highest bit says that more follow.
    private uint Number()
    {
        uint value = 0;
        for (int shift = 0; shift < 35; shift += 7)
        {
            byte part = Next();
            value |= (uint)(part & 127) << shift;
            if (part < 128)
                return value;
        }
        throw _place.Fault("a number in the compressed data is too long");
    }

    private static void Put(Span<byte> result, int index, int stride, uint value)
    {
        if (stride == 2)
            BinaryPrimitives.WriteUInt16LittleEndian(result[(index * 2)..], (ushort)value);
        else
            BinaryPrimitives.WriteUInt32LittleEndian(result[(index * 4)..], value);
    }

    /// <summary>The last sixteen vertices and edges, and the number of the next new vertex.</summary>
    private sealed class History
    {
        private readonly uint[] _vertices = new uint[16];
        private readonly (uint A, uint B)[] _edges = new (uint, uint)[16];
        private int _vertexCount;
        private int _edgeCount;
        private uint _next;

        public uint NewVertex() => _next++;

        public void Restart() => _next = 0;

        /// <summary>The vertex that came a number of places before; 1 is the last one.</summary>
        public uint Vertex(int back) => _vertices[_vertexCount - back & 15];

        /// <summary>The edge that came a number of places before; 0 is the last one.</summary>
        public (uint A, uint B) Edge(int back) => _edges[_edgeCount - 1 - back & 15];

        public void Push(uint vertex, bool isNew)
        {
            if (isNew)
                _vertices[_vertexCount++ & 15] = vertex;
        }

        public void PushEdge(uint a, uint b) => _edges[_edgeCount++ & 15] = (a, b);
    }
}
