#include "pycore/bytes_as_stream.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "startup/py_ref.h"

namespace {

struct BytesAsStream {
    PyObject ob_base;
    Py_buffer view;       // held while `is_open`
    Py_ssize_t position;  // never negative; may lie behind the end
    bool is_open;         // false until the constructor has succeeded, and after `close`
};

BytesAsStream* as_stream(PyObject* self) {
    return reinterpret_cast<BytesAsStream*>(self);
}

void close_stream(BytesAsStream* stream) {
    if (stream->is_open) {
        stream->is_open = false;
        PyBuffer_Release(&stream->view);
    }
}

// The stream, or null with ValueError when it is closed.
BytesAsStream* open_stream(PyObject* self) {
    BytesAsStream* stream = as_stream(self);
    if (!stream->is_open) {
        PyErr_SetString(PyExc_ValueError, "I/O operation on closed file.");
        return nullptr;
    }
    return stream;
}

Py_ssize_t bytes_left(const BytesAsStream* stream) {
    return stream->position < stream->view.len ? stream->view.len - stream->position : 0;
}

char* data_at_position(const BytesAsStream* stream) {
    return static_cast<char*>(stream->view.buf) + stream->position;
}

// io.UnsupportedOperation, which is both an OSError and a ValueError.
PyObject* raise_unsupported(const char* operation) {
    const PyRef io = PyRef::steal(PyImport_ImportModule("io"));
    const PyRef type = PyRef::steal(io ? PyObject_GetAttrString(io.get(), "UnsupportedOperation") : nullptr);
    if (type) {
        PyErr_SetString(type.get(), operation);
    }
    return nullptr;
}

// The buffer of an argument for the length of a call.
class ArgumentBuffer {
public:
    ArgumentBuffer(PyObject* object, int flags)
        : m_is_held(PyObject_GetBuffer(object, &m_view, flags) == 0) {}
    ~ArgumentBuffer() {
        if (m_is_held) {
            PyBuffer_Release(&m_view);
        }
    }
    ArgumentBuffer(const ArgumentBuffer&) = delete;
    ArgumentBuffer& operator=(const ArgumentBuffer&) = delete;

    explicit operator bool() const { return m_is_held; }
    char* data() const { return static_cast<char*>(m_view.buf); }
    Py_ssize_t size() const { return m_view.len; }

private:
    Py_buffer m_view;
    bool m_is_held;
};

int stream_init(PyObject* self, PyObject* args, PyObject* kwargs) {
    static char buffer_name[] = "buffer";
    static char* names[] = {buffer_name, nullptr};
    PyObject* buffer = nullptr;
    if (PyArg_ParseTupleAndKeywords(args, kwargs, "O:BytesAsStream", names, &buffer) == 0) {
        return -1;
    }
    Py_buffer view;
    if (PyObject_GetBuffer(buffer, &view, PyBUF_WRITABLE) < 0) {
        // Exporters refuse in different ways; one that is read-only, at least, grants the second request.
        PyErr_Clear();
        if (PyObject_GetBuffer(buffer, &view, PyBUF_SIMPLE) < 0) {
            return -1;
        }
    }
    BytesAsStream* stream = as_stream(self);
    close_stream(stream);
    stream->view = view;
    stream->position = 0;
    stream->is_open = true;
    return 0;
}

void stream_dealloc(PyObject* self) {
    close_stream(as_stream(self));
    Py_TYPE(self)->tp_free(self);
}

PyObject* stream_read(PyObject* self, PyObject* args) {
    PyObject* size = Py_None;
    if (PyArg_ParseTuple(args, "|O:read", &size) == 0) {
        return nullptr;
    }
    BytesAsStream* stream = open_stream(self);
    if (stream == nullptr) {
        return nullptr;
    }
    Py_ssize_t count = bytes_left(stream);
    if (size != Py_None) {
        const Py_ssize_t wanted = PyNumber_AsSsize_t(size, PyExc_OverflowError);
        if (wanted == -1 && PyErr_Occurred() != nullptr) {
            return nullptr;
        }
        count = wanted < 0 ? count : std::min(count, wanted);
    }
    // Turning `size` into a number may have run code that closed the stream.
    stream = open_stream(self);
    if (stream == nullptr) {
        return nullptr;
    }
    count = std::min(count, bytes_left(stream));
    PyObject* bytes = PyBytes_FromStringAndSize(count > 0 ? data_at_position(stream) : nullptr, count);
    if (bytes != nullptr) {
        stream->position += count;
    }
    return bytes;
}

PyObject* stream_readall(PyObject* self, PyObject*) {
    const PyRef no_arguments = PyRef::steal(PyTuple_New(0));
    return no_arguments ? stream_read(self, no_arguments.get()) : nullptr;
}

PyObject* stream_readinto(PyObject* self, PyObject* target) {
    const ArgumentBuffer buffer(target, PyBUF_WRITABLE);
    BytesAsStream* stream = buffer ? open_stream(self) : nullptr;
    if (stream == nullptr) {
        return nullptr;
    }
    const Py_ssize_t count = std::min(bytes_left(stream), buffer.size());
    if (count > 0) {
        std::memmove(buffer.data(), data_at_position(stream), static_cast<std::size_t>(count));
        stream->position += count;
    }
    return PyLong_FromSsize_t(count);
}

PyObject* stream_write(PyObject* self, PyObject* source) {
    const ArgumentBuffer buffer(source, PyBUF_SIMPLE);
    BytesAsStream* stream = buffer ? open_stream(self) : nullptr;
    if (stream == nullptr) {
        return nullptr;
    }
    if (stream->view.readonly != 0) {
        return raise_unsupported("write");
    }
    const Py_ssize_t count = std::min(bytes_left(stream), buffer.size());
    if (count == 0 && buffer.size() > 0) {
        // A raw file that answers 0 would be asked again for ever.
        errno = ENOSPC;
        return PyErr_SetFromErrno(PyExc_OSError);
    }
    if (count > 0) {
        std::memmove(data_at_position(stream), buffer.data(), static_cast<std::size_t>(count));
        stream->position += count;
    }
    return PyLong_FromSsize_t(count);
}

PyObject* stream_seek(PyObject* self, PyObject* args) {
    Py_ssize_t offset = 0;
    int whence = SEEK_SET;
    if (PyArg_ParseTuple(args, "n|i:seek", &offset, &whence) == 0) {
        return nullptr;
    }
    BytesAsStream* stream = open_stream(self);
    if (stream == nullptr) {
        return nullptr;
    }
    Py_ssize_t base = 0;
    switch (whence) {
        case SEEK_SET:
            break;
        case SEEK_CUR:
            base = stream->position;
            break;
        case SEEK_END:
            base = stream->view.len;
            break;
        default:
            return PyErr_Format(PyExc_ValueError, "invalid whence (%i, should be 0, 1 or 2)", whence);
    }
    Py_ssize_t position = 0;
    if (__builtin_add_overflow(base, offset, &position)) {
        PyErr_SetString(PyExc_OverflowError, "seek position too large");
        return nullptr;
    }
    if (position < 0) {
        return PyErr_Format(PyExc_ValueError, "negative seek position %zd", position);
    }
    stream->position = position;
    return PyLong_FromSsize_t(position);
}

PyObject* stream_tell(PyObject* self, PyObject*) {
    const BytesAsStream* stream = open_stream(self);
    return stream != nullptr ? PyLong_FromSsize_t(stream->position) : nullptr;
}

PyObject* stream_flush(PyObject* self, PyObject*) {
    return open_stream(self) != nullptr ? fn_new_ref(Py_None) : nullptr;
}

PyObject* stream_close(PyObject* self, PyObject*) {
    close_stream(as_stream(self));
    Py_RETURN_NONE;
}

PyObject* answer_while_open(PyObject* self, bool answer) {
    return open_stream(self) != nullptr ? PyBool_FromLong(answer) : nullptr;
}

PyObject* stream_readable(PyObject* self, PyObject*) {
    return answer_while_open(self, true);
}

PyObject* stream_seekable(PyObject* self, PyObject*) {
    return answer_while_open(self, true);
}

PyObject* stream_writable(PyObject* self, PyObject*) {
    return answer_while_open(self, as_stream(self)->is_open && as_stream(self)->view.readonly == 0);
}

PyObject* stream_enter(PyObject* self, PyObject*) {
    return open_stream(self) != nullptr ? fn_new_ref(self) : nullptr;
}

PyObject* stream_exit(PyObject* self, PyObject*) {
    return stream_close(self, nullptr);
}

PyObject* stream_get_closed(PyObject* self, void*) {
    return PyBool_FromLong(!as_stream(self)->is_open);
}

PyMethodDef stream_methods[] = {
    {"read", stream_read, METH_VARARGS,
     "read($self, size=-1, /)\n--\n\nUp to size bytes from the position on; all that are left without a "
     "size."},
    {"readall", stream_readall, METH_NOARGS, "readall($self, /)\n--\n\nAll bytes that are left."},
    {"readinto", stream_readinto, METH_O,
     "readinto($self, buffer, /)\n--\n\nFills a writable buffer; gives the number of bytes, 0 at the end."},
    {"write", stream_write, METH_O,
     "write($self, data, /)\n--\n\nWrites over the bytes at the position; gives the number of bytes that "
     "fitted.\n"
     "Raises OSError (ENOSPC) when no more fit, io.UnsupportedOperation on read-only memory."},
    {"seek", stream_seek, METH_VARARGS,
     "seek($self, offset, whence=0, /)\n--\n\nMoves the position and gives it."},
    {"tell", stream_tell, METH_NOARGS, "tell($self, /)\n--\n\nThe position."},
    {"flush", stream_flush, METH_NOARGS, "flush($self, /)\n--\n\nNothing is held back, so nothing to do."},
    {"close", stream_close, METH_NOARGS,
     "close($self, /)\n--\n\nLets the memory go. Closing again does nothing."},
    {"readable", stream_readable, METH_NOARGS, "readable($self, /)\n--\n\nAlways true."},
    {"writable", stream_writable, METH_NOARGS, "writable($self, /)\n--\n\nWhether the memory is writable."},
    {"seekable", stream_seekable, METH_NOARGS, "seekable($self, /)\n--\n\nAlways true."},
    {"__enter__", stream_enter, METH_NOARGS, nullptr},
    {"__exit__", stream_exit, METH_VARARGS, nullptr},
    {},
};

PyGetSetDef stream_properties[] = {
    {"closed", stream_get_closed, nullptr, "Whether the stream was closed.", nullptr},
    {},
};

constexpr PyTypeObject make_type() {
    PyTypeObject type{};
    type.ob_base.ob_base.ob_refcnt = 1;
    type.tp_name = "velbor.pycore.BytesAsStream";
    type.tp_doc =
        "BytesAsStream(buffer)\n--\n\n"
        "A raw binary file over the memory of a bytes-like object: written bytes go straight into it.\n"
        "It is writable when the memory is, and never grows.";
    type.tp_basicsize = sizeof(BytesAsStream);
    type.tp_flags = Py_TPFLAGS_DEFAULT;
    type.tp_methods = stream_methods;
    type.tp_getset = stream_properties;
    type.tp_new = PyType_GenericNew;
    type.tp_init = stream_init;
    type.tp_dealloc = stream_dealloc;
    return type;
}

}  // namespace

PyTypeObject wrpPyl_tyds_BytesAsStream = make_type();
