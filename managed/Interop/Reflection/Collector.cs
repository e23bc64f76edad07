using System;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>The garbage collector, as Python code may call it. A negative answer comes with a Python error.</summary>
internal static class Collector
{
    /// <summary>
    /// Collects what is unreachable, lets its finalizers run and gives the Python references back that they have
    /// queued.
    /// </summary>
    [UnmanagedCallersOnly]
    public static int Collect()
    {
        try
        {
            CollectWithFinalizers();
            PendingReleases.GiveBack();
            return 0;
        }
        catch (Exception e)
        {
            return Errors.Report(e, -1);
        }
    }

    /// <summary>How many handles native wrappers own.</summary>
    [UnmanagedCallersOnly]
    public static int CountLivingHandles() => Handles.Living;

    /// <summary>The bytes of the managed heap as they are, without a collection before.</summary>
    [UnmanagedCallersOnly]
    public static long GetTotalMemory() => GC.GetTotalMemory(forceFullCollection: false);

    /// <summary>
    /// Finalizers never touch Python, so waiting for them under Python's global lock cannot block. What they let go is
    /// collected by the second run. Not inlined, so that no local of the caller keeps anything alive.
    /// </summary>
    [MethodImpl(MethodImplOptions.NoInlining)]
    private static void CollectWithFinalizers()
    {
        GC.Collect();
        GC.WaitForPendingFinalizers();
        GC.Collect();
    }
}
