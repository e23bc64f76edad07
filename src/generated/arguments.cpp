#include "generated/arguments.h"

PyObject* fn_find_keyword(PyObject* kwargs, const char* text, PyObject** interned) {
    if (*interned == nullptr) {
        *interned = PyUnicode_InternFromString(text);
    }
    PyObject* value = *interned == nullptr ? nullptr : PyDict_GetItemWithError(kwargs, *interned);
    if (value == nullptr) {
        PyErr_Clear();
    }
    return value;
}

bool fn_find_arguments(PyObject* args, PyObject* kwargs, const char* const* texts, PyObject** interned,
                       std::size_t count, PyObject** found) {
    const auto positional = static_cast<std::size_t>(PyTuple_GET_SIZE(args));
    const auto keyed = kwargs == nullptr ? 0 : static_cast<std::size_t>(PyDict_GET_SIZE(kwargs));
    if (positional + keyed != count) {
        return false;
    }
    for (std::size_t i = 0; i < positional; ++i) {
        found[i] = PyTuple_GET_ITEM(args, static_cast<Py_ssize_t>(i));
    }
    // Each remaining parameter once, and as many keywords as remain: nothing unknown and nothing given twice.
    for (std::size_t i = positional; i < count; ++i) {
        found[i] = fn_find_keyword(kwargs, texts[i], &interned[i]);
        if (found[i] == nullptr) {
            return false;
        }
    }
    return true;
}

bool fn_parse_no_arguments(PyObject* args, PyObject* kwargs) {
    if (PyTuple_GET_SIZE(args) == 0 && (kwargs == nullptr || PyDict_GET_SIZE(kwargs) == 0)) {
        return true;
    }
    static const char* const no_names[] = {nullptr};
    return PyArg_ParseTupleAndKeywords(args, kwargs, "", const_cast<char**>(no_names)) != 0;
}

int fn_refuse_deletion() {
    PyErr_SetString(PyExc_TypeError, "can't delete attribute");
    return -1;
}
