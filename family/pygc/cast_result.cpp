#include "pygc/cast_result.h"

#include "startup/py_ref.h"

namespace {

struct CastResult {
    PyObject ob_base;
    int status;       // 0: the cast was refused
    PyObject* value;  // owned, never null
};

const CastResult* as_result(PyObject* self) {
    return reinterpret_cast<const CastResult*>(self);
}

bool has_succeeded(PyObject* self) {
    return as_result(self)->status != 0;
}

void result_dealloc(PyObject* self) {
    Py_DECREF(as_result(self)->value);
    Py_TYPE(self)->tp_free(self);
}

int result_bool(PyObject* self) {
    return has_succeeded(self) ? 1 : 0;
}

PyObject* result_repr(PyObject* self) {
    return PyUnicode_FromFormat("<%s: succeeded=%s, value=%R>", Py_TYPE(self)->tp_name,
                                has_succeeded(self) ? "True" : "False", as_result(self)->value);
}

PyObject* get_succeeded(PyObject* self, void*) {
    return PyBool_FromLong(has_succeeded(self));
}

PyObject* get_status(PyObject* self, void*) {
    return PyLong_FromLong(as_result(self)->status);
}

PyObject* get_value(PyObject* self, void*) {
    return fn_new_ref(as_result(self)->value);
}

Py_ssize_t result_length(PyObject*) {
    return 2;
}

PyObject* result_item(PyObject* self, Py_ssize_t index) {
    switch (index) {
        case 0:
            return get_succeeded(self, nullptr);
        case 1:
            return get_value(self, nullptr);
        default:
            PyErr_SetString(PyExc_IndexError, "a cast result has two items: succeeded and value");
            return nullptr;
    }
}

PyGetSetDef result_properties[] = {
    {"succeeded", get_succeeded, nullptr, "Whether the cast succeeded.", nullptr},
    {"value", get_value, nullptr, "The object as the type of the cast; None when there is none.", nullptr},
    {"status", get_status, nullptr, "The managed side's own answer, 0 for a refused cast.", nullptr},
    {},
};

constexpr PyNumberMethods make_number_methods() {
    PyNumberMethods methods{};
    methods.nb_bool = result_bool;
    return methods;
}

constexpr PySequenceMethods make_sequence_methods() {
    PySequenceMethods methods{};
    methods.sq_length = result_length;
    methods.sq_item = result_item;
    return methods;
}

PyNumberMethods number_methods = make_number_methods();
PySequenceMethods sequence_methods = make_sequence_methods();

constexpr PyTypeObject make_type() {
    PyTypeObject type{};
    type.ob_base.ob_base.ob_refcnt = 1;
    type.tp_name = "velbor.pygc.CastResult";
    type.tp_doc =
        "The result of a cast: true when it succeeded.\n\n"
        "It unpacks: succeeded, value = Mesh._cast_as(entity).";
    type.tp_basicsize = sizeof(CastResult);
    type.tp_flags = Py_TPFLAGS_DEFAULT;
    type.tp_dealloc = result_dealloc;
    type.tp_repr = result_repr;
    type.tp_as_number = &number_methods;
    type.tp_as_sequence = &sequence_methods;
    type.tp_iter = PySeqIter_New;
    type.tp_getset = result_properties;
    return type;
}

}  // namespace

PyTypeObject wrpPyl_tyds_CastResult = make_type();

PyObject* fn_make_cast_result(int status, PyObject* value) {
    auto* result = PyObject_New(CastResult, &wrpPyl_tyds_CastResult);
    if (result == nullptr) {
        return nullptr;
    }
    result->status = status;
    result->value = fn_new_ref(value != nullptr ? value : Py_None);
    return reinterpret_cast<PyObject*>(result);
}
