using System;
using System.IO;
using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>Streams.</summary>
internal static unsafe partial class SiApiStream
{
    [UnmanagedCallersOnly]
    public static byte CanRead(void* self)
    {
        try
        {
            return ((Stream)Handles.Get(self)).CanRead ? (byte)1 : (byte)0;
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return default;
        }
    }

    [UnmanagedCallersOnly]
    public static byte CanSeek(void* self)
    {
        try
        {
            return ((Stream)Handles.Get(self)).CanSeek ? (byte)1 : (byte)0;
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return default;
        }
    }

    [UnmanagedCallersOnly]
    public static byte CanWrite(void* self)
    {
        try
        {
            return ((Stream)Handles.Get(self)).CanWrite ? (byte)1 : (byte)0;
        }
        catch (Exception e)
        {
            Errors.Report(e);
            return default;
        }
    }

    [UnmanagedCallersOnly]
    public static long Length(void* self)
    {
        try
        {
            return ((Stream)Handles.Get(self)).Length;
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static long Position(void* self)
    {
        try
        {
            return ((Stream)Handles.Get(self)).Position;
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static void Close(void* self)
    {
        try
        {
            ((Stream)Handles.Get(self)).Close();
        }
        catch (Exception e)
        {
            Errors.Report(e);
        }
    }

    [UnmanagedCallersOnly]
    public static void Flush(void* self)
    {
        try
        {
            ((Stream)Handles.Get(self)).Flush();
        }
        catch (Exception e)
        {
            Errors.Report(e);
        }
    }

    /// <summary>One read straight into the caller's memory; it may come back short.</summary>
    [UnmanagedCallersOnly]
    public static int Read(void* self, void* buffer, int count)
    {
        try
        {
            return ((Stream)Handles.Get(self)).Read(new Span<byte>(buffer, count));
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    /// <summary>The origins have the numbers of Python's.</summary>
    [UnmanagedCallersOnly]
    public static long Seek(void* self, long offset, int whence)
    {
        try
        {
            return ((Stream)Handles.Get(self)).Seek(offset, (SeekOrigin)whence);
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    /// <summary>
    /// Cuts or extends, at the position if the caller says so; the position stays, even beyond the new end.
    /// </summary>
    [UnmanagedCallersOnly]
    public static long SetLength(void* self, int usePosition, long size)
    {
        try
        {
            Stream stream = (Stream)Handles.Get(self);
            long position = stream.CanSeek ? stream.Position : 0;
            long length = usePosition != 0 ? stream.Position : size;
            stream.SetLength(length);
            if (stream.CanSeek && stream.Position != position)
            {
                stream.Position = position;
            }

            return length;
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    [UnmanagedCallersOnly]
    public static void Write(void* self, void* buffer, int count)
    {
        try
        {
            Stream stream = (Stream)Handles.Get(self);
            // Nothing written beyond the end is no reason to grow, though some streams take it for one.
            if (count != 0 || !stream.CanSeek || stream.Position <= stream.Length)
            {
                stream.Write(new ReadOnlySpan<byte>(buffer, count));
            }
        }
        catch (Exception e)
        {
            Errors.Report(e);
        }
    }
}
