using System;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;
using System.Threading;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// Which threads may call Python: those that Python knows. They hold its global lock for the length of an entry; a
/// thread that managed code started, or the finalizer's, never does.
/// </summary>
internal static unsafe class PythonThread
{
    private static delegate*<bool> s_isKnown;
    private static delegate* unmanaged[SuppressGCTransition]<void*> s_getThreadState;

    /// <summary>Refuses a thread that Python does not know.</summary>
    public static void Require()
    {
        if (s_isKnown == null)
        {
            FindPython();
        }

        if (!s_isKnown())
        {
            Refuse();
        }
    }

    /// <summary>Has another function tell what Python tells in its own process.</summary>
    public static void UseForTests(delegate*<bool> isKnown) => s_isKnown = isKnown;

    // The interpreter's functions are in the global scope of its process: the extension modules find them there too.
    [MethodImpl(MethodImplOptions.NoInlining)]
    private static void FindPython()
    {
        nint process = NativeLibrary.GetMainProgramHandle();
        s_getThreadState = (delegate* unmanaged[SuppressGCTransition]<void*>)NativeLibrary.GetExport(
            process, "PyGILState_GetThisThreadState");
        s_isKnown = &HasThreadState;
    }

    // No more than a look at a thread-local variable, so the collector need not be told of the call.
    private static bool HasThreadState() => s_getThreadState() != null;

    [MethodImpl(MethodImplOptions.NoInlining)]
    private static void Refuse() => throw new InvalidOperationException(
        "A Python object can be used only on a thread that called in from Python, during that call.");
}

/// <summary>
/// Python references whose managed proxies are gone. Finalizers run on a thread that must not touch Python, so they
/// only queue; a later entry gives the references back under the global lock. No lock is held: Python code that runs
/// while one is given back may enter again.
/// </summary>
internal static unsafe class PendingReleases
{
    private static Waiting? s_first;
    private static volatile bool s_ended;

    /// <summary>Whether something waits.</summary>
    public static bool Any => Volatile.Read(ref s_first) != null;

    /// <summary>Queues one owned reference; callable from any thread.</summary>
    public static void Add(PyObject* reference)
    {
        if (s_ended)
        {
            return;
        }

        Waiting waiting = new(reference);
        do
        {
            waiting.Next = s_first;
        }
        while (Interlocked.CompareExchange(ref s_first, waiting, waiting.Next) != waiting.Next);
    }

    /// <summary>Gives back what is queued; runs during an entry from Python.</summary>
    public static void GiveBack()
    {
        if (Any)
        {
            Drain();
        }
    }

    /// <summary>Python is ending: what waits is dropped, and nothing is queued any more.</summary>
    public static void End()
    {
        s_ended = true;
        s_first = null;
    }

    [MethodImpl(MethodImplOptions.NoInlining)]
    private static void Drain()
    {
        for (Waiting? waiting = Interlocked.Exchange(ref s_first, null); waiting != null; waiting = waiting.Next)
        {
            PyCallbacks.fn_xdec_ref(waiting.Reference);
        }
    }

    private sealed class Waiting
    {
        public Waiting(PyObject* reference) => Reference = reference;

        public PyObject* Reference { get; }

        public Waiting? Next { get; set; }
    }
}
