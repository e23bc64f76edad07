#include "shared/sibling_module.h"

#include "startup/identifiers.h"
#include "startup/py_ref.h"
#include "startup/version.h"

namespace {

// PyModule_AddObject takes the reference over only when it succeeds.
bool add_object(PyObject* module, const char* name, PyRef object) {
    if (!object || PyModule_AddObject(module, name, object.get()) < 0) {
        return false;
    }
    static_cast<void>(object.release());
    return true;
}

}  // namespace

PyObject* fn_make_sibling_module(PyModuleDef& definition, const char* version_type_name) {
    fn_intern_identifiers();
    PyRef module = PyRef::steal(PyModule_Create(&definition));
    if (!module) {
        return nullptr;
    }
    PyTypeObject* version_type = wrpPye_tyds_FFFFFFFF_ModuleVersion;
    version_type->tp_name = version_type_name;
    const bool is_complete =
        fn_add_sibling_type(module.get(), version_type, "_ModuleVersionType") &&
        add_object(module.get(), "VERSION", PyRef::steal(PyShVersionAttr_Create(23, 7, 0, 0, "23.7.0.0"))) &&
        add_object(module.get(), "_BACKWARD_COMPATIBILITY_THRESHOLD",
                   PyRef::steal(PyShVersionAttr_Create(22, 6, 0, 0, "22.6.0.0")));
    return is_complete ? module.release() : nullptr;
}

bool fn_add_sibling_type(PyObject* module, PyTypeObject* type, const char* name) {
    return PyType_Ready(type) == 0 &&
           add_object(module, name, PyRef::borrow(reinterpret_cast<PyObject*>(type)));
}

bool fn_add_capsule(PyObject* module, const char* attribute, const char* dotted_name, void** table) {
    return add_object(module, attribute, PyRef::steal(PyCapsule_New(table, dotted_name, nullptr)));
}
