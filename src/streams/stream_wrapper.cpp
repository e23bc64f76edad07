#include "streams/stream_wrapper.h"

#include "collections/interop_wrappers.h"
#include "exchange/host_base.h"
#include "marshal/arguments.h"
#include "marshal/numbers.h"
#include "startup/identifiers.h"
#include "startup/py_ref.h"
#include "startup/report.h"
#include "streams/stream_host.h"
#include "streams/stream_reading.h"
#include "wrappers/casts.h"
#include "wrappers/markers.h"
#include "wrappers/standard_class.h"
#include "wrappers/type_object.h"

#include <limits>

namespace {

const PyHost_ph_Stream& stream_host() {
    return PyHost_ph_Stream::get_instance();
}

PyShStreamObject* as_stream(PyObject* self) {
    return reinterpret_cast<PyShStreamObject*>(self);
}

// Tests that stand before an operation. False with an error set
// -------------------------------------------------

bool check_open(PyObject* self) {
    if (as_stream(self)->closed_flag == 0) {
        return true;
    }
    PyErr_SetString(PyExc_ValueError, "I/O operation on closed stream");
    return false;
}

// Reading by lines seeks back over what it read ahead, as a managed stream has no look-ahead.
bool check_seekable(PyObject* self) {
    const bool seekable = stream_host().can_seek(fn_wrapper_handle(self)) != 0;
    if (PyErr_Occurred() != nullptr) {
        PyShlErr_ChainFormat(
            PyExc_TypeError,
            "the operation supported only for seekable inner streams. an exception was thrown "
            "during 'CanSeek' check");
        return false;
    }
    if (!seekable) {
        PyErr_SetString(
            PyExc_TypeError,
            "the operation supported only for seekable inner streams. the inner stream is not seekable");
        return false;
    }
    return true;
}

// The one optional argument of the reading methods: -1 without it and for None.
bool take_size(PyObject* args, const char* name, Py_ssize_t* size) {
    const Py_ssize_t given = PyTuple_GET_SIZE(args);
    *size = -1;
    return !fn_check_args_count_out_of_range(given, name, 0, 1) &&
           (given == 0 || fn_conv_py_optional_to_ssize_t(args, size) != 0);
}

PyObject* none_unless_error() {
    return PyErr_Occurred() == nullptr ? fn_py_return_none() : nullptr;
}

PyObject* int_unless_error(std::int64_t value) {
    return PyErr_Occurred() == nullptr ? PyLong_FromSsize_t(value) : nullptr;
}

PyObject* bool_unless_error(unsigned char value) {
    return PyErr_Occurred() == nullptr ? PyBool_FromLong(value) : nullptr;
}

const char* shown_type(PyObject* value) {
    return value == Py_None ? "None" : Py_TYPE(value)->tp_name;
}

// The buffer of an argument, released with its scope.
class ArgumentBuffer {
public:
    // The texts name the type of the argument.
    ArgumentBuffer(PyObject* value, int flags, const char* no_buffer, const char* not_contiguous) {
        if (PyObject_GetBuffer(value, &m_view, flags) != 0) {
            PyErr_Clear();
            PyErr_Format(PyExc_TypeError, no_buffer, shown_type(value));
            return;
        }
        m_is_held = true;
        m_is_usable = PyBuffer_IsContiguous(&m_view, 'C') != 0;
        if (!m_is_usable) {
            PyErr_Format(PyExc_TypeError, not_contiguous, shown_type(value));
        }
    }
    ArgumentBuffer(const ArgumentBuffer&) = delete;
    ArgumentBuffer& operator=(const ArgumentBuffer&) = delete;
    ~ArgumentBuffer() {
        if (m_is_held) {
            PyBuffer_Release(&m_view);
        }
    }

    explicit operator bool() const { return m_is_usable; }
    Py_ssize_t size() const { return m_view.len; }
    char* at(Py_ssize_t offset) const { return static_cast<char*>(m_view.buf) + offset; }

private:
    Py_buffer m_view;
    bool m_is_held = false;
    bool m_is_usable = false;
};

// Methods that pass on
// ------------------------------------------------------------------------------------------

PyObject* wrpPye_bltp_stream_close(PyObject* self, PyObject*) {
    if (as_stream(self)->closed_flag != 0) {
        Py_RETURN_NONE;
    }
    stream_host().close(fn_wrapper_handle(self));
    as_stream(self)->closed_flag = 1;
    return none_unless_error();
}

PyObject* wrpPye_bltp_stream_flush(PyObject* self, PyObject*) {
    if (!check_open(self)) {
        return nullptr;
    }
    stream_host().flush(fn_wrapper_handle(self));
    return none_unless_error();
}

PyObject* wrpPye_bltp_stream_readable(PyObject* self, PyObject*) {
    return check_open(self) ? bool_unless_error(stream_host().can_read(fn_wrapper_handle(self))) : nullptr;
}

PyObject* wrpPye_bltp_stream_seekable(PyObject* self, PyObject*) {
    return check_open(self) ? bool_unless_error(stream_host().can_seek(fn_wrapper_handle(self))) : nullptr;
}

PyObject* wrpPye_bltp_stream_writable(PyObject* self, PyObject*) {
    return check_open(self) ? bool_unless_error(stream_host().can_write(fn_wrapper_handle(self))) : nullptr;
}

PyObject* wrpPye_bltp_stream_tell(PyObject* self, PyObject*) {
    return check_open(self) ? int_unless_error(stream_host().position(fn_wrapper_handle(self))) : nullptr;
}

PyObject* wrpPye_bltp_stream_fileno(PyObject*, PyObject*) {
    PyErr_SetString(PyExc_ValueError, "fileno method is not supported");
    return nullptr;
}

PyObject* wrpPye_bltp_stream_isatty(PyObject* self, PyObject*) {
    if (!check_open(self)) {
        return nullptr;
    }
    Py_RETURN_FALSE;
}

PyObject* wrpPye_bltp_stream_seek(PyObject* self, PyObject* args) {
    Py_ssize_t offset = 0;
    int whence = 0;
    if (!PyArg_ParseTuple(args, "n|i", &offset, &whence)) {
        return nullptr;
    }
    if (static_cast<unsigned>(whence) > 2) {
        PyErr_Format(PyExc_ValueError, "invalid whence (%i, should be 0, 1 or 2)", whence);
        return nullptr;
    }
    if (whence == 0 && offset < 0) {
        PyErr_Format(PyExc_ValueError, "negative seek value %zd", offset);
        return nullptr;
    }
    return check_open(self) ? int_unless_error(stream_host().seek(fn_wrapper_handle(self), offset, whence))
                            : nullptr;
}

PyObject* wrpPye_bltp_stream_truncate(PyObject* self, PyObject* args) {
    const Py_ssize_t given = PyTuple_GET_SIZE(args);
    if (fn_check_args_count_out_of_range(given, "truncate", 0, 1)) {
        return nullptr;
    }
    // Without a size the managed side cuts at its present position.
    const bool use_position = given == 0 || PyTuple_GET_ITEM(args, 0) == Py_None;
    Py_ssize_t size = 0;
    if (!use_position && fn_conv_py_obj_to_ssize_t(PyTuple_GET_ITEM(args, 0), &size) == 0) {
        return nullptr;
    }
    return check_open(self) ? int_unless_error(stream_host().set_length(fn_wrapper_handle(self),
                                                                        use_position ? 1 : 0, size))
                            : nullptr;
}

PyObject* wrpPye_bltp_stream_exit(PyObject* self, PyObject* args) {
    PyObject* result = wrpPye_bltp_idisposable_exit(self, args);
    as_stream(self)->closed_flag = 1;
    return result;
}

// Writing
// -------------------------------------------------------------------------------------------------------

PyObject* wrpPye_bltp_stream_write(PyObject* self, PyObject* data) {
    if (!check_open(self)) {
        return nullptr;
    }
    const ArgumentBuffer buffer(data, 0, "write argument must be bytes-like object, not '%s'",
                                "write argument must be contiguous buffer, not '%s'");
    if (!buffer) {
        return nullptr;
    }
    Py_ssize_t total = 0;
    // An empty buffer is written too, as no bytes.
    do {
        const int asked = fn_stream_chunk(buffer.size() - total);
        stream_host().write(fn_wrapper_handle(self), buffer.at(total), asked);
        if (PyErr_Occurred() != nullptr) {
            return nullptr;
        }
        total += asked;
    } while (total < buffer.size());
    return PyLong_FromSsize_t(total);
}

PyObject* wrpPye_bltp_stream_writelines(PyObject* self, PyObject* lines) {
    if (!check_open(self)) {
        return nullptr;
    }
    const PyRef iterator = PyRef::steal(PyObject_GetIter(lines));
    if (!iterator) {
        return nullptr;
    }
    while (const PyRef line = PyRef::steal(PyIter_Next(iterator.get()))) {
        // The count is only looked at: its reference is given up, as this routine always did.
        if (wrpPye_bltp_stream_write(self, line.get()) == nullptr) {
            return nullptr;
        }
    }
    return none_unless_error();
}

// Reading
// -------------------------------------------------------------------------------------------------------

// One "Read" of at most `size` bytes: what is there, and no more tries.
PyObject* read_once(PyObject* self, int size) {
    PyObject* bytes = PyBytes_FromStringAndSize(nullptr, size);
    if (bytes == nullptr) {
        return nullptr;
    }
    const int count = stream_host().read(fn_wrapper_handle(self), PyBytes_AS_STRING(bytes), size);
    if (PyErr_Occurred() != nullptr) {
        Py_DECREF(bytes);
        return nullptr;
    }
    if (count < size) {
        _PyBytes_Resize(&bytes, count);
    }
    return bytes;
}

PyObject* wrpPye_bltp_stream_read(PyObject* self, PyObject* args) {
    Py_ssize_t size = -1;
    if (!take_size(args, "read", &size) || !check_open(self)) {
        return nullptr;
    }
    if (size < 0) {
        return fn_stream_read_bytes_impl(as_stream(self), -1);
    }
    if (size > std::numeric_limits<int>::max()) {
        return fn_stream_read_bytes_impl(as_stream(self), size);
    }
    return read_once(self, static_cast<int>(size));
}

PyObject* wrpPye_bltp_stream_readall(PyObject* self, PyObject*) {
    return check_open(self) ? fn_stream_read_bytes_impl(as_stream(self), -1) : nullptr;
}

PyObject* wrpPye_bltp_stream_readinto(PyObject* self, PyObject* target) {
    if (!check_open(self)) {
        return nullptr;
    }
    const ArgumentBuffer buffer(target, PyBUF_WRITABLE,
                                "readinto argument must be read-write bytes-like object, not '%s'",
                                "readinto argument must be read-write contiguous buffer, not '%s'");
    if (!buffer) {
        return nullptr;
    }
    Py_ssize_t total = 0;
    int asked = 0;
    int count = 0;
    // An empty buffer costs one read of no bytes.
    do {
        asked = fn_stream_chunk(buffer.size() - total);
        count = stream_host().read(fn_wrapper_handle(self), buffer.at(total), asked);
        if (PyErr_Occurred() != nullptr) {
            return nullptr;
        }
        total += count;
    } while (count >= asked && total < buffer.size());
    return PyLong_FromSsize_t(total);
}

PyObject* wrpPye_bltp_stream_readline(PyObject* self, PyObject* args) {
    Py_ssize_t limit = -1;
    if (!take_size(args, "readline", &limit) || !check_open(self) || !check_seekable(self)) {
        return nullptr;
    }
    return fn_stream_read_line_impl(as_stream(self), limit);
}

// Lines until their bytes reach `hint`, appended to `lines`. False with an error.
bool append_lines(PyObject* self, PyObject* lines, Py_ssize_t hint) {
    const PyRef iterator = PyRef::steal(PyObject_GetIter(self));
    if (!iterator) {
        return false;
    }
    Py_ssize_t total = 0;
    while (const PyRef line = PyRef::steal(PyIter_Next(iterator.get()))) {
        if (PyList_Append(lines, line.get()) != 0) {
            return false;
        }
        const Py_ssize_t length = PyBytes_GET_SIZE(line.get());
        if (hint - total <= length) {
            return true;
        }
        total += length;
    }
    return PyErr_Occurred() == nullptr;
}

PyObject* wrpPye_bltp_stream_readlines(PyObject* self, PyObject* args) {
    Py_ssize_t hint = -1;
    if (!take_size(args, "readlines", &hint) || !check_open(self) || !check_seekable(self)) {
        return nullptr;
    }
    PyRef lines = PyRef::steal(PyList_New(0));
    if (!lines) {
        return nullptr;
    }
    if (hint < 1) {
        const PyRef extended =
            PyRef::steal(PyObject_CallMethodObjArgs(lines.get(), PyWrpIdList_Extend, self, nullptr));
        return extended ? lines.release() : nullptr;
    }
    return append_lines(self, lines.get(), hint) ? lines.release() : nullptr;
}

PyObject* wrpPye_bltp_stream_iter(PyObject* self) {
    return check_open(self) && check_seekable(self) ? fn_new_ref(self) : nullptr;
}

PyObject* wrpPye_bltp_stream_iternext(PyObject* self) {
    PyRef line = PyRef::steal(fn_stream_read_line_impl(as_stream(self), -1));
    const bool is_end = line && PyBytes_GET_SIZE(line.get()) == 0;
    return is_end ? nullptr : line.release();
}

PyObject* wrpPye_bltp_stream_get_closed(PyObject* self, void*) {
    return PyBool_FromLong(as_stream(self)->closed_flag);
}

// Validity
// ------------------------------------------------------------------------------------------------------

const PyHostState& stream_state() {
    static const PyHostState state =
        fn_aggregate_host_state(PyHost_ph_Stream::get_instance(), {wrpPye_bltp_idisposable_is_not_valid});
    return state;
}

PyObject* wrpPye_tpsb_stream_tp_new(PyTypeObject* type, PyObject* args, PyObject* kwargs) {
    PyObject* self = fn_wrapper_tp_new<wrpPye_uafn_stream_invalidate>(type, args, kwargs);
    if (self != nullptr) {
        wrpPye_init_fields_stream(as_stream(self));
    }
    return self;
}

// The type object
// -----------------------------------------------------------------------------------------------

using Casts = InteropCasts<PyHost_ph_Stream, wrpPye_tyds_StreamWrapper, wrpPye_uafn_stream_invalidate>;

PyMethodDef methods[] = {
    {"close", wrpPye_bltp_stream_close, METH_NOARGS, nullptr},
    {"flush", wrpPye_bltp_stream_flush, METH_NOARGS, nullptr},
    {"readable", wrpPye_bltp_stream_readable, METH_NOARGS, nullptr},
    {"seekable", wrpPye_bltp_stream_seekable, METH_NOARGS, nullptr},
    {"writable", wrpPye_bltp_stream_writable, METH_NOARGS, nullptr},
    {"tell", wrpPye_bltp_stream_tell, METH_NOARGS, nullptr},
    {"seek", wrpPye_bltp_stream_seek, METH_VARARGS, nullptr},
    {"truncate", wrpPye_bltp_stream_truncate, METH_VARARGS, nullptr},
    {"write", wrpPye_bltp_stream_write, METH_O, nullptr},
    {"writelines", wrpPye_bltp_stream_writelines, METH_O, nullptr},
    {"readline", wrpPye_bltp_stream_readline, METH_VARARGS, nullptr},
    {"readlines", wrpPye_bltp_stream_readlines, METH_VARARGS, nullptr},
    {"readinto", wrpPye_bltp_stream_readinto, METH_O, nullptr},
    {"read", wrpPye_bltp_stream_read, METH_VARARGS, nullptr},
    {"readall", wrpPye_bltp_stream_readall, METH_NOARGS, nullptr},
    {"fileno", wrpPye_bltp_stream_fileno, METH_NOARGS, nullptr},
    {"isatty", wrpPye_bltp_stream_isatty, METH_NOARGS, nullptr},
    {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
    {"__enter__", wrpPye_bltp_idisposable_enter, METH_NOARGS, nullptr},
    {"__exit__", wrpPye_bltp_stream_exit, METH_VARARGS, nullptr},
    VELBOR_INTEROP_CAST_ROWS(Casts),
    {nullptr, nullptr, 0, nullptr},
};

PyGetSetDef properties[] = {
    {"closed", wrpPye_bltp_stream_get_closed, nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};

constexpr PyTypeObject make_type() {
    PyTypeObject type = fn_make_interop_type({.name = "velbor.voxlar._wrpgen._interop._StreamWrapper",
                                              .methods = methods,
                                              .properties = properties,
                                              .create = wrpPye_tpsb_stream_tp_new,
                                              .iterate = wrpPye_bltp_stream_iter});
    type.tp_basicsize = sizeof(PyShStreamObject);
    type.tp_iternext = wrpPye_bltp_stream_iternext;
    return type;
}

// The argument converter
// ----------------------------------------------------------------------------------------

int refuse_stream(PyObject* value) {
    PyErr_Format(PyExc_TypeError, "can't build Stream from '%s'", Py_TYPE(value)->tp_name);
    return 0;
}

// 1 for a Python file object, 0 for anything else, -1 with an error. The classes are fetched at each use:
// they may come from a module that is only imported now.
int is_python_stream(PyObject* value) {
    static const StandardModule io{.name = "io"};
    static const StandardModule pycore{.name = "velbor.pycore"};
    const struct {
        const StandardModule& module;
        PyObject* name;
    } bases[] = {{io, PyWrpIdTypeName_RawIOBase},
                 {io, PyWrpIdTypeName_BufferedIOBase},
                 {pycore, PyWrpIdTypeName_BytesAsStream}};
    for (const auto& base : bases) {
        const PyRef type = fn_import_class(base.module, base.name);
        const int answer = type ? PyObject_IsInstance(value, type.get()) : -1;
        if (answer != 0) {
            return answer;
        }
    }
    return 0;
}

}  // namespace

constinit PyTypeObject wrpPye_tyds_StreamWrapper = make_type();

void wrpPye_init_fields_stream(PyShStreamObject* self) {
    self->closed_flag = 0;
}

bool wrpPye_uafn_stream_invalidate() {
    return fn_report_host_state(stream_state());
}

bool wrpPye_bltp_stream_is_not_valid(std::string& message) {
    return fn_is_host_state_not_valid(stream_state(), message);
}

int wrpPye_conv_py_to_clr_stream(PyObject* value, VariantArg* arg) {
    if (value == Py_None) {
        arg->kind = 0;
        arg->payload = nullptr;
        return 1;
    }
    if (PyObject_TypeCheck(value, &wrpPye_tyds_StreamWrapper)) {
        arg->kind = 0;
        arg->payload = fn_wrapper_handle(value);
        return 1;
    }
    if (fn_conv_py_obj_to_clr_refobj_not_null_handle(value, &arg->payload) != 0) {
        if (wrpPye_uafn_stream_invalidate()) {
            return 0;
        }
        arg->kind = 0;
        const int fits = stream_host().btp_IsAssignable(arg->payload);
        if (PyErr_Occurred() != nullptr) {
            return 0;
        }
        return fits != 0 ? 1 : refuse_stream(value);
    }
    switch (is_python_stream(value)) {
        case -1:
            return 0;
        case 0:
            return refuse_stream(value);
        default:
            break;
    }
    arg->kind = 2;
    arg->payload = value;
    return 1;
}
