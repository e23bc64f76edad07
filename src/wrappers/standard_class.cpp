#include "wrappers/standard_class.h"

#include "startup/import.h"

PyRef fn_import_class(const StandardModule& module, PyObject* class_name) {
    const PyRef loaded = PyRef::steal(PyImport_GetModule(module.key));
    if (loaded) {
        PyRef type = PyRef::steal(PyObject_GetAttr(loaded.get(), class_name));
        if (type) {
            return type;
        }
    }
    PyErr_Clear();
    return PyRef::steal(PyShImport_ImportType(module.name, class_name));
}
