#include "startup/import.h"

#include "startup/identifiers.h"
#include "startup/py_ref.h"
#include "startup/report.h"
#include "startup/version.h"

#include <cstdarg>

namespace {

PyRef require_type(PyRef object) {
    if (object && !PyType_Check(object.get())) {
        PyErr_Format(PyExc_TypeError, "Attribute must be %.200s object, not '%.200s'", "type",
                     Py_TYPE(object.get())->tp_name);
        return {};
    }
    return object;
}

}  // namespace

PyObject* PyShImport_ImportRefModule(const char* importer, const char* module, const int* reference) {
    PyRef found = PyRef::steal(PyImport_ImportModule(module));
    if (!found) {
        PyShlErr_DependencyImportError(module);
        return nullptr;
    }
    const PyRef version = PyRef::steal(PyObject_GetAttr(found.get(), PyWrpIdOwn_Version));
    if (!version) {
        PyErr_Format(PyExc_ImportError,
                     "Unable to import module dependencies. Cannot import the %s module. The %s module found "
                     "does not have 'VERSION' attribute to check version compatibility.",
                     module, module);
        return nullptr;
    }
    if (PyShVersionAttr_Compare(reference, version.get()) > 0) {
        PyErr_Format(PyExc_ImportError,
                     "Unable to import module dependencies. Cannot import the %s module. The %s module found "
                     "has a version ('%U') that is lower than the referenced version of that module "
                     "('%i.%i.%i.%i').",
                     module, module, PyShVersionAttr_GetView(version.get()), reference[0], reference[1],
                     reference[2], reference[3]);
        return nullptr;
    }
    const PyRef threshold =
        PyRef::steal(PyObject_GetAttr(found.get(), PyWrpIdOwn_BackwardCompatibilityThreshold));
    if (!threshold) {
        PyErr_Format(PyExc_ImportError,
                     "Unable to import module dependencies. Cannot import the %s module. The %s module found "
                     "does not have 'BACKWARD_COMPATIBILITY_THRESHOLD' attribute to check version "
                     "compatibility.",
                     module, module);
        return nullptr;
    }
    if (PyShVersionAttr_Compare(reference, threshold.get()) < 0) {
        PyErr_Format(
            PyExc_ImportError,
            "Unable to import module dependencies. Cannot import the %s module. The installed version "
            "of the module ('%U') is not compatible with the referenced vesion of the module "
            "('%i.%i.%i.%i'). The installed version of the module is not compatible with the module "
            "versions < '%U'. Update dendend module '%s' to a latest version.",
            module, PyShVersionAttr_GetView(version.get()), reference[0], reference[1], reference[2],
            reference[3], PyShVersionAttr_GetView(threshold.get()), importer);
        return nullptr;
    }
    return found.release();
}

PyObject* PyShImport_ImportType(const char* module, PyObject* name) {
    const PyRef imported = PyRef::steal(PyImport_ImportModule(module));
    if (!imported) {
        PyShlErr_UnableToImportModule(module);
        return nullptr;
    }
    PyObject* type = PyObject_GetAttr(imported.get(), name);
    if (type == nullptr) {
        PyShlErr_UnableToImportType(name, module);
    }
    return type;
}

PyObject* PyShImport_ImportTypeEx(const char* module, PyObject* name) {
    return require_type(PyRef::steal(PyShImport_ImportType(module, name))).release();
}

PyObject* PyShImport_ImportTypeExV(const char* module, int depth, ...) {
    va_list names;
    va_start(names, depth);
    PyRef type;
    for (int level = 0; level < depth; ++level) {
        PyObject* name = va_arg(names, PyObject*);
        if (level == 0) {
            type = PyRef::steal(PyShImport_ImportTypeEx(module, name));
        } else {
            PyRef nested = PyRef::steal(PyObject_GetAttr(type.get(), name));
            if (!nested) {
                PyShlErr_UnableToImportNestedType(reinterpret_cast<PyTypeObject*>(type.get())->tp_name, name);
            }
            type = require_type(std::move(nested));
        }
        if (!type) {
            break;
        }
    }
    va_end(names);
    return type.release();
}
