#include "marshal/bytes.h"

#include <limits>

int fn_conv_py_bytes_to_clr_bytes(PyObject* value, PyBytesArgBuilder* builder) {
    return fn_conv_py_bytes_to_clr_bytes_value(value, builder->get_view(), builder->get_info());
}

int fn_conv_py_bytes_to_clr_bytes_value(PyObject* value, Py_buffer* view, PyBytesArg* arg) {
    if (value == Py_None) {
        arg->length = -1;
        return 1;
    }
    if (!PyObject_CheckBuffer(value)) {
        PyErr_Format(PyExc_TypeError, "can't build byte[] from '%s'", Py_TYPE(value)->tp_name);
        return 0;
    }
    return fn_read_py_buffer(value, view, arg);
}

int fn_read_py_buffer(PyObject* value, Py_buffer* view, PyBytesArg* arg) {
    if (PyObject_GetBuffer(value, view, PyBUF_SIMPLE) != 0) {
        PyErr_SetString(PyExc_BufferError, "can't get internal buffer");
        return 0;
    }
    arg->buffer_held = 1;
    if (PyBuffer_IsContiguous(view, 'C') == 0) {
        PyErr_SetString(PyExc_BufferError, "buffer is not contiguous");
        return 0;
    }
    if (view->len > std::numeric_limits<std::int32_t>::max()) {
        PyErr_SetString(PyExc_BufferError, "buffer is too long");
        return 0;
    }
    arg->length = static_cast<std::int32_t>(view->len);
    arg->bytes = view->buf;
    return 1;
}

PyObject* fn_conv_clr_bytes_to_py_bytes(const std::uint8_t* bytes, int length) {
    return length == -1 ? fn_new_ref(Py_None)
                        : PyByteArray_FromStringAndSize(reinterpret_cast<const char*>(bytes), length);
}
