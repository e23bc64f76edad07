#pragma once

#include "startup/cpython.h"

/// The folders in which PyInstaller looks for hooks: `tail` below the folder of the module's file, then below
/// each of the `count` names there. A new list, or null with an error set.
PyObject* fn_get_pyinstaller_hook_dirs(PyModuleDef* definition, const char** names, long count,
                                       const char* tail);
