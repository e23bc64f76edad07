#include "generated/enum_family.h"

#include "startup/identifiers.h"
#include "startup/import.h"
#include "startup/py_ref.h"
#include "startup/report.h"
#include "wrappers/descriptors.h"
#include "wrappers/markers.h"

namespace {

/// The pairs (name, value) that the functional form of the enum module takes.
PyRef make_members(const EnumMember* members, std::size_t count, bool flags) {
    PyRef tuple = PyRef::steal(PyTuple_New(static_cast<Py_ssize_t>(count)));
    for (std::size_t i = 0; tuple && i < count; ++i) {
        PyObject* value = flags ? PyLong_FromUnsignedLong(static_cast<unsigned long>(members[i].value))
                                : PyLong_FromLong(members[i].value);
        PyObject* pair = Py_BuildValue("(NN)", PyUnicode_FromString(members[i].name), value);
        if (pair == nullptr) {
            return {};
        }
        PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(i), pair);
    }
    return tuple;
}

bool add_methods(PyTypeObject* type, const char* name, EnumMethod* methods) {
    for (std::size_t i = 0; i < enum_method_count; ++i) {
        PyMethodDef* definition = &methods[i].definition;
        const PyRef descriptor =
            PyRef::steal(methods[i].is_instance ? PyShDescr_NewInstanceMethod(type, definition)
                                                : PyShDescr_NewStaticMethod(type, definition));
        if (!descriptor) {
            return false;
        }
        if (PyDict_SetItemString(type->tp_dict, definition->ml_name, descriptor.get()) < 0) {
            PyShlErr_TypeInitializationInternalError(-1020, name, definition->ml_name);
            return false;
        }
    }
    return true;
}

}  // namespace

PyObject* fn_build_enum(PyTypeObject** variable, const char* name, const EnumMember* members,
                        std::size_t count, bool flags, EnumMethod* methods) {
    const PyRef base = PyRef::steal(
        PyShImport_ImportType("enum", flags ? PyWrpIdTypeName_IntFlag : PyWrpIdTypeName_IntEnum));
    if (!base) {
        return nullptr;
    }
    const PyRef pairs = make_members(members, count, flags);
    const PyRef text = PyRef::steal(PyUnicode_FromString(name));
    if (!pairs || !text) {
        return nullptr;
    }
    PyRef made = PyRef::steal(PyObject_CallFunctionObjArgs(base.get(), text.get(), pairs.get(), nullptr));
    if (!made) {
        return nullptr;
    }
    auto* type = reinterpret_cast<PyTypeObject*>(made.get());
    if (!fn_set_castable_type_markattr(type, Py_Ellipsis)) {
        PyShlErr_TypeInitializationInternalError(-1021, name);
        return nullptr;
    }
    if (!add_methods(type, name, methods)) {
        return nullptr;
    }
    PyType_Modified(type);
    *variable = type;
    return made.release();
}
