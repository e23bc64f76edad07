#pragma once

#include "python_fixture.h"

/// Names and code of one test, apart from those of every other.
class PythonNamespace {
public:
    PythonNamespace() : m_names(PyRef::steal(PyDict_New())) {
        PyDict_SetItemString(m_names.get(), "__builtins__", PyEval_GetBuiltins());
        name("__name__", PyUnicode_FromString("test"));
    }

    PythonNamespace(const PythonNamespace&) = delete;
    PythonNamespace& operator=(const PythonNamespace&) = delete;
    ~PythonNamespace() { clear(); }

    /// Drops all names: functions that were defined here would keep them alive.
    void clear() { PyDict_Clear(m_names.get()); }

    /// Gives an object a name; the reference is taken over.
    void name(const char* text, PyObject* object) {
        PyDict_SetItemString(m_names.get(), text, object);
        Py_DECREF(object);
    }

    /// A named object, borrowed.
    PyObject* named(const char* text) { return PyDict_GetItemString(m_names.get(), text); }

    void forget(const char* text) { PyDict_DelItemString(m_names.get(), text); }

    /// Runs statements, which must not fail.
    void run(const char* code) {
        const PyRef done = PyRef::steal(PyRun_String(code, Py_file_input, m_names.get(), m_names.get()));
        EXPECT_TRUE(done) << code << "\n" << take_error();
    }

    /// The value of an expression, or null with the exception pending.
    PyRef eval(const char* expression) {
        return PyRef::steal(PyRun_String(expression, Py_eval_input, m_names.get(), m_names.get()));
    }

    /// The repr of an expression's value, or "Class: text" of its exception, which is cleared.
    std::string show(const char* expression) {
        const PyRef value = eval(expression);
        return value ? repr_of(value.get()) : take_error();
    }

private:
    PyRef m_names;
};

/// "Class: text" of the pending exception, " from " and the same of each cause in turn; the exception is
/// cleared.
inline std::string take_error_chain() {
    PyRef error = PyRef::steal(fn_take_pending_error());
    std::string text;
    while (error) {
        text += (text.empty() ? "" : " from ") + std::string(Py_TYPE(error.get())->tp_name) + ": " +
                text_of(error.get());
        error = PyRef::steal(PyException_GetCause(error.get()));
    }
    return text;
}

/// Counts the references to an object that came since.
class ReferenceCount {
public:
    explicit ReferenceCount(PyObject* object) : m_object(object), m_before(Py_REFCNT(object)) {}
    [[nodiscard]] Py_ssize_t grown() const { return Py_REFCNT(m_object) - m_before; }

private:
    PyObject* m_object;
    Py_ssize_t m_before;
};
