using System;
using System.Reflection;
using Velbor.WrpGen.Interop;
using Xunit;

namespace WrpInterop.Tests;

public unsafe class ErrorTests : InteropTest
{
    [Fact]
    public void A_report_tells_the_type_and_all_messages()
    {
        Errors.Report(new InvalidOperationException("outer", new ArgumentException("inner")));
        Assert.Equal(
            ("RuntimeError", "Proxy error(InvalidOperationException): outer ---> ArgumentException: inner"),
            FakePython.TakeError());
        Assert.Equal(0, FakePython.References);
    }

    [Fact]
    public void All_of_several_exceptions_are_told()
    {
        string text = Errors.FullMessage(new AggregateException("all", new Exception("one"), new Exception("two")));
        Assert.Contains("one", text);
        Assert.Contains("two", text);
    }

    [Fact]
    public void What_reflection_wraps_is_told_as_itself()
    {
        Errors.Report(new TargetInvocationException(new FormatException("odd")));
        Assert.Equal("Proxy error(FormatException): odd", FakePython.TakeError().Message);
    }

    [Fact]
    public void A_message_that_python_cannot_hold_is_mended()
    {
        Errors.Report(new Exception("bad \ud800"));
        Assert.Equal("Proxy error(Exception): bad \ufffd", FakePython.TakeError().Message);
    }

    [Fact]
    public void A_pending_python_error_becomes_an_exception_with_its_text()
    {
        FakePython.Pending = ("KeyboardInterrupt", "stop");
        Assert.Equal("KeyboardInterrupt: stop", Errors.TakePending().Message);
        Assert.Null(FakePython.Pending);
        Assert.Equal(0, FakePython.References);
    }

    [Fact]
    public void A_failure_without_a_text_is_an_exception_all_the_same() =>
        Assert.NotEmpty(Errors.TakePending().Message);

    [Fact]
    public void A_python_exception_that_comes_back_is_reported_with_its_text()
    {
        FakePython.Pending = ("ValueError", "x");
        Errors.Report(Errors.TakePending());
        Assert.Equal("Proxy error(PythonException): ValueError: x", FakePython.TakeError().Message);
    }

    [Fact]
    public void An_exception_that_cannot_tell_its_text_is_reported_all_the_same()
    {
        Errors.Report(new Mute());
        Assert.Equal("Proxy error(Mute): <unknown>", FakePython.TakeError().Message);
        Assert.Equal(0, FakePython.References);
    }

    [Fact]
    public void An_entry_with_a_null_handle_reports_and_answers()
    {
        delegate* unmanaged<void*, int> hash = &ObjectHost.GetHashOfObj;
        Assert.Equal(0, hash(null));
        Assert.StartsWith("Proxy error(NullReferenceException)", FakePython.TakeError().Message);
        delegate* unmanaged<void*, void**, int> text = &ObjectHost.ToStringOfStc;
        void* result = null;
        Assert.Equal(0, text(null, &result));
        Assert.StartsWith("Proxy error(NullReferenceException)", FakePython.TakeError().Message);
    }

    [Fact]
    public void What_an_object_throws_is_reported()
    {
        With(new Thrower(), handle =>
        {
            delegate* unmanaged<void*, int> hash = &ObjectHost.GetHashOfObj;
            Assert.Equal(0, hash((void*)handle));
            Assert.Equal("Proxy error(DivideByZeroException): hash", FakePython.TakeError().Message);
            delegate* unmanaged<void*, void> dispose = &ObjectHost.Dispose;
            dispose((void*)handle);
            Assert.StartsWith("Proxy error(InvalidCastException)", FakePython.TakeError().Message);
        });
    }

    private sealed class Mute : Exception
    {
        public override string Message => throw new InvalidOperationException();
    }

    private sealed class Thrower
    {
        public override int GetHashCode() => throw new DivideByZeroException("hash");
    }
}
