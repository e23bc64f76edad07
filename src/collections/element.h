#pragma once

#include <type_traits>

#include "marshal/bytes.h"
#include "marshal/numbers.h"
#include "marshal/records.h"
#include "marshal/strings.h"
#include "startup/cpython.h"
#include "wrappers/results.h"
#include "wrappers/variant.h"

// How one element of a managed collection crosses the boundary, by the form of its type. An element type has:
//
//   In             what a conversion from Python fills; lives on the caller's stack and cleans up after
//   itself Passed         how that goes to an entry point Out            what an entry point gives
//   ItemUnchecked  the signature of the unchecked read
//   convert        Python to In: 1, or 0 with an error; what it fills may borrow from the Python object
//   pass           In to Passed
//   to_python      Out to a new reference, or null with an error; consumes a handle

/// The signature of the unchecked read of everything but interfaces.
template <class Out>
using ItemByResult = Out(void*, int);

/// A machine value, passed and returned as it is.
template <class T, int (*Convert)(PyObject*, T*), PyObject* (*ToPython)(T)>
struct ValueElement {
    using In = T;
    using Passed = T;
    using Out = T;
    using ItemUnchecked = ItemByResult<Out>;
    static int convert(PyObject* value, In* out) { return Convert(value, out); }
    static Passed pass(const In& in) { return in; }
    static PyObject* to_python(Out out) { return ToPython(out); }
};

inline PyObject* fn_element_from_int(int value) {
    return PyLong_FromLong(value);
}
inline PyObject* fn_element_from_ushort(unsigned short value) {
    return PyLong_FromUnsignedLong(value);
}
inline PyObject* fn_element_from_uint(unsigned int value) {
    return PyLong_FromUnsignedLong(value);
}
inline PyObject* fn_element_from_short(short value) {
    return PyLong_FromLong(value);
}
inline PyObject* fn_element_from_bool(bool value) {
    return PyBool_FromLong(value);
}

using DoubleElement = ValueElement<double, fn_conv_py_float_to_clr_double, PyFloat_FromDouble>;
using IntElement = ValueElement<int, fn_conv_py_long_to_clr_int32, fn_element_from_int>;
using UShortElement = ValueElement<unsigned short, fn_conv_py_ulong_to_clr_uint16, fn_element_from_ushort>;
using UIntElement = ValueElement<unsigned int, fn_conv_py_ulong_to_clr_uint32, fn_element_from_uint>;
using ShortElement = ValueElement<short, fn_conv_py_long_to_clr_int16, fn_element_from_short>;
using BoolElement = ValueElement<bool, fn_conv_py_bool_to_clr_bool, fn_element_from_bool>;

/// A value that goes in as a record and comes out as a Python object that the managed side made.
template <class Record, int (*Convert)(PyObject*, Record*)>
struct RecordElement {
    using In = Record;
    using Passed = const Record*;
    using Out = PyObject*;
    using ItemUnchecked = ItemByResult<Out>;
    static int convert(PyObject* value, In* out) { return Convert(value, out); }
    static Passed pass(const In& in) { return &in; }
    static PyObject* to_python(Out out) { return out; }
};

using StringElement = RecordElement<PyStringArg, fn_conv_py_string_to_clr_string>;
using VariantElement = RecordElement<VariantArg, fn_conv_py_variant_to_clr_variant>;

/// A byte array: the builder holds the buffer for the length of the call.
struct BytesElement {
    using In = PyBytesArgBuilder;
    using Passed = const PyBytesArg*;
    using Out = PyObject*;
    using ItemUnchecked = ItemByResult<Out>;
    static int convert(PyObject* value, In* out) { return fn_conv_py_bytes_to_clr_bytes(value, out); }
    static Passed pass(In& in) { return in.get_info(); }
    static PyObject* to_python(Out out) { return out; }
};

/// A struct or an array: a record in the reference form goes in, a handle comes out.
template <int (*Convert)(PyObject*, VariantArg*), PyObject* (*ToPython)(void*)>
struct HandleRecordElement {
    using In = VariantArg;
    using Passed = const VariantArg*;
    using Out = void*;
    using ItemUnchecked = ItemByResult<Out>;
    static int convert(PyObject* value, In* out) { return Convert(value, out); }
    static Passed pass(const In& in) { return &in; }
    static PyObject* to_python(Out out) { return ToPython(out); }
};

/// A class: bare handles both ways, borrowed going in, owned coming out.
template <int (*Convert)(PyObject*, void**), PyObject* (*ToPython)(void*)>
struct ClassElement {
    using In = void*;
    using Passed = void*;
    using Out = void*;
    using ItemUnchecked = ItemByResult<Out>;
    static int convert(PyObject* value, In* out) { return Convert(value, out); }
    static Passed pass(const In& in) { return in; }
    static PyObject* to_python(Out out) { return ToPython(out); }
};

/// A class whose objects only come out: there is an enumerator of it and nothing else.
template <PyObject* (*ToPython)(void*)>
struct OutgoingClassElement {
    using Out = void*;
    static PyObject* to_python(Out out) { return ToPython(out); }
};

/// An interface: a record in the reference form goes in, a handle with its type key comes out.
template <int (*Convert)(PyObject*, VariantArg*), PyObject* (*ToPython)(const PyObjectOutArg&)>
struct InterfaceElement {
    using In = VariantArg;
    using Passed = const VariantArg*;
    using Out = PyObjectOutArg;
    using ItemUnchecked = void(void*, int, PyObjectOutArg*);
    static int convert(PyObject* value, In* out) { return Convert(value, out); }
    static Passed pass(const In& in) { return &in; }
    static PyObject* to_python(const Out& out) { return ToPython(out); }
};

/// Wraps a handle as exactly `Type`; null is None.
template <PyTypeObject& Type>
PyObject* fn_wrap_handle(void* handle) {
    return fn_conv_clr_clsobj_to_py_clsobj(handle, &Type);
}

/// Reads an element whose index is known to be inside; a new reference, or null with an error.
template <class Element, class Host>
PyObject* fn_read_element_unchecked(const Host& host, void* handle, int index) {
    using Out = typename Element::Out;
    Out out{};
    if constexpr (std::is_same_v<typename Element::ItemUnchecked, ItemByResult<Out>>) {
        out = host.sq_item_nocheck(handle, index);
    } else {
        host.sq_item_nocheck(handle, index, &out);
    }
    if (PyErr_Occurred() != nullptr) {
        return nullptr;
    }
    return Element::to_python(out);
}
