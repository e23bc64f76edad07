using System;
using System.IO;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// A Python file object as a stream. Data go straight between Python and the caller's memory, which stays in
/// place for the length of the call. Disposing it closes the Python object; the finalizer only gives the
/// reference back.
/// </summary>
internal sealed unsafe class PyStream : Stream, IPythonBacked
{
    private const int NotSeekable = -2;
    private const int Closed = -3;

    // An object of its own: disposing a stream suppresses the stream's finalizer, and the reference must go
    // all the same.
    private readonly PyReference _reference;
    private bool _disposed;

    public PyStream(PyObject* python) => _reference = new PyReference(python);

    public PyObject* Python => _reference.Python;

    public override bool CanRead => !_disposed && Truth(PyCallbacks.fn_clbk_rawio_readable(Checked()));

    public override bool CanWrite => !_disposed && Truth(PyCallbacks.fn_clbk_rawio_writable(Checked()));

    public override bool CanSeek => !_disposed && Truth(PyCallbacks.fn_clbk_rawio_seekable(Checked()));

    public override long Length => PyCallbacks.fn_clbk_rawio_length(Open()) switch
    {
        -1 => throw Errors.TakePending(),
        NotSeekable => throw new NotSupportedException("The Python stream cannot seek, so it has no length."),
        Closed => throw new ObjectDisposedException(null, "The Python stream is closed."),
        long length => length,
    };

    public override long Position
    {
        get => Known(PyCallbacks.fn_clbk_rawio_tell(Open()));
        set => Seek(value, SeekOrigin.Begin);
    }

    public override int Read(byte[] buffer, int offset, int count)
    {
        ValidateBufferArguments(buffer, offset, count);
        return Read(buffer.AsSpan(offset, count));
    }

    public override int Read(Span<byte> buffer)
    {
        PyObject* stream = Open();
        if (buffer.Length == 0)
        {
            return 0;
        }

        fixed (byte* data = buffer)
        {
            int count = PyCallbacks.fn_clbk_rawio_read(stream, data, buffer.Length);
            return (uint)count <= (uint)buffer.Length ? count : throw BadCount(count, buffer.Length);
        }
    }

    public override int ReadByte() => PyCallbacks.fn_clbk_rawio_readbyte(Open()) switch
    {
        -2 => throw Errors.TakePending(),
        int value => value,
    };

    public override void Write(byte[] buffer, int offset, int count)
    {
        ValidateBufferArguments(buffer, offset, count);
        Write(buffer.AsSpan(offset, count));
    }

    public override void Write(ReadOnlySpan<byte> buffer)
    {
        PyObject* stream = Open();
        fixed (byte* data = buffer)
        {
            // A raw stream may take less than it is given; one that takes nothing would never end.
            for (int done = 0; done < buffer.Length;)
            {
                int count = PyCallbacks.fn_clbk_rawio_write(stream, data + done, buffer.Length - done);
                if (count <= 0 || count > buffer.Length - done)
                {
                    throw count == 0
                        ? new IOException("The Python stream takes no data now.")
                        : BadCount(count, buffer.Length - done);
                }

                done += count;
            }
        }
    }

    public override void WriteByte(byte value)
    {
        int count = PyCallbacks.fn_clbk_rawio_write_byte(Open(), value);
        if (count != 1)
        {
            throw count == 0 ? new IOException("The Python stream takes no data now.") : BadCount(count, 1);
        }
    }

    public override long Seek(long offset, SeekOrigin origin) =>
        Known(PyCallbacks.fn_clbk_rawio_seek(Open(), offset, (int)origin));

    public override void SetLength(long value) =>
        throw new NotSupportedException("The length of a Python stream cannot be set from here.");

    public override void Flush() => Errors.Check(PyCallbacks.fn_clbk_rawio_flush(Open()));

    protected override void Dispose(bool disposing)
    {
        if (disposing && !_disposed)
        {
            PyObject* stream = Checked();
            _disposed = true;
            PyCallbacks.fn_clbk_rawio_close(stream);
        }

        base.Dispose(disposing);
    }

    private PyObject* Checked() => _reference.Checked();

    private PyObject* Open()
    {
        ObjectDisposedException.ThrowIf(_disposed, this);
        return Checked();
    }

    private static bool Truth(int status) => status < 0 ? throw Errors.TakePending() : status != 0;

    private static long Known(long position) => position < 0 ? throw Errors.TakePending() : position;

    private static Exception BadCount(int count, int given) => count < 0
        ? Errors.TakePending()
        : new IOException($"The Python stream says {count} bytes where {given} were given.");
}
