#include "generated/module_tree.h"

#include "startup/py_ref.h"
#include "startup/report.h"
#include "wrappers/descriptors.h"
#include "wrappers/markers.h"
#include "wrappers/types_map.h"

#include <algorithm>
#include <string_view>

namespace {

/// Adds a reference to `object` and hands it to the module. False when the module refused it.
bool attach(PyObject* module, const char* name, PyObject* object) {
    Py_INCREF(object);
    if (PyModule_AddObject(module, name, object) < 0) {
        Py_DECREF(object);
        return false;
    }
    return true;
}

bool add_submodules(PyObject* module, const ModuleSpec& spec) {
    for (const SubmoduleRow* row = spec.submodules; row != nullptr && row->name != nullptr; ++row) {
        const PyRef child = PyRef::steal(row->build());
        if (!child) {
            return false;
        }
        if (!attach(module, row->name, child.get())) {
            PyShlErr_ModuleInitializationInternalError(-1002, spec.definition->m_name, row->dotted_name);
            return false;
        }
    }
    return true;
}

bool ready(PyTypeObject* type) {
    if (PyType_Ready(type) < 0) {
        PyShlErr_TypeInitializationInternalError(-1015, type->tp_name);
        return false;
    }
    return true;
}

/// Readies the types of the module, and before each the types from elsewhere that its sets hold: a set cannot
/// take a type that was never readied.
bool ready_types(const TypeRow* rows) {
    for (const TypeRow* row = rows; row->type != nullptr; ++row) {
        for (std::size_t i = 0; i < row->interface_count; ++i) {
            if (!ready(row->interfaces[i])) {
                return false;
            }
        }
        if (!ready(row->type)) {
            return false;
        }
    }
    return true;
}

bool add_enums(PyObject* module, const ModuleSpec& spec) {
    for (const EnumRow* row = spec.enums; row->name != nullptr; ++row) {
        const PyRef enum_class = PyRef::steal(row->build());
        if (!enum_class) {
            PyShlErr_TypeInitializationInternalError(-1013, row->dotted_name);
            return false;
        }
        if (!attach(module, row->name, enum_class.get())) {
            PyShlErr_TypeInitializationInternalError(-1014, spec.definition->m_name, row->dotted_name);
            return false;
        }
    }
    return true;
}

/// No type implements more interfaces than this.
constexpr std::size_t max_interfaces = 3;

bool mark(const TypeRow& row) {
    PyTypeObject* type = row.type;
    if (row.interface_count != 0) {
        const auto count = static_cast<int>(row.interface_count);
        PyTypeObject* given[max_interfaces] = {};
        std::copy_n(row.interfaces, row.interface_count, given);
        if (!fn_set_additional_ifcs_markattr(type, count, given[0], given[1], given[2])) {
            PyShlErr_TypeInitializationInternalError(-1017, type->tp_name);
            return false;
        }
        if (!fn_set_implicit_ifcs_markattr(type, count, given[0], given[1], given[2])) {
            PyShlErr_TypeInitializationInternalError(-1018, type->tp_name);
            return false;
        }
    }
    if (!(row.is_struct ? fn_set_stc_type_host_markattr(type) : fn_set_obj_type_host_markattr(type))) {
        PyShlErr_TypeInitializationInternalError(-1016, type->tp_name);
        return false;
    }
    if (!fn_set_castable_type_markattr(type, Py_None)) {
        PyShlErr_TypeInitializationInternalError(-1021, type->tp_name);
        return false;
    }
    return true;
}

bool add_types(PyObject* module, const ModuleSpec& spec) {
    PyWrpTypesMap& registry = PyWrpTypesMap::get_instance();
    for (const TypeRow* row = spec.types; row->type != nullptr; ++row) {
        registry.add(std::u16string_view(row->managed_name), row->type);
        if (!mark(*row)) {
            return false;
        }
        auto* type = reinterpret_cast<PyObject*>(row->type);
        const bool attached = row->outer == nullptr
                                  ? attach(module, row->name, type)
                                  : PyDict_SetItemString(row->outer->tp_dict, row->name, type) == 0;
        if (!attached) {
            PyShlErr_TypeInitializationInternalError(-1014, spec.definition->m_name, row->type->tp_name);
            return false;
        }
    }
    return true;
}

bool add_statics(const TypeRow* rows) {
    for (const TypeRow* row = rows; row->type != nullptr; ++row) {
        for (PyGetSetDef* field = row->statics; field != nullptr && field->name != nullptr; ++field) {
            const PyRef descriptor = PyRef::steal(PyShDescr_NewStaticField(row->type, field));
            if (!descriptor || PyDict_SetItemString(row->type->tp_dict, field->name, descriptor.get()) < 0) {
                PyShlErr_TypeInitializationInternalError(-1020, row->type->tp_name, field->name);
                return false;
            }
        }
        PyType_Modified(row->type);
    }
    return true;
}

bool add_root_descriptors(PyObject* module, const ModuleSpec& spec) {
    return spec.submodules == nullptr ||
           (PyShModule_AddType(module, &wrpPye_tyds_FFFFFFFF_FieldDescr, "_FieldDescrType") == 0 &&
            PyShModule_AddType(module, &wrpPye_tyds_FFFFFFFF_MixMethodDescr, "_MixMethodDescrType") == 0);
}

}  // namespace

int PyShModule_AddType(PyObject* module, PyTypeObject* type, const char* name) {
    if (!ready(type)) {
        return -1;
    }
    if (!attach(module, name, reinterpret_cast<PyObject*>(type))) {
        PyShlErr_TypeInitializationInternalError(-1014, PyModule_GetDef(module)->m_name, type->tp_name);
        return -1;
    }
    return 0;
}

PyObject* fn_build_module(const ModuleSpec& spec) {
    PyRef module = PyRef::steal(PyModule_Create2(spec.definition, module_api_version));
    if (!module) {
        PyShlErr_ModuleInitializationInternalError(-1003, spec.definition->m_name);
        return nullptr;
    }
    const bool built = add_root_descriptors(module.get(), spec) && add_submodules(module.get(), spec) &&
                       ready_types(spec.types) && add_enums(module.get(), spec) &&
                       add_types(module.get(), spec) && add_statics(spec.types);
    return built ? module.release() : nullptr;
}
