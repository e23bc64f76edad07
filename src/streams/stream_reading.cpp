#include "streams/stream_reading.h"

#include "streams/stream_host.h"

#include <cstring>
#include <utility>

namespace {

constexpr Py_ssize_t FirstSize = 1024;

// A `bytes` object that is filled from a stream and cut to what was read.
class ReadBuffer {
public:
    ReadBuffer(PyShStreamObject* stream, Py_ssize_t size)
        : m_stream(stream->wrapper.handle), m_bytes(PyBytes_FromStringAndSize(nullptr, size)), m_size(size) {}
    ReadBuffer(const ReadBuffer&) = delete;
    ReadBuffer& operator=(const ReadBuffer&) = delete;
    ~ReadBuffer() { Py_XDECREF(m_bytes); }

    explicit operator bool() const { return m_bytes != nullptr; }
    Py_ssize_t filled() const { return m_filled; }
    bool is_full() const { return m_filled == m_size; }
    const char* data() const { return PyBytes_AS_STRING(m_bytes); }

    // One "Read" into the free space; a count of 0 is the end of the stream. False with an error.
    bool read(int* count) {
        *count = PyHost_ph_Stream::get_instance().read(m_stream, PyBytes_AS_STRING(m_bytes) + m_filled,
                                                       fn_stream_chunk(m_size - m_filled));
        return PyErr_Occurred() == nullptr;
    }

    void accept(int count) { m_filled += count; }

    // Makes room behind what is filled, up to `cap` bytes in all. False with an error.
    bool grow(Py_ssize_t cap) {
        if (m_filled == PY_SSIZE_T_MAX) {
            PyErr_SetString(PyExc_OverflowError,
                            "unbounded read returned more bytes than a Python bytes buffer can hold");
            return false;
        }
        m_size = m_filled + std::min(increment(), cap - m_filled);
        return _PyBytes_Resize(&m_bytes, m_size) == 0;
    }

    // The first `length` bytes, as a new reference; the buffer is empty afterwards.
    PyObject* take(Py_ssize_t length) {
        if (length < m_size) {
            _PyBytes_Resize(&m_bytes, length);
        }
        return std::exchange(m_bytes, nullptr);
    }

private:
    // Small reads grow in steps, middling ones threefold, long ones by an eighth.
    Py_ssize_t increment() const {
        if (m_filled <= 8192) {
            return 4096;
        }
        return m_filled <= 65536 ? 2 * m_filled : std::max<Py_ssize_t>(m_filled / 8, 65536);
    }

    void* m_stream;
    PyObject* m_bytes;
    Py_ssize_t m_size;
    Py_ssize_t m_filled = 0;
};

}  // namespace

PyObject* fn_stream_read_bytes_impl(PyShStreamObject* self, Py_ssize_t limit) {
    ReadBuffer buffer(self, limit < 0 ? FirstSize : limit);
    while (buffer) {
        int count = 0;
        if (!buffer.read(&count)) {
            return nullptr;
        }
        if (count == 0) {
            break;
        }
        buffer.accept(count);
        if (buffer.filled() == limit) {
            break;
        }
        if (buffer.is_full() && !buffer.grow(PY_SSIZE_T_MAX)) {
            return nullptr;
        }
    }
    return buffer ? buffer.take(buffer.filled()) : nullptr;
}

PyObject* fn_stream_read_line_impl(PyShStreamObject* self, Py_ssize_t limit) {
    const bool is_limited = limit >= 0 && limit < PY_SSIZE_T_MAX;
    ReadBuffer buffer(self, is_limited ? std::min(limit, FirstSize) : FirstSize);
    while (buffer) {
        int count = 0;
        if (!buffer.read(&count)) {
            return nullptr;
        }
        if (count == 0) {
            break;
        }
        const char* added = buffer.data() + buffer.filled();
        const void* line_feed = std::memchr(added, '\n', static_cast<std::size_t>(count));
        buffer.accept(count);
        if (line_feed != nullptr) {
            const Py_ssize_t line = static_cast<const char*>(line_feed) + 1 - buffer.data();
            if (line < buffer.filled()) {
                PyHost_ph_Stream::get_instance().seek(self->wrapper.handle, line - buffer.filled(), 1);
                if (PyErr_Occurred() != nullptr) {
                    return nullptr;
                }
            }
            return buffer.take(line);
        }
        if (buffer.filled() == limit) {
            break;
        }
        if (buffer.is_full() && !buffer.grow(is_limited ? limit : PY_SSIZE_T_MAX)) {
            return nullptr;
        }
    }
    return buffer ? buffer.take(buffer.filled()) : nullptr;
}
