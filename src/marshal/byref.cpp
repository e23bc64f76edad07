#include "marshal/byref.h"

namespace {

int refuse(PyObject* value) {
    PyErr_Format(PyExc_TypeError,
                 "argument should be empty list or list contains default value, not '%.200s'",
                 Py_TYPE(value)->tp_name);
    return 0;
}

}  // namespace

int fn_conv_py_parbyref_to_clr_parbyref(PyObject* value, PyParamByRef* arg) {
    if (!PyList_CheckExact(value)) {
        return refuse(value);
    }
    arg->list = value;
    if (PyList_GET_SIZE(value) == 0) {
        return 1;
    }
    PyObject* item = PyList_GetItem(value, 0);
    if (item == nullptr) {
        return refuse(value);
    }
    if (item == Py_None) {
        return 1;
    }
    return arg->converter(item, arg->target) == 1 ? 1 : 0;
}

int fn_push_parbyref_outvalue(PyObject* list, PyObject* value) {
    if (PyList_Size(list) != 0) {
        return PyList_SetItem(list, 0, value);
    }
    if (PyList_Append(list, value) != 0) {
        return -1;
    }
    Py_DECREF(value);
    return 0;
}
