using System;
using System.Runtime.CompilerServices;
using System.Threading;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// Which threads may call Python: those that came from Python. They hold its global lock for the length of
/// the entry; a thread that managed code started, or the finalizer's, never does.
/// </summary>
internal static class PythonThread
{
    // The thread that entered last, by its number: all that most entries have to look at.
    private static int s_last;
    private static ThreadLocal<object?>? s_marks;

    /// <summary>
    /// Marks the calling thread as one of Python's, and gives back what finalizers have queued.
    /// </summary>
    public static void Enter()
    {
        int current = Environment.CurrentManagedThreadId;
        if (current != s_last)
        {
            Mark(current);
        }

        if (PendingReleases.Any)
        {
            PendingReleases.Drain();
        }
    }

    /// <summary>Refuses a thread that never came from Python.</summary>
    public static void Require()
    {
        if (Environment.CurrentManagedThreadId != s_last && s_marks?.Value == null)
        {
            throw new InvalidOperationException(
                "A Python object can be used only on a thread that called in from Python, during that call.");
        }
    }

    [MethodImpl(MethodImplOptions.NoInlining)]
    private static void Mark(int current)
    {
        s_marks ??= new ThreadLocal<object?>();
        s_marks.Value = s_marks;
        s_last = current;
    }
}

/// <summary>
/// Python references whose managed proxies are gone. Finalizers run on a thread that must not touch Python,
/// so they only queue; the next entry gives the references back under the global lock.
/// </summary>
internal static unsafe class PendingReleases
{
    private static readonly object s_lock = new();
    private static Waiting? s_first;
    private static volatile bool s_any;
    private static bool s_ended;

    /// <summary>Whether something waits.</summary>
    public static bool Any => s_any;

    /// <summary>Queues one owned reference; callable from any thread.</summary>
    public static void Add(PyObject* reference)
    {
        lock (s_lock)
        {
            if (!s_ended)
            {
                s_first = new Waiting(reference, s_first);
                s_any = true;
            }
        }
    }

    /// <summary>
    /// Gives the queued references back. Dropping one may run Python code that enters again.
    /// </summary>
    public static void Drain()
    {
        Waiting? waiting;
        lock (s_lock)
        {
            waiting = s_first;
            s_first = null;
            s_any = false;
        }

        for (; waiting != null; waiting = waiting.Next)
        {
            PyCallbacks.fn_xdec_ref(waiting.Reference);
        }
    }

    /// <summary>Python is ending: what waits is dropped, and nothing is queued any more.</summary>
    public static void End()
    {
        lock (s_lock)
        {
            s_ended = true;
            s_any = false;
            s_first = null;
        }
    }

    private sealed class Waiting
    {
        public Waiting(PyObject* reference, Waiting? next)
        {
            Reference = reference;
            Next = next;
        }

        public PyObject* Reference { get; }

        public Waiting? Next { get; }
    }
}
