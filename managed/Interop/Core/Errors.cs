using System;
using System.Reflection;
using System.Runtime.CompilerServices;
using System.Text;

namespace Velbor.WrpGen.Interop;

/// <summary>
/// A Python exception that ended a callback; the message is Python's own text of it, traceback included.
/// </summary>
internal sealed class PythonException : Exception
{
    public PythonException(string message)
        : base(message)
    {
    }
}

/// <summary>Carries exceptions over the boundary, in both directions.</summary>
internal static unsafe class Errors
{
    /// <summary>
    /// Turns a managed exception into the Python exception that the native caller finds pending. It runs where
    /// nothing may be thrown any more, so an exception that cannot tell its own text is reported without one.
    /// </summary>
    [MethodImpl(MethodImplOptions.NoInlining)]
    public static void Report(Exception error)
    {
        PyObject* kind = null;
        PyObject* message = null;
        try
        {
            Exception cause = error is TargetInvocationException { InnerException: { } inner } ? inner : error;
            kind = Text(cause.GetType().Name);
            message = Text(FullMessage(cause));
        }
        catch (Exception)
        {
            // The native side says "<unknown>" in the place of what is missing.
        }

        PyCallbacks.on_clr_exception(kind, message);
    }

    /// <summary>Reports the exception and gives the value that the entry point answers with.</summary>
    [MethodImpl(MethodImplOptions.NoInlining)]
    public static int Report(Exception error, int answer)
    {
        Report(error);
        return answer;
    }

    /// <summary>The exception that stands for the pending Python error, which is cleared.</summary>
    [MethodImpl(MethodImplOptions.NoInlining)]
    public static PythonException TakePending()
    {
        PyObject* owner = null;
        PyStringArg value = default;
        if (PyCallbacks.fn_catch_and_clear_py_error(&owner, &value) != 0)
        {
            return new PythonException("A Python callback failed and left no text.");
        }

        return Taken(owner, &value);
    }

    private static PythonException Taken(PyObject* owner, PyStringArg* value)
    {
        string text = Strings.Read(value) ?? "";
        PyCallbacks.fn_xdec_ref(owner);
        return new PythonException(text);
    }

    /// <summary>Throws when a Python error is pending, for a callback that has no status.</summary>
    public static void CheckPending()
    {
        PyObject* owner = null;
        PyStringArg value = default;
        if (PyCallbacks.fn_catch_and_clear_py_error(&owner, &value) == 0)
        {
            throw Taken(owner, &value);
        }
    }

    /// <summary>Throws when a callback's status says that a Python error is pending.</summary>
    public static void Check(int status)
    {
        if (status < 0)
        {
            throw TakePending();
        }
    }

    /// <summary>The message of an exception and of all that stand behind it.</summary>
    public static string FullMessage(Exception error)
    {
        StringBuilder text = new(error.Message);
        Append(text, error, 0);
        return text.ToString();
    }

    private static void Append(StringBuilder text, Exception error, int depth)
    {
        const int deepest = 32;
        if (depth == deepest)
        {
            return;
        }

        if (error is AggregateException several)
        {
            foreach (Exception one in several.InnerExceptions)
            {
                AppendOne(text, one, depth);
            }
        }
        else if (error.InnerException is { } inner)
        {
            AppendOne(text, inner, depth);
        }
    }

    private static void AppendOne(StringBuilder text, Exception error, int depth)
    {
        text.Append(" ---> ").Append(error.GetType().Name).Append(": ").Append(error.Message);
        Append(text, error, depth + 1);
    }

    /// <summary>
    /// A Python string for a report; a text that Python cannot hold is mended, and null is allowed.
    /// </summary>
    private static PyObject* Text(string text)
    {
        string whole = Strings.Mend(text);
        fixed (char* chars = whole)
        {
            return PyCallbacks.fn_conv_clr_string_to_py_unraisable(chars, whole.Length);
        }
    }
}
