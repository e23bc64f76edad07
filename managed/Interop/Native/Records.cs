using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>A Python object; opaque here, only ever passed by pointer.</summary>
internal struct PyObject
{
}

/// <summary>
/// A tagged argument. Value form: an open-typed argument, the kind tells the Python type. Reference form: a
/// managed handle or a Python object that an adapter stands for. The entry point knows from its signature
/// which one it gets.
/// </summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct VariantArg
{
    public int Kind;
    public int Reserved;
    public void* Payload;
}

/// <summary>The kinds of a <see cref="VariantArg"/> in its value form.</summary>
internal enum ValueKind
{
    None = 0,
    Object = 1,
    Struct = 2,
    String = 3,
    Buffer = 4,
    Boolean = 5,
    Integer = 6,
    Float = 7,
    Decimal = 8,
    DecimalTuple = 9,
    DateTime = 10,
    Date = 11,
    Time = 12,
    TimeDelta = 13,
    Guid = 14,
    List = 15,
    Tuple = 16,
}

/// <summary>The kinds of a <see cref="VariantArg"/> in its reference form.</summary>
internal enum ReferenceKind
{
    Object = 0,
    Struct = 1,

    /// <summary>A Python stream, list, iterator, iterable or sized iterable; borrowed.</summary>
    Python = 2,

    /// <summary>A Python sequence that is not a list; borrowed.</summary>
    Sequence = 3,
}

/// <summary>A string argument that points into the Python string. A length of -1 is a null string.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyStringArg
{
    /// <summary>Characters, not bytes.</summary>
    public int Length;

    /// <summary>Bytes a character: 1 (Latin-1), 2 (UCS-2) or 4 (UCS-4).</summary>
    public int CharSize;

    public void* Chars;
}

/// <summary>
/// A byte array argument that points into the exporter's buffer. A length of -1 is a null array.
/// </summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyBytesArg
{
    public int BufferHeld;
    public int Length;
    public byte* Bytes;
}

/// <summary>
/// A collection, stream or other result that may be a Python object coming back: kind 0 a reference, 1 a
/// value whose run-time type matters, 2 a borrowed Python object.
/// </summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyCollectionArg
{
    public int Kind;
    public int Reserved;
    public void* Handle;
    public long TypeKey;
}

/// <summary>An interface-typed result: the handle and the key of the run-time type.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PyObjectOutArg
{
    public void* Handle;
    public long TypeKey;
}

/// <summary>A version: the number of components that are given, -1 for a null version.</summary>
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct PySysVersionArg
{
    public int Count;
    public fixed int Parts[4];
}
