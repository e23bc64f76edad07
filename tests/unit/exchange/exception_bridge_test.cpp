#include "exchange/exception_bridge.h"

#include "python_fixture.h"

namespace {

class ExceptionBridge : public ::testing::Test {
protected:
    void SetUp() override {
        run("import sys, traceback\n"
            "unraisable = []\n"
            "sys.unraisablehook = lambda u: unraisable.append((u.exc_type.__name__, str(u.exc_value), "
            "u.object))\n");
    }

    void TearDown() override {
        EXPECT_EQ(PyErr_Occurred(), nullptr);
        run("import sys, importlib\nsys.modules.pop('traceback', None)\nimport traceback\n");
    }

    /// Raises in Python and gives what the managed side would see; null when nothing was made.
    PyRef catch_raised(const char* statement) {
        run((std::string("def fail():\n    ") + statement + "\n").c_str());
        const PyRef fail = eval("fail");
        EXPECT_FALSE(PyRef::steal(PyObject_CallNoArgs(fail.get())));
        return catch_pending();
    }

    PyRef catch_pending() {
        PyObject* text = nullptr;
        value = {};
        const int result = fn_catch_and_clear_py_error(&text, &value);
        EXPECT_EQ(PyErr_Occurred(), nullptr);
        EXPECT_EQ(result, text != nullptr ? 0 : -1);
        if (text != nullptr) {
            EXPECT_EQ(value.chars, PyUnicode_DATA(text));
            EXPECT_EQ(value.length, PyUnicode_GET_LENGTH(text));
        }
        return PyRef::steal(text);
    }

    std::string unraisable() { return repr_of(eval("unraisable").get()); }

    PyStringArg value;
};

TEST_F(ExceptionBridge, ManagedExceptionIsARuntimeError) {
    const PyRef kind = eval("'System.Kind' + str(1)");
    const PyRef message = eval("'text' + str(2)");
    const SameReferences same_kind(kind.get()), same_message(message.get());
    on_clr_exception(fn_new_ref(kind.get()), fn_new_ref(message.get()));
    EXPECT_EQ(take_error(), "RuntimeError: Proxy error(System.Kind1): text2");
}

TEST_F(ExceptionBridge, NullTextsReadAsUnknown) {
    const SameReferences same(PyWrpIdTraceBack_Unknown);
    on_clr_exception(nullptr, nullptr);
    EXPECT_EQ(take_error(), "RuntimeError: Proxy error(<unknown>): <unknown>");
    const PyRef message = eval("'text' + str(2)");
    on_clr_exception(nullptr, fn_new_ref(message.get()));
    EXPECT_EQ(take_error(), "RuntimeError: Proxy error(<unknown>): text2");
}

TEST_F(ExceptionBridge, NothingPendingMakesNothing) {
    PyObject* text = Py_None;
    EXPECT_EQ(fn_catch_and_clear_py_error(&text, &value), -1);
    EXPECT_EQ(text, Py_None);
    EXPECT_EQ(value.length, -1);
}

TEST_F(ExceptionBridge, FullFormIsThatOfTheTracebackModule) {
    run("def fail():\n    raise ValueError('x')\n"
        "try:\n    fail()\nexcept ValueError as e:\n"
        "    expected = ''.join(traceback.format_exception(type(e), e, e.__traceback__.tb_next))\n");
    const PyRef fail = eval("fail");
    const PyRef expected = eval("expected");
    EXPECT_FALSE(PyRef::steal(PyObject_CallNoArgs(fail.get())));
    EXPECT_EQ(text_of(catch_pending().get()), text_of(expected.get()));
    EXPECT_EQ(unraisable(), "[]");
}

TEST_F(ExceptionBridge, WithoutTracebackTheExceptionAlone) {
    PyErr_SetString(PyExc_ValueError, "x");
    EXPECT_EQ(text_of(catch_pending().get()), "ValueError: x\n");
}

TEST_F(ExceptionBridge, NothingKeepsTheException) {
    const PyRef error = eval("ValueError('kept by the test')");
    const SameReferences same(error.get());
    PyErr_SetObject(PyExc_ValueError, error.get());
    EXPECT_TRUE(catch_pending());
}

TEST_F(ExceptionBridge, TracebackModuleThatCannotBeImported) {
    run("sys.modules['traceback'] = None");
    EXPECT_EQ(text_of(catch_raised("raise ValueError('x')").get()), "ValueError: x");
    EXPECT_EQ(unraisable(),
              "[('ModuleNotFoundError', 'import of traceback halted; None in sys.modules', "
              "'FormatCallbackException')]");
}

TEST_F(ExceptionBridge, TracebackModuleThatDoesNotAnswerAsExpected) {
    struct Row {
        const char* module;
        const char* unraisable;
    };
    for (const Row& row : {
             Row{"object()", "AttributeError"},
             Row{"type('M', (), {'format_exception': 1})()", "TypeError"},
             Row{"type('M', (), {'format_exception': staticmethod(lambda *a: 1 / 0)})()",
                 "ZeroDivisionError"},
             Row{"type('M', (), {'format_exception': staticmethod(lambda *a: [1])})()", "TypeError"},
         }) {
        run((std::string("unraisable.clear()\nsys.modules['traceback'] = ") + row.module).c_str());
        EXPECT_EQ(text_of(catch_raised("raise KeyError('x')").get()), "KeyError: 'x'");
        EXPECT_EQ(text_of(eval("[u[0] for u in unraisable]").get()),
                  "['" + std::string(row.unraisable) + "']");
    }
}

TEST_F(ExceptionBridge, QualifiedNameThatIsNoText) {
    run("sys.modules['traceback'] = None\n"
        "class Meta(type):\n"
        "    __getattribute__ = lambda cls, name: 5 if name == '__qualname__' else "
        "type.__getattribute__(cls, name)\n"
        "    __str__ = lambda cls: 'shown'\n"
        "class Odd(Exception, metaclass=Meta):\n    pass\n");
    EXPECT_EQ(text_of(catch_raised("raise Odd('x')").get()), "shown: x");
}

TEST_F(ExceptionBridge, ClassWithoutAnyName) {
    run("sys.modules['traceback'] = None\n"
        "class Meta(type):\n"
        "    __getattribute__ = lambda cls, name: 5 if name == '__qualname__' else "
        "type.__getattribute__(cls, name)\n"
        "    __str__ = lambda cls: 1 / 0\n"
        "class Odd(Exception, metaclass=Meta):\n    pass\n");
    EXPECT_FALSE(catch_raised("raise Odd('x')"));
    // The newer error wins over the one kept aside.
    EXPECT_EQ(unraisable(), "[('ZeroDivisionError', 'division by zero', 'FormatCallbackException')]");
}

TEST_F(ExceptionBridge, MessageThatCannotBeHad) {
    run("sys.modules['traceback'] = None\n"
        "class Odd(Exception):\n    def __str__(self):\n        raise LookupError('no message')\n");
    EXPECT_FALSE(catch_raised("raise Odd()"));
    EXPECT_EQ(unraisable(), "[('LookupError', 'no message', 'FormatCallbackException')]");
}

TEST_F(ExceptionBridge, TextForAReportIsDecoded) {
    const PyRef text = PyRef::steal(fn_conv_clr_string_to_py_unraisable(u"a\u00e9\U0001F600", 4));
    EXPECT_EQ(text_of(text.get()), "a\u00e9\U0001F600");
}

TEST_F(ExceptionBridge, TextForAReportThatCannotBeDecodedIsUnraisable) {
    const char16_t lone[] = {0xD800};
    EXPECT_EQ(fn_conv_clr_string_to_py_unraisable(lone, 1), nullptr);
    EXPECT_EQ(text_of(eval("[u[2] for u in unraisable]").get()), "['FormatCallbackException']");
}

}  // namespace
