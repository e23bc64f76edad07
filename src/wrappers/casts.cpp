#include "wrappers/casts.h"

namespace casts_detail {

PyObject* finish_type(void* type) {
    if (PyErr_Occurred() != nullptr) {
        return nullptr;
    }
    return wrpPyl_convcaps_clr_to_py_C08ECFAB_Type(type);
}

bool take_object(PyObject* object, void** handle) {
    if (wrpPyl_trancaps_py_to_clr_359C4ED8_Object(object, handle) != 0) {
        return true;
    }
    PyErr_Format(PyExc_TypeError, "_reinterpret_obj() expects a .Net Object argument, got a %.100s object",
                 Py_TYPE(object)->tp_name);
    return false;
}

bool take_type(PyObject* type, void** handle) {
    if (wrpPyl_trancaps_py_to_clr_C08ECFAB_Type(type, handle) != 0) {
        return true;
    }
    PyErr_Format(PyExc_TypeError, "_cast_from() expects a .Net Type argument, got a %.100s object",
                 Py_TYPE(type)->tp_name);
    return false;
}

PyObject* refuse_reinterpretation(PyObject* object, const PyTypeObject& type) {
    // Two blanks behind "from": the text is a fixed one.
    PyErr_Format(PyExc_TypeError, "cannot convert from  '%.100s' to '%.100s'", Py_TYPE(object)->tp_name,
                 type.tp_name);
    return nullptr;
}

}  // namespace casts_detail
