using System;
using Velbor.WrpGen.Interop;
using Xunit;

[assembly: CollectionBehavior(DisableTestParallelization = true)]

namespace WrpInterop.Tests;

/// <summary>Starts fake Python before each test; after it no handle may be left over.</summary>
public abstract class InteropTest : IDisposable
{
    private readonly int _living;
    private readonly long _refused;

    protected InteropTest()
    {
        FakePython.Start();
        _living = Handles.Living;
        _refused = Handles.RefusedFrees;
    }

    public void Dispose()
    {
        Assert.Equal(_living, Handles.Living);
        Assert.Equal(_refused, Handles.RefusedFrees);
        GC.SuppressFinalize(this);
    }

    /// <summary>Runs with a handle of the object, and frees it.</summary>
    internal static unsafe void With(object target, Action<nint> body)
    {
        void* handle = Handles.New(target);
        try
        {
            body((nint)handle);
        }
        finally
        {
            Handles.Free(handle);
        }
    }

    /// <summary>The object of a handle, which is freed.</summary>
    internal static unsafe object? TakeHandle(void* handle)
    {
        object? target = Handles.Unwrap(handle);
        Handles.Free(handle);
        return target;
    }
}
