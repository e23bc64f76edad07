#pragma once

#include "startup/cpython.h"
#include "wrappers/clr_object.h"

#include <cstddef>

// How one Python callable stands for all overloads of a managed one. The told way tries the overloads in
// managed order, each with its parse, and keeps a message for each refusal. Making those messages costs far
// more than the call, so a quick look at the arguments' types comes first: an overload that surely refuses is
// passed over, and one that surely accepts is called. Where a look cannot tell, the told way decides from the
// first overload on.

/// What a parameter takes, as far as a look at a value's type can tell.
enum class Accepts : unsigned char {
    text,
    bytes,
    real,
    integer,
    boolean,
    variant,
    enumeration,
    object,     // a class: None, the type or a subtype, or what managed code calls assignable
    value,      // a struct: the type itself, or what managed code calls assignable
    interface,  // None, the interface's wrapper, or what implements it
    stream,
    list_like,
    by_list,
    anything,  // never decided by a look
};

/// One parameter of an overload. `type` is the wrapper type; an enum's class exists only from the import on,
/// so it is reached through `enum_type`.
struct ParameterSpec {
    const char* name;
    Accepts accepts;
    PyTypeObject* type = nullptr;
    PyTypeObject* const* enum_type = nullptr;
};

enum class Attempt : unsigned char {
    refused,  // the arguments do not fit: an exception is set and the next overload is due
    failed,   // called, and an exception is set
    done,     // called; a method's result is stored, a constructor's handle is in the wrapper
};

/// Parses the arguments for one overload and calls it. `result` takes a method's result and is null for
/// constructors.
using AttemptFn = Attempt (*)(PyClrObject* self, PyObject* args, PyObject* kwargs, PyObject** result);

struct OverloadRow {
    AttemptFn attempt;
    const ParameterSpec* parameters;
    std::size_t count;
    PyObject** interned;  // `count` interned keywords, made when first needed
};

/// One more attempt behind the rows, of a base interface's method; it fills `error` with the exception value
/// when it refuses.
using InheritedAttemptFn = Attempt (*)(PyObject* self, PyObject* args, PyObject* kwargs, PyObject** error,
                                       PyObject** result);

/// Calls the first overload that accepts. False leaves an exception set: that of the call, or a TypeError
/// whose value is the list of all refusals.
bool fn_dispatch(PyClrObject* self, PyObject* args, PyObject* kwargs, const OverloadRow* rows,
                 std::size_t count, PyObject** result, InheritedAttemptFn inherited = nullptr);

/// A method group's result: the call's, or null with an exception set.
template <std::size_t N>
PyObject* fn_dispatch_method(PyObject* self, PyObject* args, PyObject* kwargs, const OverloadRow (&rows)[N],
                             InheritedAttemptFn inherited = nullptr) {
    PyObject* result = nullptr;
    return fn_dispatch(reinterpret_cast<PyClrObject*>(self), args, kwargs, rows, N, &result, inherited)
               ? result
               : nullptr;
}

/// A constructor group's result: 0, or -1 with an exception set.
template <std::size_t N>
int fn_dispatch_constructor(PyObject* self, PyObject* args, PyObject* kwargs, const OverloadRow (&rows)[N]) {
    return fn_dispatch(reinterpret_cast<PyClrObject*>(self), args, kwargs, rows, N, nullptr) ? 0 : -1;
}

/// How an attempt ends that has made its result.
inline Attempt fn_attempted(PyObject* made, PyObject** result) {
    *result = made;
    return made == nullptr ? Attempt::failed : Attempt::done;
}

/// How a constructor's attempt ends: the managed object goes into the wrapper unless the call failed.
inline Attempt fn_constructed(PyClrObject* self, void* handle) {
    self->handle = handle;
    return PyErr_Occurred() != nullptr ? Attempt::failed : Attempt::done;
}

/// How a base interface's attempt refuses: the exception value goes to the slot that the caller gave.
inline Attempt fn_refused(PyObject** error) {
    *error = fn_take_pending_error();
    return Attempt::refused;
}
