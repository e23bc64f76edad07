#pragma once

#include "startup/cpython.h"
#include "startup/identifiers.h"
#include "startup/py_ref.h"

#include <gtest/gtest.h>

#include <string>

// An embedded interpreter for the tests of one executable, and what they ask of it.

class EmbeddedPython : public ::testing::Environment {
public:
    void SetUp() override {
        Py_InitializeEx(0);
        fn_intern_identifiers();
    }
};

inline ::testing::Environment* const embedded_python =
    ::testing::AddGlobalTestEnvironment(new EmbeddedPython);  // gtest owns it

inline PyObject* main_namespace() {
    return PyModule_GetDict(PyImport_AddModule("__main__"));
}

/// The value of an expression in `__main__`. A failure prints its error and gives null.
inline PyRef eval(const char* expression) {
    PyRef value = PyRef::steal(PyRun_String(expression, Py_eval_input, main_namespace(), main_namespace()));
    if (!value) {
        PyErr_Print();
        ADD_FAILURE() << "cannot evaluate: " << expression;
    }
    return value;
}

/// Runs statements in `__main__`, which must not fail.
inline void run(const char* code) {
    if (!PyRef::steal(PyRun_String(code, Py_file_input, main_namespace(), main_namespace()))) {
        PyErr_Print();
        ADD_FAILURE() << "cannot run: " << code;
    }
}

/// Binds a name in `__main__`.
inline void set_name(const char* name, PyObject* value) {
    PyDict_SetItemString(main_namespace(), name, value);
}

inline std::string text_of(PyObject* object) {
    const PyRef text = PyRef::steal(PyObject_Str(object));
    return text ? PyUnicode_AsUTF8(text.get()) : "<no text>";
}

inline std::string repr_of(PyObject* object) {
    const PyRef text = PyRef::steal(PyObject_Repr(object));
    return text ? PyUnicode_AsUTF8(text.get()) : "<no text>";
}

/// Takes the pending error as "Class: text"; empty when none is pending.
inline std::string take_error() {
    const PyRef error = PyRef::steal(fn_take_pending_error());
    return error ? std::string(Py_TYPE(error.get())->tp_name) + ": " + text_of(error.get()) : "";
}

/// Fails when the object's references at the end of the scope are not those of its beginning.
class SameReferences {
public:
    explicit SameReferences(PyObject* object) : m_object(object), m_count(Py_REFCNT(object)) {}
    SameReferences(const SameReferences&) = delete;
    SameReferences& operator=(const SameReferences&) = delete;
    ~SameReferences() { EXPECT_EQ(Py_REFCNT(m_object), m_count) << repr_of(m_object); }

private:
    PyObject* m_object;
    Py_ssize_t m_count;
};
