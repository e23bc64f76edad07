#include "marshal/strings.h"

#include "startup/py_ref.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

int fn_conv_py_other_to_clr_string(PyObject* value, PyStringArg* arg) {
    if (value == Py_None) {
        arg->length = -1;
        return 1;
    }
    PyErr_Format(PyExc_TypeError, "can't build String from '%s'", Py_TYPE(value)->tp_name);
    return 0;
}

int fn_conv_py_strorpath_to_clr_string(PyObject* value, PyEphStrArg* arg) {
    arg->owner = nullptr;
    if (value == Py_None) {
        arg->text.length = -1;
        return 1;
    }
    if (PyUnicode_Check(value)) {
        return fn_conv_py_string_to_clr_string_value(value, &arg->text);
    }
    PyObject* decoded = nullptr;
    if (PyUnicode_FSDecoder(value, &decoded) == 0) {
        return 0;
    }
    PyRef text = PyRef::steal(decoded);
    if (fn_conv_py_string_to_clr_string_value(text.get(), &arg->text) == 0) {
        return 0;
    }
    arg->owner = text.release();
    return 1;
}

int fn_read_py_string(PyObject* value, PyStringArg* arg) {
    return fn_conv_py_string_to_clr_string_value(value, arg);
}

PyObject* fn_conv_clr_string_to_py_string(const char16_t* text, int length) {
    if (length == -1) {
        return fn_new_ref(Py_None);
    }
    return fn_conv_clr_string_to_py_string_value(reinterpret_cast<const char*>(text), length);
}

void** fn_create_u16_buffer(const char16_t* text, int length) {
    static char16_t empty[1] = {};
    if (length < 0) {
        throw std::length_error("fn_create_u16_buffer: negative length");
    }
    if (text == nullptr && length != 0) {
        throw std::logic_error("fn_create_u16_buffer: null text");
    }
    const std::size_t bytes = static_cast<std::size_t>(length) * sizeof(char16_t);
    // One block for both, so that freeing the holder leaves nothing behind.
    auto* holder = static_cast<void**>(std::malloc(sizeof(void*) + bytes + sizeof(char16_t)));
    if (holder == nullptr) {
        throw std::bad_alloc();
    }
    if (length == 0) {
        *holder = empty;
        return holder;
    }
    auto* units = reinterpret_cast<char16_t*>(holder + 1);
    std::memcpy(units, text, bytes);
    units[length] = 0;
    *holder = units;
    return holder;
}
