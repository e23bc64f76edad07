#include "marshal/references.h"

PyObject* fn_get_py_none() {
    return fn_new_ref(Py_None);
}

void fn_xinc_ref(PyObject* object) {
    Py_XINCREF(object);
}

void fn_xdec_ref(PyObject* object) {
    Py_XDECREF(object);
}
