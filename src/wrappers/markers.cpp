#include "wrappers/markers.h"

#include "startup/identifiers.h"
#include "startup/py_ref.h"
#include "wrappers/clr_object.h"

namespace {

enum class HostMark { none, reference, value };

bool set_mark(PyTypeObject* type, PyObject* key, PyObject* value) {
    return PyDict_SetItem(fn_type_own_dict(type), key, value) == 0;
}

// Borrowed; null also for a type that was never readied and for CPython's own types of late versions, which
// have no dictionary of their own.
PyObject* get_mark(const PyTypeObject* type, PyObject* key) {
    PyObject* dictionary = fn_type_own_dict(type);
    return dictionary == nullptr ? nullptr : PyDict_GetItem(dictionary, key);
}

HostMark host_mark(PyObject* object) {
    PyObject* mark = get_mark(Py_TYPE(object), PyWrpIdMarkattr_VelborClrHost);
    if (mark == Py_None) {
        return HostMark::reference;
    }
    return mark == Py_Ellipsis ? HostMark::value : HostMark::none;
}

PyObject* as_object(PyTypeObject* type) {
    return reinterpret_cast<PyObject*>(type);
}

}  // namespace

bool fn_set_obj_type_host_markattr(PyTypeObject* type) {
    return set_mark(type, PyWrpIdMarkattr_VelborClrHost, Py_None);
}

bool fn_set_stc_type_host_markattr(PyTypeObject* type) {
    return set_mark(type, PyWrpIdMarkattr_VelborClrHost, Py_Ellipsis);
}

bool fn_set_castable_type_markattr(PyTypeObject* type, PyObject* value) {
    return set_mark(type, PyWrpIdMarkattr_VelborClrCastableObj, value);
}

bool fn_set_external_ancestor_markattr(PyTypeObject* type, PyTypeObject* ancestor) {
    return set_mark(type, PyWrpIdMarkattr_ExternalAncestor, as_object(ancestor));
}

bool fn_set_additional_ifcs_markattr(PyTypeObject* type, int count, ...) {
    va_list interfaces;
    va_start(interfaces, count);
    const bool done = fn_set_any_ifcs_markattr(type, PyWrpIdMarkattr_AdditionalInterfaces, count, interfaces);
    va_end(interfaces);
    return done;
}

bool fn_set_implicit_ifcs_markattr(PyTypeObject* type, int count, ...) {
    va_list interfaces;
    va_start(interfaces, count);
    const bool done = fn_set_any_ifcs_markattr(type, PyWrpIdMarkattr_ImplicitInterfaces, count, interfaces);
    va_end(interfaces);
    return done;
}

bool fn_set_any_ifcs_markattr(PyTypeObject* type, PyObject* key, int count, va_list interfaces) {
    PyObject* set = PySet_New(nullptr);
    if (set == nullptr) {
        return false;
    }
    for (int i = 0; i < count; ++i) {
        // The half-filled set is given up on failure: start-up ends with it.
        if (PySet_Add(set, as_object(va_arg(interfaces, PyTypeObject*))) != 0) {
            return false;
        }
    }
    const bool stored = set_mark(type, key, set);
    Py_DECREF(set);
    return stored;
}

bool fn_is_refobj_has_host_markattr(PyObject* object) {
    return host_mark(object) == HostMark::reference;
}

bool fn_is_instance_has_host_markattr(PyObject* object, int* tag) {
    const HostMark mark = host_mark(object);
    if (mark == HostMark::none) {
        return false;
    }
    *tag = mark == HostMark::value ? 1 : 0;
    return true;
}

bool fn_has_external_ancestor_markattr(PyObject* object, PyTypeObject* ancestor) {
    return get_mark(Py_TYPE(object), PyWrpIdMarkattr_ExternalAncestor) == as_object(ancestor);
}

bool fn_contains_additional_ifc_markattr(PyObject* object, PyTypeObject* interface_type) {
    return fn_contains_any_ifc_markattr(Py_TYPE(object), PyWrpIdMarkattr_AdditionalInterfaces,
                                        interface_type);
}

bool fn_contains_implicit_ifc_markattr(PyTypeObject* type, PyTypeObject* interface_type) {
    return fn_contains_any_ifc_markattr(type, PyWrpIdMarkattr_ImplicitInterfaces, interface_type);
}

bool fn_contains_any_ifc_markattr(PyTypeObject* type, PyObject* key, PyTypeObject* interface_type) {
    PyObject* set = get_mark(type, key);
    if (set == nullptr || !(Py_IS_TYPE(set, &PySet_Type) || PyType_IsSubtype(Py_TYPE(set), &PySet_Type))) {
        return false;
    }
    const int contained = PySet_Contains(set, as_object(interface_type));
    if (contained == -1) {
        PyErr_Clear();
        return false;
    }
    return contained != 0;
}

bool fn_is_this_module_clr_object(PyObject* object) {
    return Py_TYPE(object)->tp_dealloc == wrapClrObject_tp_dealloc;
}

bool fn_is_this_module_clr_instance(PyObject* object, int* tag) {
    const destructor dealloc = Py_TYPE(object)->tp_dealloc;
    if (dealloc != wrapClrObject_tp_dealloc && dealloc != wrapClrStruct_tp_dealloc) {
        return false;
    }
    *tag = dealloc == wrapClrStruct_tp_dealloc ? 1 : 0;
    return true;
}

int fn_conv_py_obj_to_clr_gen_handle(PyObject* object, VariantArg* out) {
    if (object == Py_None) {
        out->payload = nullptr;
        return 1;
    }
    return fn_conv_py_obj_to_clr_gen_not_null_handle(object, out);
}

int fn_conv_py_obj_to_clr_gen_not_null_handle(PyObject* object, VariantArg* out) {
    int tag = 0;
    if (!fn_is_instance_has_host_markattr(object, &tag)) {
        return 0;
    }
    out->kind = tag;
    out->payload = fn_wrapper_handle(object);
    return 1;
}

int fn_conv_py_obj_to_clr_refobj_not_null_handle(PyObject* object, void** out) {
    if (!fn_is_refobj_has_host_markattr(object)) {
        return 0;
    }
    *out = fn_wrapper_handle(object);
    return 1;
}

int fn_py_unknown_to_clr_unknown(PyObject* object, void** out) {
    *out = fn_wrapper_handle(object);
    return 1;
}
