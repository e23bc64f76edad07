#include "wrappers/clr_object.h"

#include "exchange/exchange_host.h"
#include "exchange/object_host.h"
#include "marshal/records.h"
#include "startup/identifiers.h"
#include "startup/py_ref.h"
#include "wrappers/capsules.h"
#include "wrappers/markers.h"

#include <cstdint>

namespace {

// What the two sets of slots do differently.

struct ReferenceKind {
    static void free(void* handle) { ExchangeHost::get_instance().free_instance(handle); }
    static int text(void* handle, void** out) {
        return ObjectHost::get_instance().to_string_of_obj(handle, out);
    }
    static std::int32_t hash(void* handle) { return ObjectHost::get_instance().get_hash_code_of_obj(handle); }
    static int equals(void* handle, VariantArg* other) {
        return ObjectHost::get_instance().equals_of_obj(handle, other);
    }
    static int type(void* handle, void** out) { return ObjectHost::get_instance().get_obj_type(handle, out); }
};

struct ValueKind {
    static void free(void* handle) { ExchangeHost::get_instance().free_struct(handle); }
    static int text(void* handle, void** out) {
        return ObjectHost::get_instance().to_string_of_stc(handle, out);
    }
    static std::int32_t hash(void* handle) { return ObjectHost::get_instance().get_hash_code_of_stc(handle); }
    static int equals(void* handle, VariantArg* other) {
        return ObjectHost::get_instance().equals_of_stc(handle, other);
    }
    static int type(void* handle, void** out) { return ObjectHost::get_instance().get_stc_type(handle, out); }
};

template <typename Kind>
void dealloc(PyObject* self) {
    void*& handle = fn_wrapper_handle(self);
    if (handle != nullptr) {
        Kind::free(handle);
        handle = nullptr;
    }
    Py_TYPE(self)->tp_free(self);
}

template <typename Kind>
Py_hash_t hash(PyObject* self) {
    const Py_hash_t value = Kind::hash(fn_wrapper_handle(self));
    if (PyErr_Occurred() != nullptr) {
        return -1;
    }
    return value == -1 ? -2 : value;
}

template <typename Kind>
PyObject* managed_text(PyObject* self) {
    void* text = nullptr;
    if (Kind::text(fn_wrapper_handle(self), &text) == 1) {
        return static_cast<PyObject*>(text);
    }
    if (PyErr_Occurred() != nullptr) {
        return nullptr;
    }
    return PyUnicode_FromFormat("<%s object at %p>", Py_TYPE(self)->tp_name, static_cast<void*>(self));
}

// Python asks for the text also while it formats an exception: that exception must survive, whatever the
// managed call does.
template <typename Kind>
PyObject* text(PyObject* self) {
    if (PyErr_Occurred() == nullptr) {
        return managed_text<Kind>(self);
    }
    PyObject *type = nullptr, *value = nullptr, *traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyObject* result = managed_text<Kind>(self);
    if (PyErr_Occurred() != nullptr) {
        PyErr_WriteUnraisable(PyWrpIdTraceBack_FormatExceptionWarning);
    }
    PyErr_Restore(type, value, traceback);
    return result;
}

template <typename Kind>
PyObject* rich_compare(PyObject* self, PyObject* other, int operation) {
    if (operation != Py_EQ && operation != Py_NE) {
        Py_RETURN_NOTIMPLEMENTED;
    }
    if (self == other) {
        return PyBool_FromLong(operation == Py_EQ);
    }
    VariantArg operand{};
    if (fn_conv_py_obj_to_clr_gen_handle(other, &operand) == 0) {
        Py_RETURN_NOTIMPLEMENTED;
    }
    const int answer = Kind::equals(fn_wrapper_handle(self), &operand) & 0xFF;
    if (PyErr_Occurred() != nullptr) {
        return nullptr;
    }
    return PyBool_FromLong(answer == (operation == Py_EQ ? 1 : 0));
}

template <typename Kind>
PyObject* managed_type(PyObject* self) {
    void* type = nullptr;
    if (Kind::type(fn_wrapper_handle(self), &type) == 0 && PyErr_Occurred() != nullptr) {
        return nullptr;
    }
    return wrpPyl_convcaps_clr_to_py_C08ECFAB_Type(type);
}

}  // namespace

void wrapClrObject_tp_dealloc(PyObject* self) {
    dealloc<ReferenceKind>(self);
}
void wrapClrStruct_tp_dealloc(PyObject* self) {
    dealloc<ValueKind>(self);
}

int wrapClrObject_tp_init_fault(PyObject*, PyObject*, PyObject*) {
    PyErr_SetString(PyExc_TypeError, "type has no available constructor");
    return -1;
}

Py_hash_t wrapClrObject_hash(PyObject* self) {
    return hash<ReferenceKind>(self);
}
Py_hash_t wrapClrStruct_hash(PyObject* self) {
    return hash<ValueKind>(self);
}

PyObject* wrapClrObject_str(PyObject* self) {
    return text<ReferenceKind>(self);
}
PyObject* wrapClrStruct_str(PyObject* self) {
    return text<ValueKind>(self);
}

PyObject* wrapClrObject_tp_richcompare(PyObject* self, PyObject* other, int operation) {
    return rich_compare<ReferenceKind>(self, other, operation);
}
PyObject* wrapClrStruct_tp_richcompare(PyObject* self, PyObject* other, int operation) {
    return rich_compare<ValueKind>(self, other, operation);
}

PyObject* wrapClrObject_get_type(PyObject* self, PyObject*) {
    return managed_type<ReferenceKind>(self);
}
PyObject* wrapClrStruct_get_type(PyObject* self, PyObject*) {
    return managed_type<ValueKind>(self);
}
