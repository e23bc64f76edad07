#pragma once

#include "startup/cpython.h"

// Imports with the reports of a failed start. All results are new references, or null with an error set.

/// Imports a module of the family and refuses it (ImportError) when it is older than `reference` (major,
/// minor, patch, sub), or when its threshold says that it no longer serves a module built against
/// `reference`.
PyObject* PyShImport_ImportRefModule(const char* importer, const char* module, const int* reference);

/// The attribute `name` (a str) of a module, whatever it is.
PyObject* PyShImport_ImportType(const char* module, PyObject* name);

/// The same, but TypeError unless the attribute is a type.
PyObject* PyShImport_ImportTypeEx(const char* module, PyObject* name);

/// A nested type: `depth` names (str) follow, each an attribute of the type before it, the first of the
/// module.
PyObject* PyShImport_ImportTypeExV(const char* module, int depth, ...);
