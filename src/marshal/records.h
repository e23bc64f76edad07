#pragma once

#include "exchange/text.h"
#include "startup/cpython.h"

#include <cstddef>
#include <cstdint>

// The records by which values cross to the managed side. Field order, widths and offsets are a wire format:
// the managed assembly declares the same layouts. None of the crossing records owns anything; what they point
// to lives as long as the call.

/// A managed reference, struct, interface, array, stream or open value.
///
/// Value form (open types): `kind` tells the Python type, `payload` is the Python object, borrowed, but for
/// kinds 1 and 2, where it is the wrapper's handle. Reference form (everything else): 0 a handle or null, 1 a
/// struct's handle, 2 a Python object that managed code wraps in an adapter, 3 a Python sequence that is no
/// list.
struct VariantArg {
    std::int32_t kind = 0;
    std::uint32_t reserved = 0;
    void* payload = nullptr;
};

static_assert(sizeof(VariantArg) == 16 && alignof(VariantArg) == 8);
static_assert(offsetof(VariantArg, kind) == 0);
static_assert(offsetof(VariantArg, payload) == 8);

/// A string that may have been made for this call only.
struct PyEphStrArg {
    PyStringArg text;
    PyObject* owner = nullptr;  // a new reference to the intermediate `str`, or null
};

static_assert(sizeof(PyEphStrArg) == 24 && alignof(PyEphStrArg) == 8);
static_assert(offsetof(PyEphStrArg, text) == 0);
static_assert(offsetof(PyEphStrArg, owner) == 16);

/// A byte array: the bytes of an exported buffer.
struct PyBytesArg {
    std::int32_t buffer_held = 0;  // 1 once the buffer is acquired, and so must be released
    std::int32_t length = -1;      // bytes; -1 for a null array
    const void* bytes = nullptr;
};

static_assert(sizeof(PyBytesArg) == 16 && alignof(PyBytesArg) == 8);
static_assert(offsetof(PyBytesArg, buffer_held) == 0);
static_assert(offsetof(PyBytesArg, length) == 4);
static_assert(offsetof(PyBytesArg, bytes) == 8);

/// Out: a collection, or an abstract object that may be a Python object of the caller's own. `kind` 0 a
/// handle, 1 a handle whose run-time type must be looked up (a struct is boxed first), 2 a PyObject* that
/// passes back as it is.
struct PyCollectionArg {
    std::int32_t kind = 0;
    std::uint32_t reserved = 0;
    void* handle = nullptr;
    std::uint64_t type_key = 0;
};

static_assert(sizeof(PyCollectionArg) == 24 && alignof(PyCollectionArg) == 8);
static_assert(offsetof(PyCollectionArg, kind) == 0);
static_assert(offsetof(PyCollectionArg, handle) == 8);
static_assert(offsetof(PyCollectionArg, type_key) == 16);

/// Out: an object of an interface type.
struct PyObjectOutArg {
    void* handle = nullptr;
    std::uint64_t type_key = 0;
};

static_assert(sizeof(PyObjectOutArg) == 16 && alignof(PyObjectOutArg) == 8);
static_assert(offsetof(PyObjectOutArg, handle) == 0);
static_assert(offsetof(PyObjectOutArg, type_key) == 8);

/// A version number, either way.
struct PySysVersionArg {
    static constexpr int MaxCount = 4;

    std::int32_t count = -1;            // 2 to 4 on the way in; -1 for a null version
    std::int32_t parts[MaxCount] = {};  // major, minor, build, revision; the first `count` count
};

static_assert(sizeof(PySysVersionArg) == 20 && alignof(PySysVersionArg) == 4);
static_assert(offsetof(PySysVersionArg, count) == 0);
static_assert(offsetof(PySysVersionArg, parts) == 4);

/// The form of a converter for "O&": 1 with the target written, 0 with a Python error set.
using PyConverter = int (*)(PyObject* value, void* target);

/// A nullable argument (native only): the value's own converter around a has-value flag.
struct PyNullableArg {
    std::int32_t has_value;
    PyConverter converter;
    void* target;

    template <typename T>
    static PyNullableArg to(int (*value_converter)(PyObject*, T*), T* value) {
        return {0, reinterpret_cast<PyConverter>(value_converter), value};
    }
};

static_assert(offsetof(PyNullableArg, has_value) == 0);
static_assert(offsetof(PyNullableArg, converter) == 8);
static_assert(offsetof(PyNullableArg, target) == 16);

/// A by-reference argument (native only): the caller's list, borrowed, and the converter of the value in it.
struct PyParamByRef {
    PyObject* list;
    PyConverter converter;
    void* target;

    template <typename T>
    static PyParamByRef to(int (*value_converter)(PyObject*, T*), T* value) {
        return {nullptr, reinterpret_cast<PyConverter>(value_converter), value};
    }
};

static_assert(offsetof(PyParamByRef, list) == 0);
static_assert(offsetof(PyParamByRef, converter) == 8);
static_assert(offsetof(PyParamByRef, target) == 16);

/// Owns the buffer export behind a PyBytesArg: a buffer that was acquired is released, refused afterwards or
/// not.
class PyBytesArgBuilder {
public:
    PyBytesArgBuilder() = default;
    PyBytesArgBuilder(const PyBytesArgBuilder&) = delete;
    PyBytesArgBuilder& operator=(const PyBytesArgBuilder&) = delete;
    ~PyBytesArgBuilder() {
        if (m_info.buffer_held != 0) {
            PyBuffer_Release(&m_view);
        }
    }

    PyBytesArg* get_info() { return &m_info; }
    Py_buffer* get_view() { return &m_view; }

private:
    Py_buffer m_view;  // written only when the buffer is acquired
    PyBytesArg m_info;
};

static_assert(sizeof(Py_buffer) == 80 && sizeof(PyBytesArgBuilder) == 96);

/// Owns the intermediate `str` behind a PyEphStrArg, whose length is 0 at first.
class PyEphStrArgBuilder {
public:
    PyEphStrArgBuilder() = default;
    PyEphStrArgBuilder(const PyEphStrArgBuilder&) = delete;
    PyEphStrArgBuilder& operator=(const PyEphStrArgBuilder&) = delete;
    ~PyEphStrArgBuilder() { Py_XDECREF(m_info.owner); }

    PyEphStrArg* get_info() { return &m_info; }

private:
    PyEphStrArg m_info{{0, 0, nullptr}, nullptr};
};

/// The target of a capsule's converter whose managed handle lives in an interim Python object.
class PyInterimArgBuilder {
public:
    PyInterimArgBuilder() = default;
    PyInterimArgBuilder(const PyInterimArgBuilder&) = delete;
    PyInterimArgBuilder& operator=(const PyInterimArgBuilder&) = delete;
    ~PyInterimArgBuilder() { Py_XDECREF(owner); }

    void* handle = nullptr;     // the owner's, borrowed; goes to the managed side by value
    PyObject* owner = nullptr;  // dropped here
};

static_assert(sizeof(PyInterimArgBuilder) == 16);
