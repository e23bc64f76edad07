using System;
using System.Collections.Generic;
using System.Linq;
using System.Numerics;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;
using Velbor.WrpGen.Interop;

namespace WrpInterop.Tests;

/// <summary>A tuple of fake Python: a sequence that is not a list.</summary>
internal sealed record PyTuple(object?[] Items);

/// <summary>A wrapper of fake Python around a managed handle.</summary>
internal sealed record PyWrapper(nint Handle, bool IsStruct, string TypeName);

/// <summary>A set of fake Python: it can be counted and walked.</summary>
internal sealed record PySet(object?[] Items);

/// <summary>An iterator of fake Python.</summary>
internal sealed class PyIterator(IEnumerator<object?> items)
{
    public IEnumerator<object?> Items { get; } = items;
}

/// <summary>What a fake Python operation raises.</summary>
internal sealed class PyError(string type, string message) : Exception(message)
{
    public string Type { get; } = type;
}

/// <summary>
/// Stands for Python: objects with reference counts, one pending error, and functions in the tables that the
/// interop layer reads by position. A list is a <see cref="List{T}"/> of plain values.
/// </summary>
internal static unsafe class FakePython
{
    private static readonly List<Entry?> s_objects = [null];
    private static bool s_installed;

    [ThreadStatic]
    private static bool s_isKnownThread;

    /// <summary>The pending error, as type and text.</summary>
    public static (string Type, string Message)? Pending { get; set; }

    /// <summary>The full names of types that have a wrapper.</summary>
    public static HashSet<string> Registered { get; } = [];

    /// <summary>How many references to fake objects are held.</summary>
    public static int References => s_objects.Sum(entry => entry?.References ?? 0);

    /// <summary>Installs the tables once and clears what earlier tests left.</summary>
    public static void Start()
    {
        if (!s_installed)
        {
            Install();
            s_installed = true;
            PythonThread.UseForTests(&IsKnownThread);
        }

        s_isKnownThread = true;

        // Proxies of earlier tests give their references back before the objects go.
        GC.Collect();
        GC.WaitForPendingFinalizers();
        PendingReleases.GiveBack();
        Pending = null;
        Registered.Clear();
        s_objects.Clear();
        s_objects.Add(null);
    }

    private static bool IsKnownThread() => s_isKnownThread;

    /// <summary>A new reference to a new object with that value.</summary>
    public static PyObject* New(object? value)
    {
        s_objects.Add(new Entry { Value = value, References = 1 });
        return (PyObject*)(nint)(s_objects.Count - 1);
    }

    /// <summary>A new reference to an item; a wrapper is the same object each time, as its handle tells.</summary>
    private static PyObject* Share(object? value)
    {
        int known = value is PyWrapper ? s_objects.FindIndex(entry => ReferenceEquals(entry?.Value, value)) : -1;
        if (known < 0)
        {
            return New(value);
        }

        s_objects[known]!.References++;
        return (PyObject*)(nint)known;
    }

    /// <summary>An object that somebody else keeps: no reference of it is counted.</summary>
    public static PyObject* Borrow(object? value)
    {
        PyObject* python = New(value);
        At(python).References = 0;
        return python;
    }

    public static object? Value(void* python) => At(python).Value;

    public static int ReferencesOf(void* python) => At(python).References;

    /// <summary>The value of an object, whose reference is given up.</summary>
    public static object? Take(void* python)
    {
        object? value = Value(python);
        Release(python);
        return value;
    }

    /// <summary>Runs before a reference is given up, as Python code may when an object ends.</summary>
    public static Action<nint>? OnRelease { get; set; }

    public static void Release(void* python)
    {
        OnRelease?.Invoke((nint)python);
        if (python != null && --At(python).References < 0)
        {
            throw new InvalidOperationException("A fake object was released once too often.");
        }
    }

    /// <summary>The record that the native side would make of a value of open type.</summary>
    public static VariantArg Record(object? value)
    {
        VariantArg record = default;
        if (!TryRecord(Borrow(value), &record))
        {
            throw new InvalidOperationException("That value is no variant.");
        }

        return record;
    }

    /// <summary>Takes the pending error, which must be there.</summary>
    public static (string Type, string Message) TakeError()
    {
        (string Type, string Message) error = Pending ?? throw new InvalidOperationException("No error is pending.");
        Pending = null;
        return error;
    }

    private static Entry At(void* python) =>
        s_objects[(int)(nint)python] ?? throw new InvalidOperationException("Null is no object.");

    private static bool TryRecord(PyObject* python, VariantArg* record)
    {
        object? value = Value(python);
        record->Payload = python;
        int? kind = value switch
        {
            null => 0,
            PyWrapper wrapper => wrapper.IsStruct ? 2 : 1,
            string => 3,
            byte[] => 4,
            bool => 5,
            int or long or ulong or BigInteger => 6,
            double => 7,
            decimal => 8,
            DateTime or DateTimeOffset => 10,
            DateOnly => 11,
            TimeOnly => 12,
            TimeSpan => 13,
            Guid => 14,
            List<object?> => 15,
            PyTuple => 16,
            _ => null,
        };
        if (kind is not { } known)
        {
            Pending = ("TypeError", "unknown variant type");
            return false;
        }

        record->Kind = known;
        if (value is PyWrapper held)
        {
            record->Payload = (void*)held.Handle;
        }

        return true;
    }

    /// <summary>Runs an operation; an error becomes the pending one and the answer that says so.</summary>
    private static int Status(Func<int> body, int failure = -1, int indexFailure = -2)
    {
        try
        {
            return body();
        }
        catch (PyError error)
        {
            Pending = (error.Type, error.Message);
            return error.Type == "IndexError" ? indexFailure : failure;
        }
    }

    private static object? ItemOf(IList<object?> items, int index) =>
        index >= 0 && index < items.Count ? items[index] : throw new PyError("IndexError", "list index out of range");

    private static List<object?> ListOf(void* python) => (List<object?>)Value(python)!;

    private static IList<object?> SequenceOf(void* python) => Value(python) switch
    {
        PyTuple tuple => tuple.Items,
        List<object?> list => list,
        _ => throw new PyError("TypeError", "object is no sequence"),
    };

    private static void* Allocate(ReadOnlySpan<byte> bytes)
    {
        // Freed by nobody: a few bytes a test run, as an interned string would be.
        void* memory = NativeMemory.Alloc((nuint)bytes.Length + 4);
        bytes.CopyTo(new Span<byte>(memory, bytes.Length));
        return memory;
    }

    private static void FillString(string text, PyStringArg* arg)
    {
        if (text.All(c => c < 256))
        {
            void* chars = Allocate([.. text.Select(c => (byte)c)]);
            *arg = new PyStringArg { Length = text.Length, CharSize = 1, Chars = chars };
        }
        else if (!text.Any(char.IsSurrogate))
        {
            void* chars = Allocate(MemoryMarshal.AsBytes(text.AsSpan()));
            *arg = new PyStringArg { Length = text.Length, CharSize = 2, Chars = chars };
        }
        else
        {
            uint[] points = [.. text.EnumerateRunes().Select(rune => (uint)rune.Value)];
            *arg = new PyStringArg
            {
                Length = points.Length,
                CharSize = 4,
                Chars = Allocate(MemoryMarshal.AsBytes(points.AsSpan())),
            };
        }
    }

    private static string Text(char* text, int length) => new(text, 0, length);

    private sealed class Entry
    {
        public object? Value;
        public int References;
    }

    // The functions, in the order of their tables
    // ------------------------------------------------------------------

    private static void Install()
    {
        PyCallbacks.SetExceptionCallback((delegate* unmanaged<void*, void*, void>)&OnException);
        PyCallbacks.SetCatchAndClearErrorCallback((delegate* unmanaged<void**, PyStringArg*, int>)&CatchAndClear);
        PyCallbacks.SetU16StrBuilderCallback((delegate* unmanaged<char*, int, void**>)&CreateU16Buffer);
        PyCallbacks.SetPyStrBuilderCallback((delegate* unmanaged<char*, int, void*>)&BuildString);
        PyCallbacks.SetPyUnraisableStrBuilderCallback((delegate* unmanaged<char*, int, void*>)&BuildUnraisable);
        PyCallbacks.SetPyBytesBuilderCallback((delegate* unmanaged<byte*, int, void*>)&BuildBytes);
        PyCallbacks.SetPyObjApiCallbacks(Table(
            (delegate* unmanaged<void*>)&GetNone,
            (delegate* unmanaged<void*, void>)&IncRef,
            (delegate* unmanaged<void*, void>)&DecRef));
        void** read = Table(
            (delegate* unmanaged<void*, PyStringArg*, int>)&ReadString,
            (delegate* unmanaged<void*, byte>)&ReadBool,
            (delegate* unmanaged<void*, long*, int>)&ReadLong,
            (delegate* unmanaged<void*, double*, int>)&ReadDouble,
            (delegate* unmanaged<void*, uint*, int>)&ReadDecimal,
            (delegate* unmanaged<void*, uint*, int>)&ReadDecimal,
            (delegate* unmanaged<void*, long*, int>)&ReadDateTime,
            (delegate* unmanaged<void*, long*, int>)&ReadDateTime,
            (delegate* unmanaged<void*, long*, int>)&ReadDateTime,
            (delegate* unmanaged<void*, long*, int>)&ReadTimeSpan,
            (delegate* unmanaged<void*, byte*, void>)&ReadGuid);
        void** write = Table(
            (delegate* unmanaged<void*, long, void*>)&WriteTpo,
            (delegate* unmanaged<int, void*>)&WriteBool,
            (delegate* unmanaged<int, void*>)&WriteLong,
            (delegate* unmanaged<uint, void*>)&WriteULong,
            (delegate* unmanaged<long, void*>)&WriteLongLong,
            (delegate* unmanaged<ulong, void*>)&WriteULongLong,
            (delegate* unmanaged<double, void*>)&WriteDouble,
            (delegate* unmanaged<int*, void*>)&WriteDecimal,
            (delegate* unmanaged<long*, void*>)&WriteDateTime,
            (delegate* unmanaged<long*, void*>)&WriteDateTimeOffset,
            (delegate* unmanaged<long, void*>)&WriteTimeSpan,
            (delegate* unmanaged<byte*, int, long, void*>)&WriteTimeZone,
            (delegate* unmanaged<byte*, void*>)&WriteGuid,
            (delegate* unmanaged<int, void*>)&WriteChar);
        void** buffer = Table(
            (delegate* unmanaged<nuint>)&BufferSize,
            (delegate* unmanaged<void*, void>)&CreateBuffer,
            (delegate* unmanaged<void*, void*, PyBytesArg*, int>)&ReadBuffer,
            (delegate* unmanaged<void*, void>)&ReleaseBuffer);
        void** tpo = Table((delegate* unmanaged<void*, long, void**, int>)&TryWriteTpo);
        void** iter = Table((delegate* unmanaged<void*, void**, VariantArg*, int>)&IterNext);
        void** ucol = Table(
            (delegate* unmanaged<void*, nint>)&SequenceLength,
            (delegate* unmanaged<void*, nint>)&SequenceLength,
            (delegate* unmanaged<void*, int, int>)&RemoveAt,
            (delegate* unmanaged<void*, int>)&Clear,
            (delegate* unmanaged<void*, nint>)&SequenceLength,
            (delegate* unmanaged<void*, nint>)&SequenceLength,
            (delegate* unmanaged<void*, void*>)&GetEnumerator,
            (delegate* unmanaged<void*, nint>)&SequenceLength,
            (delegate* unmanaged<void>)&NotUsed,
            (delegate* unmanaged<void>)&NotUsed,
            (delegate* unmanaged<void>)&NotUsed);
        void** olist = Table(
            (delegate* unmanaged<void*, int, VariantArg*, int>)&GetItem,
            (delegate* unmanaged<void*, int, void*, int>)&SetItem,
            (delegate* unmanaged<void*, void*, int>)&Add,
            (delegate* unmanaged<void*, int, void*, int>)&Insert,
            (delegate* unmanaged<void*, void*, int>)&Remove,
            (delegate* unmanaged<void*, void*, int>)&Contains,
            (delegate* unmanaged<void*, void*, int>)&IndexOf,
            (delegate* unmanaged<void>)&NotUsed,
            (delegate* unmanaged<void*, void*>)&WriteIList,
            (delegate* unmanaged<void*, void*>)&WriteArrayList,
            (delegate* unmanaged<void*, void*>)&WriteArray);
        void** oseq = Table(
            (delegate* unmanaged<void*, int, VariantArg*, int>)&GetSequenceItem,
            (delegate* unmanaged<void*, void*, int>)&Contains,
            (delegate* unmanaged<void*, void*, int>)&IndexOf);
        PyCallbacks.SetPyStaticCallbacks(
            (void***)Table(read, write, buffer, tpo, iter, ucol, olist, oseq, FakeFile.Table()));

        // Places 8 and 20 of the generic tables: lists and sequences of doubles; 13 and 24: of strings; 10
        // and 22: of 32-bit integers.
        void*** generic = (void***)NativeMemory.AllocZeroed(27, (nuint)sizeof(void*));
        generic[8] = Table((delegate* unmanaged<void*, int, double*, int>)&ListDouble);
        generic[20] = Table((delegate* unmanaged<void*, int, void**, double*, int>)&SequenceDouble);
        generic[10] = Table((delegate* unmanaged<void*, int, int*, int>)&ListInt);
        generic[22] = Table((delegate* unmanaged<void*, int, void**, int*, int>)&SequenceInt);
        generic[13] = Table((delegate* unmanaged<void*, int, PyStringArg*, int>)&ListString);
        generic[24] = Table((delegate* unmanaged<void*, int, void**, PyStringArg*, int>)&SequenceString);
        GenericCallbacks.SetTables(generic);
    }

    public static void** Table(params void*[] slots)
    {
        void** table = (void**)NativeMemory.Alloc((nuint)slots.Length, (nuint)sizeof(void*));
        for (int index = 0; index < slots.Length; index++)
        {
            table[index] = slots[index];
        }

        return table;
    }

    [UnmanagedCallersOnly]
    private static void NotUsed() => Environment.FailFast("A callback was called that the tests do not expect.");

    [UnmanagedCallersOnly]
    private static void OnException(void* kind, void* message)
    {
        string Told(void* python) => python == null ? "<unknown>" : (string)Take(python)!;
        Pending = ("RuntimeError", $"Proxy error({Told(kind)}): {Told(message)}");
    }

    [UnmanagedCallersOnly]
    private static int CatchAndClear(void** text, PyStringArg* value)
    {
        if (Pending is not { } error)
        {
            return -1;
        }

        Pending = null;
        string told = $"{error.Type}: {error.Message}";
        FillString(told, value);
        *text = New(told);
        return 0;
    }

    [UnmanagedCallersOnly]
    private static void** CreateU16Buffer(char* text, int length)
    {
        void** holder = (void**)NativeMemory.Alloc((nuint)sizeof(void*));
        *holder = New(Text(text, length));
        return holder;
    }

    [UnmanagedCallersOnly]
    private static void* BuildString(char* text, int length)
    {
        string told = Text(text, length);
        for (int at = 0; at < told.Length; at++)
        {
            if (char.IsSurrogate(told[at]) && !(at + 1 < told.Length && char.IsSurrogatePair(told[at], told[++at])))
            {
                Pending = ("UnicodeDecodeError", "unpaired surrogate");
                return null;
            }
        }

        return New(told);
    }

    [UnmanagedCallersOnly]
    private static void* BuildUnraisable(char* text, int length) => New(Text(text, length));

    [UnmanagedCallersOnly]
    private static void* BuildBytes(byte* bytes, int length) => New(new ReadOnlySpan<byte>(bytes, length).ToArray());

    [UnmanagedCallersOnly]
    private static void* GetNone() => New(null);

    [UnmanagedCallersOnly]
    private static void IncRef(void* python)
    {
        if (python != null)
        {
            At(python).References++;
        }
    }

    [UnmanagedCallersOnly]
    private static void DecRef(void* python) => Release(python);

    [UnmanagedCallersOnly]
    private static int ReadString(void* python, PyStringArg* arg)
    {
        FillString((string)Value(python)!, arg);
        return 1;
    }

    [UnmanagedCallersOnly]
    private static byte ReadBool(void* python) => (bool)Value(python)! ? (byte)1 : (byte)0;

    [UnmanagedCallersOnly]
    private static int ReadLong(void* python, long* result)
    {
        BigInteger number = Value(python) switch
        {
            int value => value,
            long value => value,
            ulong value => value,
            BigInteger value => value,
            _ => throw new InvalidOperationException(),
        };
        if (number >= long.MinValue && number <= ulong.MaxValue)
        {
            *result = number > long.MaxValue ? (long)(ulong)number : (long)number;
            return number >= int.MinValue && number <= int.MaxValue ? 1 : number <= long.MaxValue ? 2 : 3;
        }

        Pending = ("TypeError", "can't build integer value from 'int'");
        return 0;
    }

    [UnmanagedCallersOnly]
    private static int ReadDouble(void* python, double* result)
    {
        *result = (double)Value(python)!;
        return 1;
    }

    [UnmanagedCallersOnly]
    private static int ReadDecimal(void* python, uint* words)
    {
        decimal.GetBits((decimal)Value(python)!, new Span<int>(words, 4));
        return 1;
    }

    [UnmanagedCallersOnly]
    private static int ReadDateTime(void* python, long* pair)
    {
        switch (Value(python))
        {
            case DateTime moment:
                pair[0] = (long)((ulong)moment.Ticks | ((ulong)moment.Kind << 62));
                return 1;
            case DateTimeOffset moment:
                pair[0] = moment.Ticks;
                pair[1] = moment.Offset.Ticks;
                return 2;
            case DateOnly day:
                pair[0] = day.ToDateTime(default).Ticks;
                return 1;
            case TimeOnly time:
                pair[0] = time.Ticks;
                return 1;
            default:
                Pending = ("OverflowError", "value too large or too small for .Net DateTime");
                return 0;
        }
    }

    [UnmanagedCallersOnly]
    private static int ReadTimeSpan(void* python, long* ticks)
    {
        *ticks = ((TimeSpan)Value(python)!).Ticks;
        return 1;
    }

    [UnmanagedCallersOnly]
    private static void ReadGuid(void* python, byte* bytes) =>
        ((Guid)Value(python)!).TryWriteBytes(new Span<byte>(bytes, 16));

    private static string? NameOf(nint handle) => Handles.Get((void*)handle) is { } target
        ? TypeNames.Of(target is StructHolder holder ? holder.StructType : target.GetType())
        : null;

    private static void* Wrap(void* handle, string type) =>
        New(new PyWrapper((nint)handle, Handles.Get(handle) is StructHolder, type));

    [UnmanagedCallersOnly]
    private static void* WriteTpo(void* handle, long key)
    {
        string name = NameOf((nint)handle)!;
        if (Registered.Contains(name))
        {
            return Wrap(handle, name);
        }

        Handles.Free(handle);
        Pending = ("TypeError", "unknown wrapper type");
        return null;
    }

    [UnmanagedCallersOnly]
    private static int TryWriteTpo(void* handle, long key, void** result)
    {
        string name = NameOf((nint)handle)!;
        if (!Registered.Contains(name))
        {
            Handles.Free(handle);
            return 0;
        }

        *result = Wrap(handle, name);
        return 1;
    }

    [UnmanagedCallersOnly]
    private static void* WriteBool(int value) => New((byte)value != 0);

    [UnmanagedCallersOnly]
    private static void* WriteLong(int value) => New(value);

    [UnmanagedCallersOnly]
    private static void* WriteULong(uint value) => New((long)value);

    [UnmanagedCallersOnly]
    private static void* WriteLongLong(long value) => New(value);

    [UnmanagedCallersOnly]
    private static void* WriteULongLong(ulong value) => New(value);

    [UnmanagedCallersOnly]
    private static void* WriteDouble(double value) => New(value);

    [UnmanagedCallersOnly]
    private static void* WriteDecimal(int* words) => New(new decimal(new ReadOnlySpan<int>(words, 4)));

    [UnmanagedCallersOnly]
    private static void* WriteDateTime(long* pair) => New(Ticks.ToDateTime(pair[0]));

    [UnmanagedCallersOnly]
    private static void* WriteDateTimeOffset(long* pair) => New(Ticks.ToDateTimeOffset(pair));

    [UnmanagedCallersOnly]
    private static void* WriteTimeSpan(long ticks) => New(TimeSpan.FromTicks(ticks));

    [UnmanagedCallersOnly]
    private static void* WriteTimeZone(byte* name, int units, long ticks) => New(TimeSpan.FromTicks(ticks));

    [UnmanagedCallersOnly]
    private static void* WriteGuid(byte* bytes) => New(new Guid(new ReadOnlySpan<byte>(bytes, 16)));

    [UnmanagedCallersOnly]
    private static void* WriteChar(int unit) => New(((char)unit).ToString());

    [UnmanagedCallersOnly]
    private static nuint BufferSize() => 80;

    [UnmanagedCallersOnly]
    private static void CreateBuffer(void* storage) => NativeMemory.Clear(storage, 80);

    [UnmanagedCallersOnly]
    private static int ReadBuffer(void* python, void* storage, PyBytesArg* result)
    {
        byte[] bytes = (byte[])Value(python)!;
        *(void**)storage = python;
        At(python).References++;
        *result = new PyBytesArg { BufferHeld = 1, Length = bytes.Length, Bytes = (byte*)Allocate(bytes) };
        return 1;
    }

    [UnmanagedCallersOnly]
    private static void ReleaseBuffer(void* storage) => Release(*(void**)storage);

    [UnmanagedCallersOnly]
    private static int IterNext(void* iterator, void** item, VariantArg* record)
    {
        void* owned = null;
        nint made = (nint)record;
        int status = Status(
            () =>
            {
                IEnumerator<object?> items = ((PyIterator)Value(iterator)!).Items;
                if (!items.MoveNext())
                {
                    return 1;
                }

                owned = Share(items.Current);
                return TryRecord((PyObject*)owned, (VariantArg*)made) ? 0 : 2;
            },
            2,
            2);
        *item = owned;
        return status;
    }

    [UnmanagedCallersOnly]
    private static nint SequenceLength(void* python) =>
        Value(python) is PySet set ? set.Items.Length : Status(() => SequenceOf(python).Count);

    [UnmanagedCallersOnly]
    private static int RemoveAt(void* list, int index) => Status(() =>
    {
        ItemOf(ListOf(list), index);
        ListOf(list).RemoveAt(index);
        return 0;
    });

    [UnmanagedCallersOnly]
    private static int Clear(void* list)
    {
        ListOf(list).Clear();
        return 0;
    }

    [UnmanagedCallersOnly]
    private static void* GetEnumerator(void* python)
    {
        IEnumerable<object?>? items = Value(python) switch
        {
            PySet set => set.Items,
            PyTuple tuple => tuple.Items,
            List<object?> list => list,
            IEnumerable<object?> own => own,
            _ => null,
        };
        if (items == null)
        {
            Pending = ("TypeError", "No iterator in 'object'");
            return null;
        }

        return New(new PyIterator(items.GetEnumerator()));
    }

    [UnmanagedCallersOnly]
    private static int GetItem(void* sequence, int index, VariantArg* record)
    {
        nint made = (nint)record;
        return Status(() => TryRecord(Borrow(ItemOf(SequenceOf(sequence), index)), (VariantArg*)made) ? 0 : -1);
    }

    /// <summary>Leaves a reference to the item to the reader.</summary>
    [UnmanagedCallersOnly]
    private static int GetSequenceItem(void* sequence, int index, VariantArg* record)
    {
        nint made = (nint)record;
        return Status(() =>
        {
            PyObject* item = Share(ItemOf(SequenceOf(sequence), index));
            if (TryRecord(item, (VariantArg*)made))
            {
                return 0;
            }

            Release(item);
            return -1;
        });
    }

    [UnmanagedCallersOnly]
    private static int SetItem(void* list, int index, void* value)
    {
        object? taken = Take(value);
        return Status(() =>
        {
            ItemOf(ListOf(list), index);
            ListOf(list)[index] = taken;
            return 0;
        });
    }

    [UnmanagedCallersOnly]
    private static int Add(void* list, void* value)
    {
        ListOf(list).Add(Take(value));
        return ListOf(list).Count;
    }

    [UnmanagedCallersOnly]
    private static int Insert(void* list, int index, void* value)
    {
        ListOf(list).Insert(Math.Clamp(index, 0, ListOf(list).Count), Take(value));
        return 0;
    }

    [UnmanagedCallersOnly]
    private static int Remove(void* list, void* value) => ListOf(list).Remove(Take(value)) ? 0 : -1;

    [UnmanagedCallersOnly]
    private static int Contains(void* sequence, void* value) => SequenceOf(sequence).Contains(Take(value)) ? 1 : 0;

    [UnmanagedCallersOnly]
    private static int IndexOf(void* sequence, void* value) => SequenceOf(sequence).IndexOf(Take(value));

    [UnmanagedCallersOnly]
    private static void* WriteIList(void* handle) => Wrap(handle, "_IListWrapper");

    [UnmanagedCallersOnly]
    private static void* WriteArrayList(void* handle) => Wrap(handle, "_ArrListWrapper");

    [UnmanagedCallersOnly]
    private static void* WriteArray(void* handle) => Wrap(handle, "_ArrayWrapper");

    private static T Typed<T>(object? item, string name) =>
        item is T value ? value : throw new PyError("TypeError", $"can't build '{name}' from 'object'");

    [UnmanagedCallersOnly]
    private static int ListDouble(void* list, int index, double* value)
    {
        nint made = (nint)value;
        return Status(() =>
        {
            *(double*)made = Typed<double>(ItemOf(ListOf(list), index), "Double");
            return 0;
        });
    }

    [UnmanagedCallersOnly]
    private static int SequenceDouble(void* list, int index, void** keeper, double* value)
    {
        nint made = (nint)value;
        int status = Status(() =>
        {
            *(double*)made = Typed<double>(ItemOf(SequenceOf(list), index), "Double");
            return 0;
        });
        *keeper = status == 0 ? New(null) : null;
        return status;
    }

    [UnmanagedCallersOnly]
    private static int ListInt(void* list, int index, int* value)
    {
        nint made = (nint)value;
        return Status(() =>
        {
            *(int*)made = Typed<int>(ItemOf(ListOf(list), index), "Int32");
            return 0;
        });
    }

    [UnmanagedCallersOnly]
    private static int SequenceInt(void* list, int index, void** keeper, int* value)
    {
        nint made = (nint)value;
        int status = Status(() =>
        {
            *(int*)made = Typed<int>(ItemOf(SequenceOf(list), index), "Int32");
            return 0;
        });
        *keeper = status == 0 ? New(null) : null;
        return status;
    }

    [UnmanagedCallersOnly]
    private static int ListString(void* list, int index, PyStringArg* value)
    {
        nint made = (nint)value;
        return Status(() => FillTyped(ItemOf(ListOf(list), index), (PyStringArg*)made));
    }

    [UnmanagedCallersOnly]
    private static int SequenceString(void* list, int index, void** keeper, PyStringArg* value)
    {
        nint made = (nint)value;
        int status = Status(() => FillTyped(ItemOf(SequenceOf(list), index), (PyStringArg*)made));
        *keeper = status == 0 ? New(null) : null;
        return status;
    }

    private static int FillTyped(object? item, PyStringArg* value)
    {
        if (item == null)
        {
            value->Length = -1;
        }
        else
        {
            FillString(Typed<string>(item, "String"), value);
        }

        return 0;
    }
}
