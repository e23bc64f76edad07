#pragma once

// Python.h, and every place where CPython 3.9 to 3.13 differ. No other file looks at the version of Python.

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <type_traits>

#if PY_VERSION_HEX < 0x03090000
#error "CPython 3.9 or later is needed"
#endif

/// A new reference to an object that is not null.
template <typename T>
[[nodiscard]] inline T* fn_new_ref(T* object) {
    Py_INCREF(reinterpret_cast<PyObject*>(object));
    return object;
}

/// A new reference, or null for null.
template <typename T>
[[nodiscard]] inline T* fn_new_xref(T* object) {
    Py_XINCREF(reinterpret_cast<PyObject*>(object));
    return object;
}

/// True when the text's characters can be read in place. From 3.12 on every string is born ready.
inline bool fn_is_unicode_ready([[maybe_unused]] PyObject* text) {
#if PY_VERSION_HEX >= 0x030C0000
    return true;
#else
    return PyUnicode_IS_READY(text) || PyUnicode_READY(text) == 0;
#endif
}

/// Takes the pending exception off the error state: a new reference to the exception object, which carries
/// its traceback, or null when none is pending.
[[nodiscard]] inline PyObject* fn_take_pending_error() {
#if PY_VERSION_HEX >= 0x030C0000
    return PyErr_GetRaisedException();
#else
    // Until 3.11 the state is three references and the value may still be the bare argument of a class.
    PyObject *type = nullptr, *value = nullptr, *traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    if (type == nullptr) {
        return nullptr;
    }
    PyErr_NormalizeException(&type, &value, &traceback);
    if (traceback != nullptr) {
        PyException_SetTraceback(value, traceback);
        Py_DECREF(traceback);
    }
    Py_DECREF(type);
    return value;
#endif
}

/// Makes `exception` (taken over; null clears the state) the pending one, with the traceback that it carries.
inline void fn_restore_pending_error(PyObject* exception) {
#if PY_VERSION_HEX >= 0x030C0000
    PyErr_SetRaisedException(exception);
#else
    if (exception == nullptr) {
        PyErr_Clear();
        return;
    }
    PyErr_Restore(fn_new_ref(reinterpret_cast<PyObject*>(Py_TYPE(exception))), exception,
                  PyException_GetTraceback(exception));
#endif
}

/// The dictionary that the type itself holds, borrowed. Null for CPython's own types from 3.12 on, which keep
/// theirs in the interpreter: whoever looks for a name there takes null for "not found".
inline PyObject* fn_type_own_dict(const PyTypeObject* type) {
    return type->tp_dict;
}

/// What a weak reference refers to, as a new reference; null when it is gone (no error set) or on an error.
[[nodiscard]] inline PyObject* fn_weakref_target(PyObject* reference) {
#if PY_VERSION_HEX >= 0x030D0000
    PyObject* target = nullptr;
    return PyWeakref_GetRef(reference, &target) == 1 ? target : nullptr;
#else
    PyObject* target = PyWeakref_GetObject(reference);
    return target == nullptr || target == Py_None ? nullptr : fn_new_ref(target);
#endif
}

/// True when the object's reference count never changes (None, small integers and the like from 3.12 on).
inline bool fn_is_immortal([[maybe_unused]] PyObject* object) {
#if PY_VERSION_HEX >= 0x030C0000
    return _Py_IsImmortal(object) != 0;
#else
    return false;
#endif
}

/// Any of the signatures that a method table's flags allow, in the one form that the table holds.
template <typename Function>
inline PyCFunction fn_as_cfunction(Function* function) {
    static_assert(std::is_function_v<Function>);
    return reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(function));
}
