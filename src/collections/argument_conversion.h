#pragma once

#include "marshal/records.h"
#include "startup/cpython.h"

// Python objects as arguments for managed collections: shared by the untyped and the typed converters, all of
// which have the shape of a "O&" converter (1, or 0 with an error). What they write is borrowed from the
// object.

/// Takes a Python object as it is when it offers enough of a protocol; false when it does not.
using TakePythonForm = bool (*)(PyObject* object, VariantArg* out);

bool fn_take_iterator(PyObject* object, VariantArg* out);
bool fn_take_iterable(PyObject* object, VariantArg* out);
bool fn_take_sized_iterable(PyObject* object, VariantArg* out);

/// A list (kind 2), or another sequence that knows its length (kind 3).
bool fn_take_list(PyObject* object, VariantArg* out);

/// An argument declared as a managed interface.
struct InterfaceArgument {
    PyTypeObject* type;                              // its wrapper
    bool (*invalidate)();                            // raises when the type cannot be used
    int (*is_assignable)(const VariantArg* record);  // asks the managed side about any other wrapper
    TakePythonForm take_python_form;                 // null: no Python object stands for it
    const char* name;                                // as the message has it
};
int fn_convert_interface_argument(const InterfaceArgument& argument, PyObject* object, VariantArg* out);

/// An argument declared as a managed class: a list, an array or a collection base.
struct ClassArgument {
    PyTypeObject* type;  // its wrapper; null when it has none
    bool (*invalidate)();
    int (*is_assignable)(void* handle);
    const char* name;
};
int fn_convert_class_argument(const ClassArgument& argument, PyObject* object, VariantArg* out);

/// An argument declared as an enumerable of one element type: wrappers of the same element pass, any other
/// wrapper does not, since no entry point could be asked about it. `types` ends with null.
struct IterableArgument {
    PyTypeObject* const* types;
};
int fn_convert_iterable_argument(const IterableArgument& argument, PyObject* object, VariantArg* out);

/// Asks the managed side whether a wrapper of another type fits. `Passed` is how its host takes the object:
/// by the address of a record where an interface is declared, by handle where a class is.
template <class Host, class Passed>
int fn_is_assignable(Passed object) {
    return Host::get_instance().btp_IsAssignable(object);
}

/// TypeError "can't build <name> value from '<type>'"; 0.
int fn_refuse_argument(const char* name, PyObject* object);
