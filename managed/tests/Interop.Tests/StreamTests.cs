using System;
using System.IO;
using System.Linq;
using Velbor.WrpGen.Interop;
using Xunit;

namespace WrpInterop.Tests;

public unsafe class StreamTests : InteropTest
{
    private readonly FakeFile _file = new();

    private PyStream Open() => new(FakePython.Borrow(_file));

    [Fact]
    public void Data_go_through_both_ways()
    {
        _file.Chunk = 3;
        PyStream stream = Open();
        stream.Write("0123456789"u8);
        stream.WriteByte((byte)'!');
        Assert.Equal(11, stream.Length);
        Assert.Equal(11, stream.Position);
        stream.Position = 0;
        byte[] data = new byte[11];
        stream.ReadExactly(data);
        Assert.Equal("0123456789!"u8.ToArray(), data);
        Assert.Equal(0, stream.Read(data));
        Assert.Equal(-1, stream.ReadByte());
        Assert.Equal(9, stream.Seek(-2, SeekOrigin.End));
        Assert.Equal('9', stream.ReadByte());
        stream.Flush();
    }

    [Fact]
    public void Every_failure_brings_the_text()
    {
        _file.Fails = true;
        PyStream stream = Open();
        byte[] data = new byte[4];
        Action[] operations =
        [
            () => stream.ReadExactly(data), () => stream.ReadByte(), () => stream.Write(data), () => stream.Flush(),
            () => stream.Seek(0, SeekOrigin.Begin), () => _ = stream.Position, () => _ = stream.Length,
            () => _ = stream.CanRead,
        ];
        foreach (Action operation in operations)
        {
            Assert.Equal("OSError: the disk is gone", Assert.Throws<PythonException>(operation).Message);
        }
    }

    [Fact]
    public void A_stream_that_cannot_seek_has_no_length()
    {
        _file.Seekable = false;
        PyStream stream = Open();
        Assert.False(stream.CanSeek);
        Assert.Throws<NotSupportedException>(() => stream.Length);
        _file.Closed = true;
        Assert.Throws<ObjectDisposedException>(() => stream.Length);
    }

    [Fact]
    public void Disposing_closes_the_file_once_and_ends_the_stream()
    {
        PyStream stream = Open();
        stream.Dispose();
        Assert.True(_file.Closed);
        _file.Closed = false;
        stream.Dispose();
        Assert.False(_file.Closed);
        Assert.False(stream.CanRead);
        Assert.Throws<ObjectDisposedException>(() => stream.ReadByte());
    }

    [Fact]
    public void A_stream_goes_back_as_its_file()
    {
        VariantArg record = new() { Kind = 2, Payload = FakePython.Borrow(_file) };
        Stream stream = In.Stream(&record)!;
        PyCollectionArg result = default;
        Out.Stream(stream, &result);
        Assert.Equal(2, result.Kind);
        Assert.Equal((nint)record.Payload, (nint)result.Handle);
    }

    [Fact]
    public void A_managed_stream_serves_pythons_protocol()
    {
        MemoryStream memory = new();
        With(memory, handle =>
        {
            void* self = (void*)handle;
            byte* data = stackalloc byte[8];
            delegate* unmanaged<void*, void*, int, void> write = &SiApiStream.Write;
            delegate* unmanaged<void*, void*, int, int> read = &SiApiStream.Read;
            delegate* unmanaged<void*, long, int, long> seek = &SiApiStream.Seek;
            delegate* unmanaged<void*, int, long, long> setLength = &SiApiStream.SetLength;
            delegate* unmanaged<void*, long> position = &SiApiStream.Position;
            delegate* unmanaged<void*, byte> canRead = &SiApiStream.CanRead;
            new Span<byte>(data, 8).Fill(7);
            write(self, data, 8);
            Assert.Equal(8, position(self));
            Assert.Equal(6, seek(self, -2, 2));
            Assert.Equal(2, read(self, data, 8));
            Assert.Equal(0, read(self, data, 0));
            Assert.Equal(3, seek(self, 3, 0));
            Assert.Equal(3, setLength(self, 1, 0));
            Assert.Equal(5, setLength(self, 0, 5));
            Assert.Equal(1, canRead(self));
            Assert.Equal(-1, seek(self, -100, 0));
            Assert.StartsWith("Proxy error(IOException)", FakePython.TakeError().Message);
            delegate* unmanaged<void*, void> close = &SiApiStream.Close;
            close(self);
            Assert.Equal(0, canRead(self));
            Assert.Equal(-1, position(self));
            Assert.StartsWith("Proxy error(ObjectDisposedException)", FakePython.TakeError().Message);
        });
    }
}
