#include "streams/rawio_callbacks.h"

#include "marshal/numbers.h"
#include "startup/identifiers.h"
#include "startup/py_ref.h"
#include "startup/report.h"
#include "streams/buffer_view.h"

namespace {

constexpr char ClosedFailure[] = "An error occurred while checking if the stream is closed";
constexpr char LengthFailure[] = "While calculating the length of the stream, an error occurred.";

// Answers of the callbacks beside their values.
constexpr int Failed = -1;
constexpr int ByteEnd = -1;
constexpr int ByteFailed = -2;
constexpr int LengthNotSeekable = -2;
constexpr int LengthClosed = -3;

PyObject* call(PyObject* stream, PyObject* method) {
    return PyObject_CallMethodObjArgs(stream, method, nullptr);
}

// `stream.method(view)` over the memory. The view's reference is given up: a stream that keeps the view must
// find it alive, though it must not look at the memory any more.
PyRef call_with_view(PyObject* stream, PyObject* method, void* data, int count, int readonly) {
    PyObject* view = fn_create_shlbuffer_view(data, count, readonly);
    return PyRef::steal(view != nullptr ? PyObject_CallMethodObjArgs(stream, method, view, nullptr)
                                        : nullptr);
}

// A position that a stream answered. On success the answer's reference is given up.
std::int64_t take_position(PyRef answer) {
    std::int64_t position = 0;
    if (!answer || fn_conv_py_long_to_clr_int64(answer.get(), &position) == 0) {
        return Failed;
    }
    [[maybe_unused]] PyObject* given_up = answer.release();
    return position;
}

PyRef call_seek(PyObject* stream, std::int64_t offset, int whence) {
    const PyRef py_offset = PyRef::steal(PyLong_FromLongLong(offset));
    const PyRef py_whence = PyRef::steal(PyLong_FromLong(whence));
    if (!py_offset || !py_whence) {
        return {};
    }
    return PyRef::steal(
        PyObject_CallMethodObjArgs(stream, PyWrpIdRawIo_Seek, py_offset.get(), py_whence.get(), nullptr));
}

// 1 or 0, or -1 with an error that names the test.
int is_closed(PyObject* stream) {
    const PyRef closed = PyRef::steal(PyObject_GetAttr(stream, PyWrpIdRawIo_Closed));
    bool value = false;
    if (!closed || fn_conv_py_bool_to_clr_bool(closed.get(), &value) == 0) {
        PyShlErr_ChainFormat(PyExc_TypeError, ClosedFailure);
        return Failed;
    }
    return value ? 1 : 0;
}

// The answer of a method that tells yes or no: 1 or 0, or -1 with an error.
int ask(PyObject* stream, PyObject* method) {
    const PyRef answer = PyRef::steal(call(stream, method));
    bool value = false;
    if (!answer || fn_conv_py_bool_to_clr_bool(answer.get(), &value) == 0) {
        return Failed;
    }
    return value ? 1 : 0;
}

// A closed stream can do nothing, whatever its methods would say.
int ask_open_stream(PyObject* stream, PyObject* method) {
    const int closed = is_closed(stream);
    if (closed != 0) {
        return closed == Failed ? Failed : 0;
    }
    return ask(stream, method);
}

// The end of a stream that can seek, which is left where it was. False with an error.
bool measure(PyObject* stream, std::int64_t* length) {
    const PyRef saved = call_seek(stream, 0, 1);
    if (!saved) {
        return false;
    }
    const PyRef end = call_seek(stream, 0, 2);
    if (!end) {
        return false;
    }
    const PyRef restored =
        PyRef::steal(PyObject_CallMethodObjArgs(stream, PyWrpIdRawIo_Seek, saved.get(), nullptr));
    return restored && fn_conv_py_long_to_clr_int64(end.get(), length) != 0;
}

}  // namespace

int fn_clbk_rawio_write(PyObject* stream, const void* data, int count) {
    const PyRef answer = call_with_view(stream, PyWrpIdRawIo_Write, const_cast<void*>(data), count, 1);
    if (!answer) {
        return Failed;
    }
    if (answer.get() == Py_None) {
        return 0;
    }
    std::int32_t written = 0;
    return fn_conv_py_long_to_clr_int32(answer.get(), &written) != 0 ? written : Failed;
}

int fn_clbk_rawio_write_byte(PyObject* stream, int value) {
    const auto byte = static_cast<unsigned char>(value);
    return fn_clbk_rawio_write(stream, &byte, 1);
}

int fn_clbk_rawio_read(PyObject* stream, void* data, int count) {
    PyRef answer = call_with_view(stream, PyWrpIdRawIo_ReadInto, data, count, 0);
    if (!answer) {
        return Failed;
    }
    if (answer.get() == Py_None) {
        // Unlike in writing, this reference is given up.
        [[maybe_unused]] PyObject* given_up = answer.release();
        return 0;
    }
    std::int32_t read = 0;
    return fn_conv_py_long_to_clr_int32(answer.get(), &read) != 0 ? read : Failed;
}

int fn_clbk_rawio_readbyte(PyObject* stream) {
    unsigned char byte = 0;
    const PyRef answer = call_with_view(stream, PyWrpIdRawIo_ReadInto, &byte, 1, 0);
    if (!answer) {
        return ByteFailed;
    }
    if (answer.get() == Py_None) {
        PyErr_SetString(PyExc_OSError, "no bytes are available for reading");
        return ByteFailed;
    }
    std::int32_t read = 0;
    if (fn_conv_py_long_to_clr_int32(answer.get(), &read) == 0) {
        return ByteFailed;
    }
    return read == 0 ? ByteEnd : byte;
}

std::int64_t fn_clbk_rawio_seek(PyObject* stream, std::int64_t offset, int whence) {
    return take_position(call_seek(stream, offset, whence));
}

std::int64_t fn_clbk_rawio_tell(PyObject* stream) {
    return take_position(PyRef::steal(call(stream, PyWrpIdRawIo_Tell)));
}

int fn_clbk_rawio_flush(PyObject* stream) {
    return PyRef::steal(call(stream, PyWrpIdRawIo_Flush)) ? 0 : Failed;
}

void fn_clbk_rawio_close(PyObject* stream) {
    PyObject *type = nullptr, *value = nullptr, *traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    if (!PyRef::steal(call(stream, PyWrpIdRawIo_Close))) {
        PyErr_WriteUnraisable(stream);
    }
    PyErr_Restore(type, value, traceback);
}

int fn_clbk_rawio_readable(PyObject* stream) {
    return ask_open_stream(stream, PyWrpIdRawIo_Readable);
}
int fn_clbk_rawio_writable(PyObject* stream) {
    return ask_open_stream(stream, PyWrpIdRawIo_Writable);
}
int fn_clbk_rawio_seekable(PyObject* stream) {
    return ask_open_stream(stream, PyWrpIdRawIo_Seekable);
}

std::int64_t fn_clbk_rawio_length(PyObject* stream) {
    const int closed = is_closed(stream);
    if (closed != 0) {
        return closed == Failed ? Failed : LengthClosed;
    }
    const int seekable = ask(stream, PyWrpIdRawIo_Seekable);
    if (seekable == 0) {
        return LengthNotSeekable;
    }
    std::int64_t length = 0;
    if (seekable == Failed || !measure(stream, &length)) {
        PyShlErr_ChainFormat(PyExc_TypeError, LengthFailure);
        return Failed;
    }
    return length;
}
