#pragma once

#include "startup/cpython.h"

// What the three sibling modules of the bridge have in common: how they come about and which version they
// carry.

/// A module's definition without state: it is built once a process and stays.
constexpr PyModuleDef fn_make_sibling_definition(const char* name, const char* documentation,
                                                 PyMethodDef* methods) {
    PyModuleDef definition{};
    definition.m_base = PyModuleDef_HEAD_INIT;
    definition.m_name = name;
    definition.m_doc = documentation;
    definition.m_size = -1;
    definition.m_methods = methods;
    return definition;
}

/// Makes the module with its type of version objects (whose dotted name is `version_type_name`), its version
/// and its threshold. A new reference, or null with an error set.
PyObject* fn_make_sibling_module(PyModuleDef& definition, const char* version_type_name);

/// Readies a type and attaches it under `name`. False with an error set.
bool fn_add_sibling_type(PyObject* module, PyTypeObject* type, const char* name);

/// Attaches a table of functions, which lives as long as the process, as the capsule `attribute`.
/// `dotted_name` is the name by which it is imported. False with an error set.
bool fn_add_capsule(PyObject* module, const char* attribute, const char* dotted_name, void** table);
