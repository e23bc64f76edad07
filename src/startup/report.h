#pragma once

#include "startup/cpython.h"

// Reports of a failed start. Each sets an exception (ImportError unless said otherwise) with a fixed text; an
// error that is already pending becomes its cause and its context. The negative codes tell the step that
// failed.

void PyShlErr_ModuleInitializationInternalError(int code);
void PyShlErr_ModuleInitializationInternalError(int code, const char* a);
void PyShlErr_ModuleInitializationInternalError(int code, const char* a, const char* b);
void PyShlErr_ModulePyInitError(const char* module, int code);
void PyShlErr_DependencyImportError(const char* module);
void PyShlErr_UnableToImportModule(const char* module);
void PyShlErr_CapsuleImportError(const char* capsule);
void PyShlErr_TypeInitializationInternalError(int code, const char* a);
void PyShlErr_TypeInitializationInternalError(int code, const char* a, const char* b);

/// `type_name` is a str.
void PyShlErr_UnableToImportType(PyObject* type_name, const char* module);

/// `nested` is a str.
void PyShlErr_UnableToImportNestedType(const char* outer, PyObject* nested);

/// A TypeError with `message` under an ImportError that names the enum.
void PyShlErr_EnumTypeInitialization(const char* message, const char* enum_name);

/// Sets `exception` with `text` as it stands, over the pending error if there is one.
void PyShlErr_ChainOrFormat(PyObject* exception, const char* text);

/// Sets `exception` with a text in the forms of PyErr_Format; the pending error, with its traceback, becomes
/// `__cause__` and `__context__` of the new one.
void PyShlErr_ChainFormat(PyObject* exception, const char* format, ...);
