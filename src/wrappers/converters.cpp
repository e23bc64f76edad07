#include "wrappers/converters.h"

#include "startup/py_ref.h"
#include "wrappers/markers.h"

namespace {

bool is_of(PyObject* value, PyTypeObject* type) {
    return Py_TYPE(value) == type || PyType_IsSubtype(Py_TYPE(value), type);
}

// A wrapper of this module whose type lists the interface: no managed call is needed.
bool take_implementation(PyObject* value, VariantArg* out, PyTypeObject* type) {
    int tag = 0;
    if (!fn_is_this_module_clr_instance(value, &tag) || !fn_contains_additional_ifc_markattr(value, type)) {
        return false;
    }
    converters_detail::take_handle(value, out, tag);
    return true;
}

// Any other wrapper, as far as the managed side lets it pass; the last step of structs and interfaces.
int ask_managed(PyObject* value, VariantArg* out, const DeclaredType& declared,
                int (*is_assignable)(VariantArg*)) {
    if (fn_conv_py_obj_to_clr_gen_not_null_handle(value, out) != 0) {
        if (declared.invalidate()) {
            return 0;
        }
        const bool fits = is_assignable(out) != 0;
        if (PyErr_Occurred() != nullptr) {
            return 0;
        }
        if (fits) {
            return 1;
        }
    }
    return converters_detail::refuse(value, declared.short_name);
}

// The member that the class itself keeps for a value, borrowed; null when there is none. The table behind
// this is the enum machinery's own, and asking it is many times faster than a call of the class.
PyObject* find_member(PyTypeObject* enum_class, PyObject* number) {
    static PyObject* const table_name = PyUnicode_InternFromString("_value2member_map_");
    PyObject* dictionary = fn_type_own_dict(enum_class);
    PyObject* members = dictionary != nullptr ? PyDict_GetItem(dictionary, table_name) : nullptr;
    return members != nullptr && PyDict_Check(members) ? PyDict_GetItem(members, number) : nullptr;
}

PyObject* member_of(PyTypeObject* enum_class, PyObject* number) {
    if (number == nullptr) {
        return nullptr;
    }
    if (PyObject* member = find_member(enum_class, number)) {
        Py_DECREF(number);
        return fn_new_ref(member);
    }
    // The number's reference is given up here: enum values are small integers, which Python keeps anyway.
    return PyObject_CallFunctionObjArgs(reinterpret_cast<PyObject*>(enum_class), number, nullptr);
}

bool read_member(PyObject* value, int* out) {
    const long number = PyLong_AsLong(value);
    if (number == -1 && PyErr_Occurred() != nullptr) {
        return false;
    }
    *out = static_cast<int>(number);
    return true;
}

bool read_member(PyObject* value, unsigned char* out) {
    const unsigned long number = PyLong_AsUnsignedLong(value);
    if (number == static_cast<unsigned long>(-1) && PyErr_Occurred() != nullptr) {
        return false;
    }
    *out = static_cast<unsigned char>(number);
    return true;
}

template <typename Number>
int convert_member(PyObject* value, Number* out, PyTypeObject* enum_class, const char* short_name) {
    if (!is_of(value, enum_class)) {
        return converters_detail::refuse(value, short_name);
    }
    return read_member(value, out) ? 1 : 0;
}

}  // namespace

namespace converters_detail {

int refuse(PyObject* value, const char* short_name) {
    PyErr_Format(PyExc_TypeError, "can't build %s value from '%s'", short_name, Py_TYPE(value)->tp_name);
    return 0;
}

int class_slow(PyObject* value, void** out, const DeclaredType& declared, int (*is_assignable)(void*)) {
    if (value == Py_None) {
        *out = nullptr;
        return 1;
    }
    if (PyType_IsSubtype(Py_TYPE(value), declared.type)) {
        *out = fn_wrapper_handle(value);
        return 1;
    }
    if (fn_conv_py_obj_to_clr_refobj_not_null_handle(value, out) != 0) {
        if (declared.invalidate()) {
            return 0;
        }
        const bool fits = is_assignable(*out) != 0;
        if (PyErr_Occurred() != nullptr) {
            return 0;
        }
        if (fits) {
            return 1;
        }
    }
    return refuse(value, declared.short_name);
}

int struct_slow(PyObject* value, VariantArg* out, const DeclaredType& declared,
                int (*is_assignable)(VariantArg*)) {
    return ask_managed(value, out, declared, is_assignable);
}

int interface_slow(PyObject* value, VariantArg* out, const DeclaredType& declared,
                   int (*is_assignable)(VariantArg*)) {
    if (value == Py_None) {
        out->kind = 0;
        out->payload = nullptr;
        return 1;
    }
    if (take_implementation(value, out, declared.type)) {
        return 1;
    }
    return ask_managed(value, out, declared, is_assignable);
}

}  // namespace converters_detail

int fn_conv_py_to_clr_enum(PyObject* value, int* out, PyTypeObject* enum_class, const char* short_name) {
    return convert_member(value, out, enum_class, short_name);
}

int fn_conv_py_to_clr_flags(PyObject* value, unsigned char* out, PyTypeObject* enum_class,
                            const char* short_name) {
    return convert_member(value, out, enum_class, short_name);
}

PyObject* fn_conv_clr_enum_to_py(int value, PyTypeObject* enum_class) {
    return member_of(enum_class, PyLong_FromLong(value));
}

PyObject* fn_conv_clr_flags_to_py(unsigned char value, PyTypeObject* enum_class) {
    return member_of(enum_class, PyLong_FromUnsignedLong(value));
}
