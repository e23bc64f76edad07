#include "exchange/exception_bridge.h"

#include "startup/identifiers.h"
#include "startup/py_ref.h"

namespace {

/// What `traceback` makes of the exception, as one text; null with an error when any step fails.
PyRef full_text(PyObject* type, PyObject* value, PyObject* traceback) {
    const PyRef module = PyRef::steal(PyImport_ImportModule("traceback"));
    if (!module) {
        if (PyErr_Occurred() == nullptr) {
            PyErr_Format(
                PyExc_ImportError,
                "Unable to import the specified module %s. The module not found or errors occurred while "
                "initializing it.",
                "traceback");
        }
        return {};
    }
    const PyRef format = PyRef::steal(
        PyObject_GetAttr(module.get(), traceback != nullptr ? PyWrpIdTraceBack_FormatException
                                                            : PyWrpIdTraceBack_FormatExceptionOnly));
    if (!format) {
        return {};
    }
    const PyRef lines =
        PyRef::steal(PyObject_CallFunctionObjArgs(format.get(), type, value, traceback, nullptr));
    if (!lines) {
        return {};
    }
    return PyRef::steal(PyUnicode_Join(PyWrpIdStr_Empty, lines.get()));
}

/// The class's qualified name, or what str() says of the class; null with an error when neither can be had.
PyRef class_name(PyObject* type) {
    PyRef name = PyRef::steal(PyObject_GetAttr(type, PyWrpIdType_Qualname));
    if (name && PyUnicode_Check(name.get())) {
        return name;
    }
    PyErr_Clear();
    return PyRef::steal(PyObject_Str(type));
}

/// Class and message without `traceback`'s help; null with an error when they cannot be had.
PyRef plain_text(PyObject* type, PyObject* value, PyObject* traceback) {
    const PyRef name = class_name(type);
    if (!name) {
        return {};
    }
    const PyRef message = PyRef::steal(PyObject_Str(value));
    if (!message) {
        return {};
    }
    if (traceback != nullptr) {
        const PyRef trace = PyRef::steal(PyObject_Str(traceback));
        if (!trace || PyUnicode_GetLength(trace.get()) == 0) {
            PyErr_Clear();
            return PyRef::steal(PyUnicode_FromFormat("%U: %U\n%U", name.get(), message.get(),
                                                     trace ? trace.get() : PyWrpIdStr_Empty));
        }
    }
    return PyRef::steal(PyUnicode_FromFormat("%U: %U", name.get(), message.get()));
}

}  // namespace

void on_clr_exception(PyObject* kind, PyObject* message) {
    PyErr_Format(PyExc_RuntimeError, "Proxy error(%U): %U", kind != nullptr ? kind : PyWrpIdTraceBack_Unknown,
                 message != nullptr ? message : PyWrpIdTraceBack_Unknown);
    Py_XDECREF(kind);
    Py_XDECREF(message);
}

int fn_catch_and_clear_py_error(PyObject** text, PyStringArg* value) {
    PyRef exception = PyRef::steal(fn_take_pending_error());
    if (!exception) {
        return -1;
    }
    PyRef made;
    PyRef kept_aside;  // why the full form failed
    {
        PyObject* type = reinterpret_cast<PyObject*>(Py_TYPE(exception.get()));
        const PyRef traceback = PyRef::steal(PyException_GetTraceback(exception.get()));
        made = full_text(type, exception.get(), traceback.get());
        if (!made) {
            kept_aside = PyRef::steal(fn_take_pending_error());
            made = plain_text(type, exception.get(), traceback.get());
        }
    }
    // Dropped before the text goes out: an object of the failed callback may run code when it dies.
    exception = PyRef();

    int result = -1;
    if (made && fn_conv_py_string_to_clr_string_value(made.get(), value) == 1) {
        *text = made.release();
        result = 0;
    }
    if (kept_aside && PyErr_Occurred() == nullptr) {
        fn_restore_pending_error(kept_aside.release());
    }
    if (PyErr_Occurred() != nullptr) {
        PyErr_WriteUnraisable(PyWrpIdTraceBack_FormatExceptionWarning);
    }
    return result;
}

PyObject* fn_conv_clr_string_to_py_unraisable(const char16_t* text, int length) {
    if (length == -1) {
        return fn_new_ref(Py_None);
    }
    PyObject* result = fn_conv_clr_string_to_py_string_value(reinterpret_cast<const char*>(text), length);
    if (result == nullptr && PyErr_Occurred() != nullptr) {
        PyErr_WriteUnraisable(PyWrpIdTraceBack_FormatExceptionWarning);
    }
    return result;
}
