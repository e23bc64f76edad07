using System;
using System.IO;
using System.Runtime.InteropServices;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>
/// Buffers, buffer views and accessors of one document. Buffers are fetched at their first use. Every offset
/// and count is checked before anything is allocated, and the sum of all that is decoded is bounded by the
/// size of the input.
/// </summary>
internal sealed class GltfAccessors
{
    /// <summary>
    /// Elements of an accessor that has no bytes of its own (all zero, or sparse over zeros).
    /// </summary>
    private const long MaximumZeroElements = 1 << 20;

    /// <summary>
    /// What may be decoded in any case, in components; more is allowed in proportion to the input.
    /// </summary>
    private const long BaseBudget = 16L << 20;

    private const int BudgetPerInputByte = 16;

    private readonly GltfJson[] _accessors;
    private readonly GltfJson[] _views;
    private readonly GltfJson[] _buffers;
    private readonly Accessor?[] _parsed;
    private readonly ReadOnlyMemory<byte>?[] _contents;
    private readonly byte[]?[] _decoded;
    private readonly ReadOnlyMemory<byte>? _binaryChunk;
    private readonly ReadContext _context;
    private long _budget = BaseBudget;

    internal GltfAccessors(GltfJson root, ReadOnlyMemory<byte>? binaryChunk, ReadContext context)
    {
        _accessors = root.Objects("accessors");
        _views = root.Objects("bufferViews");
        _buffers = root.Objects("buffers");
        _parsed = new Accessor?[_accessors.Length];
        _contents = new ReadOnlyMemory<byte>?[_buffers.Length];
        _decoded = new byte[]?[_views.Length];
        _binaryChunk = binaryChunk;
        _context = context;
    }

    internal int Count => _accessors.Length;

    internal int ViewCount => _views.Length;

    private sealed record Accessor(GltfPlace Place, int Count, int ComponentType, int Columns, int Rows,
        bool Normalized,
            int View, long Offset, GltfJson? Sparse)
    {
        internal int Components => Columns * Rows;

        internal int ComponentSize => GltfComponents.SizeOf(ComponentType);

        /// <summary>Columns of a matrix begin at multiples of four bytes.</summary>
        internal int ColumnSize => Columns == 1 ? Rows * ComponentSize : (Rows * ComponentSize + 3) & ~3;

        internal int ElementSize => Columns * ColumnSize;
    }

    /// <summary>The number of elements of an accessor.</summary>
    internal int ElementCount(int index) => Get(index).Count;

    /// <summary>The number of components in an element of an accessor.</summary>
    internal int ComponentCount(int index) => Get(index).Components;

    /// <summary>Whether an accessor has bytes of its own; without them all its values are zero.</summary>
    internal bool HasData(int index) => Get(index).View >= 0 || Get(index).Sparse is not null;

    /// <summary>
    /// All components as single-precision numbers; normalized integers become 0 to 1 or -1 to 1.
    /// </summary>
    internal float[] ReadFloats(int index)
    {
        Accessor accessor = Get(index);
        switch (accessor.ComponentType)
        {
            case GltfComponents.Float:
                return Gather<float>(accessor);
            case GltfComponents.Byte:
                float byteScale = accessor.Normalized ? 127f : 1f;
                return Array.ConvertAll(Gather<sbyte>(accessor), v =>
                    Math.Max(v / byteScale, byteScale == 1f ? v : -1f));
            case GltfComponents.UnsignedByte:
                float unsignedByteScale = accessor.Normalized ? 255f : 1f;
                return Array.ConvertAll(Gather<byte>(accessor), v => v / unsignedByteScale);
            case GltfComponents.Short:
                float shortScale = accessor.Normalized ? 32767f : 1f;
                return Array.ConvertAll(Gather<short>(accessor), v =>
                    Math.Max(v / shortScale, shortScale == 1f ? v : -1f));
            case GltfComponents.UnsignedShort:
                float unsignedShortScale = accessor.Normalized ? 65535f : 1f;
                return Array.ConvertAll(Gather<ushort>(accessor), v => v / unsignedShortScale);
            default:
                return Array.ConvertAll(Gather<uint>(accessor), static v => (float)v);
        }
    }

    /// <summary>The floats of an accessor whose elements must have a given number of components.</summary>
    internal float[] ReadFloats(int index, int components, GltfPlace user)
    {
        RequireComponents(index, components, user);
        return ReadFloats(index);
    }

    internal void RequireComponents(int index, int components, GltfPlace user)
    {
        if (Get(index).Components != components)
            throw user.Fault(
                $"accessor {index} has {Get(index).Components} components an element; {components} are "
                + "expected");
    }

    /// <summary>The values of an integer accessor: vertex indices or joints.</summary>
    internal int[] ReadIntegers(int index, GltfPlace user) => ReadIntegers(Get(index), user);

    /// <summary>
    /// The values in the type they are stored in: an array of sbyte, byte, short, ushort, uint or float.
    /// </summary>
    internal Array ReadAsStored(int index)
    {
        Accessor accessor = Get(index);
        if (accessor.Normalized)
            return ReadFloats(index);
        return accessor.ComponentType switch
        {
            GltfComponents.Byte => Gather<sbyte>(accessor),
            GltfComponents.UnsignedByte => Gather<byte>(accessor),
            GltfComponents.Short => Gather<short>(accessor),
            GltfComponents.UnsignedShort => Gather<ushort>(accessor),
            GltfComponents.UnsignedInt => Gather<uint>(accessor),
            _ => Gather<float>(accessor),
        };
    }

    /// <summary>The bytes of a buffer view, as images use them.</summary>
    internal ReadOnlyMemory<byte> ReadView(int view) => View(view, out _);

    private Accessor Get(int index) => _parsed[index] ??= Parse(_accessors[index]);

    private Accessor Parse(GltfJson json)
    {
        GltfPlace place = json.Place;
        long componentType = json.RequireCount("componentType");
        if (GltfComponents.SizeOf(componentType) == 0)
            throw place.Child("componentType").Fault($"there is no component type {componentType}");
        string type = json.Require("type").AsString();
        (int columns, int rows) = GltfComponents.ShapeOf(type);
        if (columns == 0)
            throw place.Child("type").Fault($"there is no accessor type \"{type}\"");
        long count = json.RequireCount("count");
        if (count == 0)
            throw place.Child("count").Fault("an accessor must have at least one element");
        int view = json.Index("bufferView", _views.Length, "buffer view");
        long offset = json.Count("byteOffset", 0);
        GltfJson? sparse = json.TryGetObject("sparse", out GltfJson found) ? found : null;
        if (view < 0 && count > MaximumZeroElements)
            throw place.Child("count").Fault(
                $"an accessor without a buffer view may have {MaximumZeroElements} elements, not {count}");
        int size = GltfComponents.SizeOf(componentType);
        int column = columns == 1 ? rows * size : (rows * size + 3) & ~3;
        if (view >= 0)
        {
            ReadOnlyMemory<byte> bytes = View(view, out long stride);
            CheckRange(place, $"buffer view {view}", bytes.Length, offset, count, columns * column, stride);
        }
        return new Accessor(place, (int)count, (int)componentType, columns, rows,
            json.Bool("normalized", false), view,
                offset, sparse);
    }

    private static void CheckRange(GltfPlace place, string what, long available, long offset, long count,
        int size, long stride)
    {
        if (stride == 0)
            stride = size;
        else if (stride < size)
            throw place.Fault($"{what} has a stride of {stride} bytes; an element has {size}");
        // Divisions, not products: count and offset come from the file and may be anything.
        if (offset > available || size > available - offset
            || (available - offset - size) / stride < count - 1)
            throw place.Fault(
                $"{count} elements of {size} bytes from byte {offset} do not fit into {what} of "
                + $"{available} bytes");
    }

    private T[] Gather<T>(Accessor accessor)
        where T : unmanaged
    {
        long total = (long)accessor.Count * accessor.Components;
        _budget -= total;
        if (_budget < 0)
            throw accessor.Place.Fault("the file describes far more data than it holds");
        var values = new T[total];
        if (accessor.View >= 0)
        {
            ReadOnlySpan<byte> bytes = View(accessor.View, out long stride).Span[(int)accessor.Offset..];
            Copy(bytes, stride == 0 ? accessor.ElementSize : (int)stride, accessor, values);
        }
        if (accessor.Sparse is GltfJson sparse)
            ApplySparse(accessor, sparse, values);
        return values;
    }

    private static void Copy<T>(ReadOnlySpan<byte> bytes, int stride, Accessor accessor, Span<T> values)
        where T : unmanaged
    {
        int used = accessor.Rows * accessor.ComponentSize;
        Span<byte> target = MemoryMarshal.AsBytes(values);
        if (stride == used && accessor.Columns == 1)
        {
            bytes[..target.Length].CopyTo(target);
            return;
        }
        int position = 0;
        int columnSize = accessor.ColumnSize;
        for (int element = 0; element < accessor.Count; element++)
        {
            ReadOnlySpan<byte> source = bytes[(element * stride)..];
            for (int column = 0; column < accessor.Columns; column++)
            {
                source.Slice(column * columnSize, used).CopyTo(target[position..]);
                position += used;
            }
        }
    }

    private void ApplySparse<T>(Accessor accessor, GltfJson sparse, T[] values)
        where T : unmanaged
    {
        long count = sparse.RequireCount("count");
        if (count > accessor.Count)
            throw sparse.Place.Child("count").Fault(
                $"{count} values are replaced in an accessor of {accessor.Count}");
        if (count == 0)
            return;
        GltfJson where = sparse.Require("indices");
        long type = where.RequireCount("componentType");
        if (type is not (GltfComponents.UnsignedByte or GltfComponents.UnsignedShort
            or GltfComponents.UnsignedInt))
            throw where.Place.Child("componentType").Fault($"component type {type} cannot hold indices");
        int[] positions = ReadIntegers(SparsePart(where, (int)count, (int)type, 1, 1), where.Place);
        GltfJson what = sparse.Require("values");
        T[] replaced = Gather<T>(SparsePart(what, (int)count, accessor.ComponentType, accessor.Columns,
            accessor.Rows));
        int components = accessor.Components;
        for (int i = 0; i < positions.Length; i++)
        {
            if ((uint)positions[i] >= (uint)accessor.Count)
                throw where.Place.Fault(
                    $"index {(uint)positions[i]} is past the {accessor.Count} elements of the accessor");
            replaced.AsSpan(i * components, components).CopyTo(values.AsSpan(positions[i] * components));
        }
    }

    private Accessor SparsePart(GltfJson json, int count, int componentType, int columns, int rows)
    {
        json.Require("bufferView");
        int view = json.Index("bufferView", _views.Length, "buffer view");
        var part = new Accessor(json.Place, count, componentType, columns, rows, false, view,
            json.Count("byteOffset", 0), null);
        ReadOnlyMemory<byte> bytes = View(view, out long stride);
        CheckRange(json.Place, $"buffer view {view}", bytes.Length, part.Offset, count, part.ElementSize,
            stride);
        return part;
    }

    private int[] ReadIntegers(Accessor part, GltfPlace user) => part.ComponentType switch
    {
        GltfComponents.UnsignedByte => Array.ConvertAll(Gather<byte>(part), static v => (int)v),
        GltfComponents.UnsignedShort => Array.ConvertAll(Gather<ushort>(part), static v => (int)v),
        // A value above the positive range turns negative here and is refused with the other bad indices.
        GltfComponents.UnsignedInt => Gather<int>(part),
        _ => throw user.Fault(
            $"component type {part.ComponentType} is given where unsigned integers are expected"),
    };

    private ReadOnlyMemory<byte> View(int index, out long stride)
    {
        GltfJson view = _views[index];
        stride = view.Count("byteStride", 0);
        if (stride > 252)
            throw view.Place.Child("byteStride").Fault(
                $"a stride of {stride} bytes is not allowed; 252 is the most");
        if (view.TryGetExtension(GltfNames.MeshoptCompression, out GltfJson compressed))
            return _decoded[index] ??= Decode(view, compressed);
        return Range(view);
    }

    private byte[] Decode(GltfJson view, GltfJson compressed)
    {
        byte[] content = MeshoptDecoder.Decode(compressed, Range(compressed).Span);
        if (content.Length != view.RequireCount("byteLength"))
            throw view.Place.Fault(
                $"the view tells {view.RequireCount("byteLength")} bytes, {content.Length} come out of it");
        _budget += (long)content.Length * BudgetPerInputByte;
        return content;
    }

    /// <summary>
    /// The bytes that a view, or what stands in for it, tells by buffer, offset and length.
    /// </summary>
    private ReadOnlyMemory<byte> Range(GltfJson view)
    {
        view.Require("buffer");
        int buffer = view.Index("buffer", _buffers.Length, "buffer");
        long offset = view.Count("byteOffset", 0);
        long length = view.RequireCount("byteLength");
        ReadOnlyMemory<byte> content = Buffer(buffer);
        if (offset > content.Length || length > content.Length - offset)
            throw view.Place.Fault(
                $"{length} bytes from byte {offset} do not fit into buffer {buffer} of {content.Length} "
                + "bytes");
        return content.Slice((int)offset, (int)length);
    }

    private ReadOnlyMemory<byte> Buffer(int index)
    {
        if (_contents[index] is ReadOnlyMemory<byte> known)
            return known;
        GltfJson buffer = _buffers[index];
        long length = buffer.RequireCount("byteLength");
        if (length > Array.MaxLength)
            throw buffer.Place.Child("byteLength").Fault(
                $"buffers of more than {Array.MaxLength} bytes are not supported");
        ReadOnlyMemory<byte> content = Fetch(index, buffer, length);
        if (content.Length < length)
            throw buffer.Place.Fault($"the buffer tells {length} bytes, {content.Length} are there");
        content = content[..(int)length];
        _contents[index] = content;
        _budget += length * BudgetPerInputByte;
        return content;
    }

    private ReadOnlyMemory<byte> Fetch(int index, GltfJson buffer, long length)
    {
        if (buffer.TryGet("uri", out GltfJson uri))
        {
            bool isData = uri.TryGetRawString(out ReadOnlySpan<byte> raw) ? GltfUri.IsData(raw)
                : GltfUri.IsData(uri.AsString());
            return isData ? GltfUri.DecodeData(uri, out _) : ReadFile(uri, length);
        }
        if (index == 0 && _binaryChunk is ReadOnlyMemory<byte> chunk)
            return chunk;
        throw buffer.Place.Fault("the buffer has no URI, and there is no binary chunk for it");
    }

    private byte[] ReadFile(GltfJson uri, long length)
    {
        string text = uri.AsString();
        if (GltfUri.HasScheme(text))
            throw uri.Place.Fault($"the buffer lies at '{text}'; only files beside the document are read");
        using Stream file = _context.OpenSideFile(GltfUri.ToFileName(text));
        if (file.CanSeek && file.Length < length)
            throw uri.Place.Fault($"the file '{text}' has {file.Length} bytes, the buffer tells {length}");
        if (file.CanSeek)
        {
            var content = new byte[length];
            file.ReadExactly(content);
            return content;
        }
        return _context.ReadAll(file);
    }
}
