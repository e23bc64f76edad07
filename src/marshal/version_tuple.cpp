#include "marshal/version_tuple.h"

#include "startup/py_ref.h"

int fn_conv_py_tuple_to_clr_version(PyObject* value, PySysVersionArg* arg) {
    if (value == Py_None) {
        arg->count = -1;
        return 1;
    }
    if (!PyTuple_Check(value)) {
        PyErr_Format(PyExc_TypeError, "a tuple or None is required, not '%.200s'", Py_TYPE(value)->tp_name);
        return 0;
    }
    const Py_ssize_t count = PyTuple_GET_SIZE(value);
    if (count < 2 || count > PySysVersionArg::MaxCount) {
        PyErr_Format(PyExc_ValueError,
                     "a version number tuple must contains at least 2 and at most %zd elements (%zd given)",
                     Py_ssize_t{PySysVersionArg::MaxCount}, count);
        return 0;
    }
    arg->count = static_cast<std::int32_t>(count);
    for (Py_ssize_t i = 0; i < count; ++i) {
        PyObject* element = PyTuple_GET_ITEM(value, i);
        if (!PyLong_Check(element)) {
            PyErr_Format(PyExc_ValueError, "an element of a version number tuple must be integer, not %.200s",
                         Py_TYPE(element)->tp_name);
            return 0;
        }
        const long part = PyLong_AsLong(element);
        if (part == -1 && PyErr_Occurred() != nullptr) {
            return 0;
        }
        if (part < 0) {
            PyErr_Format(PyExc_ValueError,
                         "an element of a version number tuple must be greater or equal zero, not %zd",
                         Py_ssize_t{part});
            return 0;
        }
        arg->parts[i] = static_cast<std::int32_t>(part);
    }
    return 1;
}

PyObject* fn_conv_clr_version_to_py_tuple(const PySysVersionArg& arg) {
    if (arg.count == -1) {
        return fn_new_ref(Py_None);
    }
    PyRef tuple = PyRef::steal(PyTuple_New(arg.count));
    if (!tuple) {
        return nullptr;
    }
    for (std::int32_t i = 0; i < arg.count; ++i) {
        // The count is not limited, the record is: what it does not hold reads as 0.
        PyObject* part = PyLong_FromLong(i < PySysVersionArg::MaxCount ? arg.parts[i] : 0);
        if (part == nullptr) {
            return nullptr;
        }
        PyTuple_SET_ITEM(tuple.get(), i, part);
    }
    return tuple.release();
}
