using System;
using System.Runtime.CompilerServices;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// Owns every managed object that a native wrapper holds. A handle is the index of a slot and never null;
/// whoever got it frees it once. A struct stands in a slot as a <see cref="StructHolder{T}"/>, so that a
/// setter changes it in place.
/// </summary>
/// <remarks>
/// Entries run one at a time under Python's global lock, so nothing is locked here. Handles stay below 2^31:
/// a native record's address never does, which lets an entry point that may get either tell them apart.
/// </remarks>
internal static unsafe class Handles
{
    private const int FirstCapacity = 1024;

    // No initialisers: the first handle makes the table, so reading it needs no check of a static
    // constructor.
    private static Slot[]? s_slots;
    private static int s_free;
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
        int index = s_free;
        if (index == 0)
        {
            index = Grow();
        }

        ref Slot slot = ref s_slots![index];
        s_free = slot.Next;
        slot.Target = target;
        s_living++;
        return (void*)(nint)index;
    }

    /// <summary>The object behind a handle; a null or dead handle is an exception that says so.</summary>
    public static object Get(void* handle)
    {
        Slot[]? slots = s_slots;
        if (slots != null && (nuint)handle < (nuint)slots.Length)
        {
            object? target = slots[(int)(nint)handle].Target;
            if (target != null)
            {
                return target;
            }
        }

        return Fail(handle);
    }

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

        Slot[]? slots = s_slots;
        if (slots == null || (nuint)handle >= (nuint)slots.Length || slots[(int)(nint)handle].Target == null)
        {
            s_refusedFrees++;
            return;
        }

        int index = (int)(nint)handle;
        slots[index].Target = null;
        slots[index].Next = s_free;
        s_free = index;
        s_living--;
    }

    [MethodImpl(MethodImplOptions.NoInlining)]
    private static object Fail(void* handle) => throw (handle == null
        ? new NullReferenceException("The wrapper has no managed object: its constructor has not succeeded.")
        : new ObjectDisposedException(null, "The handle is not, or no longer, one of a managed object."));

    /// <summary>Doubles the table, links the new slots and gives the first of them.</summary>
    [MethodImpl(MethodImplOptions.NoInlining)]
    private static int Grow()
    {
        int first = s_slots?.Length ?? 1;
        int capacity = s_slots == null ? FirstCapacity : checked(s_slots.Length * 2);
        Slot[] slots = new Slot[capacity];
        if (s_slots != null)
        {
            Array.Copy(s_slots, slots, s_slots.Length);
        }

        for (int index = first; index < capacity - 1; index++)
        {
            slots[index].Next = index + 1;
        }

        s_slots = slots;
        s_free = first;
        return first;
    }

    private struct Slot
    {
        public object? Target;

        /// <summary>The next free slot; meaningful while the slot is free, 0 at the end.</summary>
        public int Next;
    }
}
