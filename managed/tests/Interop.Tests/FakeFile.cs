using System;
using System.IO;
using System.Runtime.InteropServices;

namespace WrpInterop.Tests;

/// <summary>A Python file object of the fake: a memory stream that can be told to fail.</summary>
internal sealed unsafe class FakeFile
{
    public MemoryStream Data { get; } = new();

    public bool Closed { get; set; }

    public bool Fails { get; set; }

    public bool Seekable { get; set; } = true;

    /// <summary>The most bytes that one call moves.</summary>
    public int Chunk { get; set; } = int.MaxValue;

    /// <summary>The functions, in the order of their table.</summary>
    public static void** Table() => FakePython.Table(
        (delegate* unmanaged<void*, byte*, int, int>)&Write,
        (delegate* unmanaged<void*, int, int>)&WriteByte,
        (delegate* unmanaged<void*, byte*, int, int>)&Read,
        (delegate* unmanaged<void*, int>)&ReadByte,
        (delegate* unmanaged<void*, long, int, long>)&Seek,
        (delegate* unmanaged<void*, int>)&Flush,
        (delegate* unmanaged<void*, void>)&Close,
        (delegate* unmanaged<void*, int>)&Able,
        (delegate* unmanaged<void*, int>)&Able,
        (delegate* unmanaged<void*, int>)&IsSeekable,
        (delegate* unmanaged<void*, long>)&Tell,
        (delegate* unmanaged<void*, long>)&Length);

    private static FakeFile At(void* python) => (FakeFile)FakePython.Value(python)!;

    private static bool Failing(void* python)
    {
        if (At(python).Fails)
        {
            FakePython.Pending = ("OSError", "the disk is gone");
        }

        return At(python).Fails;
    }

    [UnmanagedCallersOnly]
    private static int Write(void* python, byte* data, int count)
    {
        if (Failing(python))
        {
            return -1;
        }

        int taken = Math.Min(count, At(python).Chunk);
        At(python).Data.Write(new ReadOnlySpan<byte>(data, taken));
        return taken;
    }

    [UnmanagedCallersOnly]
    private static int WriteByte(void* python, int value)
    {
        At(python).Data.WriteByte((byte)value);
        return 1;
    }

    [UnmanagedCallersOnly]
    private static int Read(void* python, byte* data, int count) =>
        Failing(python) ? -1 : At(python).Data.Read(new Span<byte>(data, Math.Min(count, At(python).Chunk)));

    [UnmanagedCallersOnly]
    private static int ReadByte(void* python) => Failing(python) ? -2 : At(python).Data.ReadByte();

    [UnmanagedCallersOnly]
    private static long Seek(void* python, long offset, int whence) =>
        Failing(python) ? -1 : At(python).Data.Seek(offset, (SeekOrigin)whence);

    [UnmanagedCallersOnly]
    private static int Flush(void* python) => Failing(python) ? -1 : 0;

    [UnmanagedCallersOnly]
    private static void Close(void* python) => At(python).Closed = true;

    [UnmanagedCallersOnly]
    private static int Able(void* python) => Failing(python) ? -1 : At(python).Closed ? 0 : 1;

    [UnmanagedCallersOnly]
    private static int IsSeekable(void* python) => At(python).Seekable ? 1 : 0;

    [UnmanagedCallersOnly]
    private static long Tell(void* python) => Failing(python) ? -1 : At(python).Data.Position;

    [UnmanagedCallersOnly]
    private static long Length(void* python) =>
        At(python).Closed ? -3 : At(python).Seekable ? Failing(python) ? -1 : At(python).Data.Length : -2;
}
