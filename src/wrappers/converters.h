#pragma once

#include "marshal/records.h"
#include "startup/cpython.h"
#include "wrappers/clr_object.h"

// The bodies of the generated argument converters, `wrpPy_conv_py_to_clr_<Tag>_<T>`, in the form of an "O&"
// converter: 1 with the target written, 0 with an error set. What decides most calls, an object of exactly
// the declared type, is inline; the rest is in one place for all types. A generated converter is
//
//     int wrpPy_conv_py_to_clr_0B_Node(PyObject* value, void** out) {
//         return fn_conv_py_to_clr_class<PyHost_cs_0B_Node>(value, out, {&wrpPy_tyds_0B_Node, "Node",
//                                                            wrpPy_uafn_0B_Node_invalidate});
//     }

/// What a converter must know of the declared type.
struct DeclaredType {
    PyTypeObject* type;
    const char* short_name;  // in "can't build <name> value from '%s'"
    bool (*invalidate)();    // raises when the type cannot be used; asked before the managed side is
};

namespace converters_detail {

int class_slow(PyObject* value, void** out, const DeclaredType& declared, int (*is_assignable)(void*));
int struct_slow(PyObject* value, VariantArg* out, const DeclaredType& declared,
                int (*is_assignable)(VariantArg*));
int interface_slow(PyObject* value, VariantArg* out, const DeclaredType& declared,
                   int (*is_assignable)(VariantArg*));

/// TypeError "can't build <name> value from '%s'"; 0.
int refuse(PyObject* value, const char* short_name);

inline int take_handle(PyObject* value, VariantArg* out, int tag) {
    out->kind = tag;
    out->payload = fn_wrapper_handle(value);
    return 1;
}

}  // namespace converters_detail

/// A class: None is a null handle; the type or a subtype gives its handle; another wrapper of a reference
/// gives its handle when managed code says that it fits.
template <typename Host>
inline int fn_conv_py_to_clr_class(PyObject* value, void** out, const DeclaredType& declared) {
    if (Py_TYPE(value) == declared.type) [[likely]] {
        *out = fn_wrapper_handle(value);
        return 1;
    }
    return converters_detail::class_slow(value, out, declared, [](void* handle) {
        return static_cast<int>(Host::get_instance().btp_IsAssignable(handle));
    });
}

/// A struct: None is refused; the type gives its handle with tag 1; another wrapper when managed code says
/// so.
template <typename Host>
inline int fn_conv_py_to_clr_struct(PyObject* value, VariantArg* out, const DeclaredType& declared) {
    if (Py_TYPE(value) == declared.type) [[likely]] {
        return converters_detail::take_handle(value, out, 1);
    }
    return converters_detail::struct_slow(value, out, declared, [](VariantArg* record) {
        return static_cast<int>(Host::get_instance().btp_IsAssignable(record));
    });
}

/// An interface: None is a null handle; the interface's own wrapper and those of this module that list it
/// give their handle without a managed call; another wrapper when managed code says so.
template <typename Host>
inline int fn_conv_py_to_clr_interface(PyObject* value, VariantArg* out, const DeclaredType& declared) {
    if (Py_TYPE(value) == declared.type) [[likely]] {
        return converters_detail::take_handle(value, out, 0);
    }
    return converters_detail::interface_slow(value, out, declared, [](VariantArg* record) {
        return static_cast<int>(Host::get_instance().btp_IsAssignable(record));
    });
}

/// An enum: members of the class alone; a plain `int` is refused, and so is None.
int fn_conv_py_to_clr_enum(PyObject* value, int* out, PyTypeObject* enum_class, const char* short_name);

/// A flag enum, which crosses as a byte.
int fn_conv_py_to_clr_flags(PyObject* value, unsigned char* out, PyTypeObject* enum_class,
                            const char* short_name);

/// The member of an enum class with a value that managed code gave; ValueError when there is none.
PyObject* fn_conv_clr_enum_to_py(int value, PyTypeObject* enum_class);

/// The member, or the composite, of a flag enum.
PyObject* fn_conv_clr_flags_to_py(unsigned char value, PyTypeObject* enum_class);
