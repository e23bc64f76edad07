#pragma once

#include "startup/cpython.h"

#include <cstddef>

// How a public module comes about: a table of its types and enums, and one loop that readies, registers,
// marks and attaches them in the order that the reports of a failed start count on. Each table ends with a
// row of nulls.

/// One class, struct or interface.
struct TypeRow {
    PyTypeObject* type;
    const char16_t* managed_name;  // under which managed results of this type are found
    const char* name;              // the attribute's name
    bool is_struct;
    PyTypeObject* const* interfaces;  // the members of both interface sets
    std::size_t interface_count;
    PyGetSetDef* statics;  // static fields, or null
    PyTypeObject* outer;   // the type that this one is nested in, or null
};

/// One enum: its builder gives a new reference to the class, or null with an error set.
struct EnumRow {
    const char* name;
    const char* dotted_name;
    PyObject* (*build)();
};

struct SubmoduleRow {
    const char* name;
    const char* dotted_name;
    PyObject* (*build)();
};

struct ModuleSpec {
    PyModuleDef* definition;
    const SubmoduleRow* submodules;  // null for all but the root
    const EnumRow* enums;
    const TypeRow* types;
};

/// Builds the module with everything in it: a new reference, or null with a report of what failed.
PyObject* fn_build_module(const ModuleSpec& spec);

/// Readies a type and attaches it under `name`: 0, or -1 with a report.
int PyShModule_AddType(PyObject* module, PyTypeObject* type, const char* name);

/// A definition of single-phase initialisation without documentation and without state.
constexpr PyModuleDef fn_make_module_definition(const char* name, PyMethodDef* methods) {
    PyModuleDef definition{};
    definition.m_base = PyModuleDef_HEAD_INIT;
    definition.m_name = name;
    definition.m_size = -1;
    definition.m_methods = methods;
    return definition;
}

/// The root module's definition, with the one method that it has.
extern PyModuleDef wrpPy_mlds_1A881341_voxlar;

/// The C API version with which every module is made.
constexpr int module_api_version = 1013;
