using System;
using System.Collections;
using System.Runtime.CompilerServices;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// Values of open type: a Python object read by its kind, and a managed object made into a Python one.
/// </summary>
internal static unsafe class Variants
{
    /// <summary>The managed value of a record in its value form.</summary>
    public static object? Read(VariantArg* value)
    {
        PyObject* python = (PyObject*)value->Payload;
        switch ((ValueKind)value->Kind)
        {
            case ValueKind.None:
                return null;
            case ValueKind.Object:
            case ValueKind.Struct:
                return Handles.Unwrap(value->Payload);
            case ValueKind.String:
                return ReadString(python);
            case ValueKind.Buffer:
                return ReadBuffer(python);
            case ValueKind.Boolean:
                return PyCallbacks.fn_read_py_bool(python) != 0;
            case ValueKind.Integer:
                return ReadInteger(python);
            case ValueKind.Float:
                double real;
                Check(PyCallbacks.fn_read_py_double(python, &real));
                return real;
            case ValueKind.Decimal:
            case ValueKind.DecimalTuple:
                return ReadDecimal(python, (ValueKind)value->Kind);
            case ValueKind.DateTime:
            case ValueKind.Date:
            case ValueKind.Time:
                return ReadDateTime(python, (ValueKind)value->Kind);
            case ValueKind.TimeDelta:
                long ticks;
                Check(PyCallbacks.fn_read_py_datetimedelta(python, &ticks));
                return TimeSpan.FromTicks(ticks);
            case ValueKind.Guid:
                byte* bytes = stackalloc byte[16];
                PyCallbacks.fn_read_py_guid(python, bytes);
                Errors.CheckPending();
                return new Guid(new ReadOnlySpan<byte>(bytes, 16));
            case ValueKind.List:
                return new PyListProxy<object?>(python, Elements.Object);
            case ValueKind.Tuple:
                return new PySequenceProxy<object?>(python, Elements.Object);
            default:
                throw new ArgumentException($"A value of kind {value->Kind} is unknown.");
        }
    }

    /// <summary>
    /// Whether the value is read by methods of the Python object, which may do anything: decimals, dates, times and
    /// identifiers.
    /// </summary>
    public static bool ReadRunsPython(VariantArg* value) =>
        (ValueKind)value->Kind is >= ValueKind.Decimal and <= ValueKind.Guid;

    /// <summary>
    /// A new Python object for the value; null with the Python error pending when it cannot be made. A value
    /// that Python has no form and no wrapper for becomes its text.
    /// </summary>
    public static PyObject* Write(object? value)
    {
        switch (value)
        {
            case null:
                return PyCallbacks.fn_get_py_none();
            case IPythonBacked backed:
                PyCallbacks.fn_xinc_ref(backed.Python);
                return backed.Python;
            case string text:
                return Strings.Write(text);
            case Enum member:
                return WriteEnum(member);
            case bool or char or DateTime or sbyte or byte or short or ushort or int or uint or long or ulong:
            case float or double or decimal:
                return WriteScalar(value);
            case TimeSpan span:
                return PyCallbacks.fn_write_py_datetimedelta(span.Ticks);
            case DateTimeOffset moment:
                long* pair = stackalloc long[2];
                Ticks.FromDateTimeOffset(moment, pair);
                return PyCallbacks.fn_write_py_date_time_offset(pair);
            case Guid guid:
                byte* bytes = stackalloc byte[16];
                guid.TryWriteBytes(new Span<byte>(bytes, 16));
                return PyCallbacks.fn_write_py_guid(bytes);
            case byte[] array:
                return Out.Bytes(array);
            case Array array:
                return PyCallbacks.fn_clbk_olist_write_clr_array(Handles.New(array));
            case ArrayList list:
                return PyCallbacks.fn_clbk_olist_write_clr_arrlist(Handles.New(list));
            default:
                return WriteWrapped(value);
        }
    }

    private static PyObject* WriteScalar(object value) => value switch
    {
        bool truth => PyCallbacks.fn_write_py_bool(truth ? 1 : 0),
        char unit => PyCallbacks.fn_write_py_char(unit),
        sbyte number => PyCallbacks.fn_write_py_long(number),
        byte number => PyCallbacks.fn_write_py_long(number),
        short number => PyCallbacks.fn_write_py_long(number),
        ushort number => PyCallbacks.fn_write_py_long(number),
        int number => PyCallbacks.fn_write_py_long(number),
        uint number => PyCallbacks.fn_write_py_ulong(number),
        long number => PyCallbacks.fn_write_py_longlong(number),
        ulong number => PyCallbacks.fn_write_py_ulonglong(number),
        float number => PyCallbacks.fn_write_py_double(number),
        double number => PyCallbacks.fn_write_py_double(number),
        decimal number => WriteDecimal(number),
        DateTime moment => WriteDateTime(moment),
        _ => throw new ArgumentException($"'{value.GetType().FullName}' is no scalar.", nameof(value)),
    };

    /// <summary>Python has no callback for members of its own enum classes, so the number goes.</summary>
    private static PyObject* WriteEnum(Enum member) =>
        WriteScalar(((IConvertible)member).ToType(Enum.GetUnderlyingType(member.GetType()), null));

    /// <summary>
    /// A wrapper of the object's own type if there is one, else a list wrapper, else the text.
    /// </summary>
    private static PyObject* WriteWrapped(object value)
    {
        PyObject* wrapper = null;
        void* handle = Handles.New(StructHolders.Hold(value));
        switch (PyCallbacks.fn_try_write_py_tpo(handle, TypeKeys.Of(value), &wrapper))
        {
            case 1:
                return wrapper;
            case 0:
                return value is IList
                    ? PyCallbacks.fn_clbk_olist_write_clr_ilist(Handles.New(value))
                    : Strings.Write(Strings.Mend(value.ToString() ?? ""));
            default:
                return null;
        }
    }

    private static string? ReadString(PyObject* python)
    {
        PyStringArg text;
        Check(PyCallbacks.fn_read_py_string(python, &text));
        return Strings.Read(&text);
    }

    private static object ReadInteger(PyObject* python)
    {
        long bits;
        return PyCallbacks.fn_read_py_vers_long(python, &bits) switch
        {
            1 => (object)(int)bits,
            2 => (object)bits,
            3 => (object)(ulong)bits,
            _ => throw Errors.TakePending(),
        };
    }

    private static decimal ReadDecimal(PyObject* python, ValueKind kind)
    {
        uint* words = stackalloc uint[4];
        Check(kind == ValueKind.Decimal
            ? PyCallbacks.fn_read_py_decimal(python, words)
            : PyCallbacks.fn_read_py_decimal_tuple(python, words));
        return new decimal(new ReadOnlySpan<int>(words, 4));
    }

    private static object ReadDateTime(PyObject* python, ValueKind kind)
    {
        long* pair = stackalloc long[2];
        int status = kind switch
        {
            ValueKind.DateTime => PyCallbacks.fn_read_py_vers_datetime(python, pair),
            ValueKind.Date => PyCallbacks.fn_read_py_vers_date(python, pair),
            _ => PyCallbacks.fn_read_py_vers_time(python, pair),
        };
        // Boxed one by one: an expression over both would turn each date and time into one with an offset.
        return status switch
        {
            1 => (object)Ticks.ToDateTime(pair[0]),
            2 => (object)Ticks.ToDateTimeOffset(pair),
            _ => throw Errors.TakePending(),
        };
    }

    /// <summary>
    /// Borrows the exporter's buffer through memory of our own, since its record is Python's.
    /// </summary>
    private static byte[] ReadBuffer(PyObject* python)
    {
        int size = checked((int)PyCallbacks.fn_get_sizeof_py_byffer());
        void** storage = stackalloc void*[(size + sizeof(void*) - 1) / sizeof(void*)];
        PyCallbacks.fn_create_py_byffer(storage);
        PyBytesArg bytes = default;
        try
        {
            Check(PyCallbacks.fn_read_py_buffer_view(python, storage, &bytes));
            return new ReadOnlySpan<byte>(bytes.Bytes, bytes.Length).ToArray();
        }
        finally
        {
            if (bytes.BufferHeld != 0)
            {
                PyCallbacks.fn_release_py_buffer(storage);
            }
        }
    }

    private static PyObject* WriteDecimal(decimal value)
    {
        uint* words = stackalloc uint[4];
        decimal.GetBits(value, new Span<int>(words, 4));
        return PyCallbacks.fn_write_py_decimal(words);
    }

    private static PyObject* WriteDateTime(DateTime value)
    {
        long* pair = stackalloc long[2];
        Ticks.FromDateTime(value, pair);
        return PyCallbacks.fn_write_py_date_time(pair);
    }

    /// <summary>Read callbacks answer 1 for success and 0 with the Python error pending.</summary>
    [MethodImpl(MethodImplOptions.AggressiveInlining)]
    private static void Check(int status)
    {
        if (status == 0)
        {
            throw Errors.TakePending();
        }
    }
}
