#pragma once

#include "startup/py_ref.h"

/// A module by its name, interned at the first use of this object, which lives as long as the process.
struct StandardModule {
    const char* name;
    PyObject* key = PyUnicode_InternFromString(name);
};

/// A class of a module as it is at this moment; empty with the import's report set. A module that is loaded
/// is asked directly, at a tenth of the cost of an import; the import answers in every other case.
PyRef fn_import_class(const StandardModule& module, PyObject* class_name);
