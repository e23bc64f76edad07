#include "collections/common_wrappers.h"

#include <algorithm>
#include <cstring>

#include "collections/generic_types.h"
#include "collections/interop_wrappers.h"
#include "startup/py_ref.h"
#include "startup/report.h"
#include "streams/buffer_view.h"
#include "streams/stream_wrapper.h"
#include "wrappers/markers.h"

namespace {

constexpr int kModuleApiVersion = 1013;
constexpr char kRootName[] = "velbor.voxlar";

PyMethodDef no_methods[] = {{nullptr, nullptr, 0, nullptr}};

PyModuleDef make_definition(const char* name) {
    PyModuleDef definition{};
    definition.m_base = PyModuleDef_HEAD_INIT;
    definition.m_name = name;
    definition.m_size = -1;
    definition.m_methods = no_methods;
    return definition;
}

PyModuleDef wrpPye_mlds_FFFFFFFF_common_wrappers = make_definition("velbor.voxlar._wrpgen");
PyModuleDef wrpPye_mlds_FFFFFFFF_interop_wrappers = make_definition("velbor.voxlar._wrpgen._interop");
PyModuleDef wrpPygn_mlds_FFFFFFFF_generic_wrappers = make_definition("velbor.voxlar._wrpgen._generic");

PyRef create_module(PyModuleDef& definition) {
    PyRef module = PyRef::steal(PyModule_Create2(&definition, kModuleApiVersion));
    if (!module) {
        PyShlErr_ModuleInitializationInternalError(-1003, definition.m_name);
    }
    return module;
}

/// Adds an attribute with a reference of its own; false with an error.
bool attach(PyObject* module, const char* name, PyObject* object) {
    Py_INCREF(object);
    if (PyModule_AddObject(module, name, object) < 0) {
        Py_DECREF(object);
        return false;
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

bool report_marker(int code, const PyTypeObject* type) {
    PyShlErr_TypeInitializationInternalError(code, type->tp_name);
    return false;
}

/// Sets the interface sets, if there are any, and the two host markers. All interfaces are ready.
bool mark(PyTypeObject* type, int count, PyTypeObject* const* interfaces) {
    if (count > 0) {
        PyTypeObject* listed[kMaxGenericInterfaces] = {};
        std::copy_n(interfaces, count, listed);
        if (!fn_set_additional_ifcs_markattr(type, count, listed[0], listed[1], listed[2], listed[3])) {
            return report_marker(-1017, type);
        }
        if (!fn_set_implicit_ifcs_markattr(type, count, listed[0], listed[1], listed[2], listed[3])) {
            return report_marker(-1018, type);
        }
    }
    if (!fn_set_obj_type_host_markattr(type)) {
        return report_marker(-1016, type);
    }
    if (!fn_set_castable_type_markattr(type, Py_None)) {
        return report_marker(-1021, type);
    }
    return true;
}

/// Attaches a type under the last part of its dotted name.
bool attach_type(PyObject* module, const char* module_name, PyTypeObject* type) {
    if (!attach(module, std::strrchr(type->tp_name, '.') + 1, reinterpret_cast<PyObject*>(type))) {
        PyShlErr_TypeInitializationInternalError(-1014, module_name, type->tp_name);
        return false;
    }
    return true;
}

/// One untyped wrapper: its type and its interfaces.
struct InteropTypeRow {
    PyTypeObject* type;
    int interface_count;
    PyTypeObject* interfaces[3];
    bool marked = true;
};

const InteropTypeRow interop_types[] = {
    {&wrpPye_tyds_IDisposableWrapper, 0, {}},
    {&wrpPye_tyds_IterWrapper, 0, {}},
    {&wrpPye_tyds_IterableWrapper, 0, {}},
    {&wrpPye_tyds_IColWrapper, 1, {&wrpPye_tyds_IterableWrapper}},
    {&wrpPye_tyds_IListWrapper, 2, {&wrpPye_tyds_IterableWrapper, &wrpPye_tyds_IColWrapper}},
    {&wrpPye_tyds_RoColBaseWrapper, 2, {&wrpPye_tyds_IterableWrapper, &wrpPye_tyds_IColWrapper}},
    {&wrpPye_tyds_ColBaseWrapper,
     3,
     {&wrpPye_tyds_IterableWrapper, &wrpPye_tyds_IColWrapper, &wrpPye_tyds_IListWrapper}},
    {&wrpPye_tyds_ArrayWrapper,
     3,
     {&wrpPye_tyds_IterableWrapper, &wrpPye_tyds_IColWrapper, &wrpPye_tyds_IListWrapper}},
    {&wrpPye_tyds_ArrListWrapper,
     3,
     {&wrpPye_tyds_IterableWrapper, &wrpPye_tyds_IColWrapper, &wrpPye_tyds_IListWrapper}},
    // A view of a buffer is no wrapper of a managed object and takes no marker.
    {&wrpPye_tyds_ShlBufferView, 0, {}, false},
    {&wrpPye_tyds_StreamWrapper, 1, {&wrpPye_tyds_IDisposableWrapper}},
};

/// Attaches a module to its parent; a failure is reported with both names.
bool attach_module(PyObject* parent, const PyModuleDef& parent_definition, const char* name, PyObject* module,
                   const PyModuleDef& definition) {
    if (!attach(parent, name, module)) {
        PyShlErr_ModuleInitializationInternalError(-1002, parent_definition.m_name, definition.m_name);
        return false;
    }
    return true;
}

}  // namespace

PyObject* wrpPye_mlit_FFFFFFFF_interop_wrappers() {
    const char* name = wrpPye_mlds_FFFFFFFF_interop_wrappers.m_name;
    PyRef module = create_module(wrpPye_mlds_FFFFFFFF_interop_wrappers);
    if (!module) {
        return nullptr;
    }
    for (const InteropTypeRow& row : interop_types) {
        const bool built = ready(row.type) &&
                           (!row.marked || mark(row.type, row.interface_count, row.interfaces)) &&
                           attach_type(module.get(), name, row.type);
        if (!built) {
            return nullptr;
        }
    }
    return module.release();
}

PyObject* wrpPygn_mlit_FFFFFFFF_generic_wrappers() {
    const char* name = wrpPygn_mlds_FFFFFFFF_generic_wrappers.m_name;
    PyRef module = create_module(wrpPygn_mlds_FFFFFFFF_generic_wrappers);
    if (!module) {
        return nullptr;
    }
    for (const GenericTypeRow* row = wrpPygn_types; row->type != nullptr; ++row) {
        if (!ready(row->type)) {
            return nullptr;
        }
    }
    for (const GenericTypeRow* row = wrpPygn_types; row->type != nullptr; ++row) {
        if (!mark(row->type, row->interface_count, row->interfaces) ||
            !attach_type(module.get(), name, row->type)) {
            return nullptr;
        }
    }
    return module.release();
}

PyObject* wrpPye_mlit_FFFFFFFF_common_wrappers(PyObject* root) {
    PyRef wrpgen = create_module(wrpPye_mlds_FFFFFFFF_common_wrappers);
    if (!wrpgen) {
        return nullptr;
    }
    if (!attach(root, "_wrpgen", wrpgen.get())) {
        PyShlErr_ModuleInitializationInternalError(-1002, kRootName,
                                                   wrpPye_mlds_FFFFFFFF_common_wrappers.m_name);
        return nullptr;
    }
    PyRef interop = PyRef::steal(wrpPye_mlit_FFFFFFFF_interop_wrappers());
    if (!interop || !attach_module(wrpgen.get(), wrpPye_mlds_FFFFFFFF_common_wrappers, "_interop",
                                   interop.get(), wrpPye_mlds_FFFFFFFF_interop_wrappers)) {
        return nullptr;
    }
    PyRef generic = PyRef::steal(wrpPygn_mlit_FFFFFFFF_generic_wrappers());
    if (!generic || !attach_module(wrpgen.get(), wrpPye_mlds_FFFFFFFF_common_wrappers, "_generic",
                                   generic.get(), wrpPygn_mlds_FFFFFFFF_generic_wrappers)) {
        return nullptr;
    }
    return wrpgen.get();
}
