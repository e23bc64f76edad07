using System;
using System.Collections.Generic;
using System.Threading;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// Which threads may call Python: those that came from Python. They hold its global lock for the length of the entry;
/// a thread that managed code started, or the finalizer's, never does.
/// </summary>
internal static class PythonThread
{
    [ThreadStatic]
    private static bool t_entered;

    /// <summary>Marks the calling thread as one of Python's, and gives back what finalizers have queued.</summary>
    public static void Enter()
    {
        if (!t_entered)
        {
            t_entered = true;
        }

        if (PendingReleases.Any)
        {
            PendingReleases.Drain();
        }
    }

    /// <summary>Refuses a thread that never came from Python.</summary>
    public static void Require()
    {
        if (!t_entered)
        {
            throw new InvalidOperationException(
                "A Python object can be used only on a thread that called in from Python, during that call.");
        }
    }
}

/// <summary>
/// Python references whose managed proxies are gone. Finalizers run on a thread that must not touch Python, so they
/// only queue; the next entry gives the references back under the global lock.
/// </summary>
internal static unsafe class PendingReleases
{
    private static readonly Lock s_lock = new();
    private static List<nint> s_queue = [];
    private static volatile bool s_any;
    private static volatile bool s_ended;

    /// <summary>Whether something waits.</summary>
    public static bool Any => s_any;

    /// <summary>Queues one owned reference; callable from any thread.</summary>
    public static void Add(PyObject* reference)
    {
        lock (s_lock)
        {
            if (!s_ended)
            {
                s_queue.Add((nint)reference);
                s_any = true;
            }
        }
    }

    /// <summary>Gives the queued references back. Dropping one may run Python code that enters again.</summary>
    public static void Drain()
    {
        List<nint> waiting;
        lock (s_lock)
        {
            waiting = s_queue;
            s_queue = [];
            s_any = false;
        }

        foreach (nint reference in waiting)
        {
            PyCallbacks.fn_xdec_ref((PyObject*)reference);
        }
    }

    /// <summary>Python is ending: what waits is dropped, and nothing is queued any more.</summary>
    public static void End()
    {
        lock (s_lock)
        {
            s_ended = true;
            s_any = false;
            s_queue.Clear();
        }
    }
}
