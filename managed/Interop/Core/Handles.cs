using System;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// Owns every managed object that a native wrapper holds. A handle is the address of a slot with its lowest bit set,
/// and never null; whoever got it frees it once. A struct stands in a slot as a <see cref="StructHolder{T}"/>, so that
/// a setter changes it in place.
/// </summary>
/// <remarks>
/// Entries run one at a time under Python's global lock, so nothing is locked here. Slots stand in arrays that the
/// collector never moves and that live as long as the process: a handle that was freed leads to an empty slot. The bit
/// tells a handle from the address of a native record, which is always even.
/// </remarks>
internal static unsafe class Handles
{
    private const int FirstCapacity = 1024;
    private const int LargestCapacity = 65536;
    private const int Mark = 1;

    // No initialisers: nothing here may wait for a static constructor.
    private static int s_chunks;
    private static nint s_free;
    private static int s_living;
    private static long s_refusedFrees;

    /// <summary>How many handles are living. Tests compare it before and after.</summary>
    public static int Living => s_living;

    /// <summary>
    /// How many times a handle was freed that was not living: a defect of the caller, harmless here.
    /// </summary>
    public static long RefusedFrees => s_refusedFrees;

    /// <summary>A new handle of the object; the caller owns it.</summary>
    public static void* New(object target)
    {
        nint handle = s_free;
        if (handle == 0)
        {
            handle = Grow();
        }

        ref Slot slot = ref SlotOf((void*)handle);
        s_free = slot.Next;
        slot.Target = target;
        s_living++;
        return (void*)handle;
    }

    /// <summary>Whether this is a handle, null included, and not the address of a record.</summary>
    public static bool IsHandle(void* handleOrAddress) => handleOrAddress == null || IsMarked(handleOrAddress);

    /// <summary>The object behind a handle; a null or dead handle is an exception that says so.</summary>
    [MethodImpl(MethodImplOptions.AggressiveInlining)]
    public static object Get(void* handle)
    {
        if (IsMarked(handle))
        {
            object? target = SlotOf(handle).Target;
            if (target != null)
            {
                return target;
            }
        }

        return Fail(handle);
    }

    /// <summary>
    /// The same as an object of a known class. Most are of exactly that class, which one comparison tells; a cast
    /// answers for the others.
    /// </summary>
    [MethodImpl(MethodImplOptions.AggressiveInlining)]
    public static T Get<T>(void* handle)
        where T : class
    {
        object target = Get(handle);
        return target.GetType() == typeof(T) ? Unsafe.As<T>(target) : (T)target;
    }

    /// <summary>
    /// The same, to be called through an interface. Such a call asks the object's own class for the method and throws
    /// when it has none, so a cast beforehand would only ask twice.
    /// </summary>
    [MethodImpl(MethodImplOptions.AggressiveInlining)]
    public static T View<T>(void* handle)
        where T : class => Unsafe.As<T>(Get(handle));

    /// <summary>The object behind a handle, null for a null handle.</summary>
    public static object? GetOrNull(void* handle) => handle == null ? null : Get(handle);

    /// <summary>The object that a handle stands for, a struct boxed; null for a null handle.</summary>
    public static object? Unwrap(void* handle) =>
        GetOrNull(handle) is { } target ? target is StructHolder holder ? holder.Box() : target : null;

    /// <summary>Ends a handle. A null handle does nothing.</summary>
    public static void Free(void* handle)
    {
        if (handle == null)
        {
            return;
        }

        if (!IsMarked(handle) || SlotOf(handle).Target == null)
        {
            s_refusedFrees++;
            return;
        }

        ref Slot slot = ref SlotOf(handle);
        slot.Target = null;
        slot.Next = s_free;
        s_free = (nint)handle;
        s_living--;
    }

    private static bool IsMarked(void* handle) => ((nint)handle & Mark) != 0;

    private static ref Slot SlotOf(void* handle) => ref Unsafe.AsRef<Slot>((byte*)handle - Mark);

    [MethodImpl(MethodImplOptions.NoInlining)]
    private static object Fail(void* handle) => throw (handle == null
        ? new NullReferenceException("The wrapper has no managed object: its constructor has not succeeded.")
        : new ObjectDisposedException(null, "The handle is not, or no longer, one of a managed object."));

    /// <summary>Adds a chunk, as large as all before it within a limit; gives the first of its slots.</summary>
    [MethodImpl(MethodImplOptions.NoInlining)]
    private static nint Grow()
    {
        int capacity = Math.Min(FirstCapacity << Math.Min(s_chunks, 16), LargestCapacity);
        Slot[] chunk = new Slot[capacity];
        // Never disposed: it holds the chunk where it is. An array that is made pinned would wait for the JIT.
        _ = new PinnedGCHandle<Slot[]>(chunk);
        nint next = 0;
        for (int index = capacity - 1; index >= 0; index--)
        {
            chunk[index].Next = next;
            next = (nint)Unsafe.AsPointer(ref chunk[index]) + Mark;
        }

        s_chunks++;
        s_free = next;
        return next;
    }

    private struct Slot
    {
        public object? Target;

        /// <summary>The handle of the next free slot; meaningful while the slot is free, 0 at the end.</summary>
        public nint Next;
    }
}
