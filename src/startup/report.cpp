#include "startup/report.h"

#include <cstdarg>

namespace {

template <typename... Args>
void report(PyObject* exception, const char* format, Args... args) {
    if (PyErr_Occurred() == nullptr) {
        PyErr_Format(exception, format, args...);
    } else {
        PyShlErr_ChainFormat(exception, format, args...);
    }
}

}  // namespace

void PyShlErr_ModuleInitializationInternalError(int code) {
    report(PyExc_ImportError, "Module initialization internal error (%i)", code);
}

void PyShlErr_ModuleInitializationInternalError(int code, const char* a) {
    report(PyExc_ImportError, "Module initialization internal error (%i) <%s>", code, a);
}

void PyShlErr_ModuleInitializationInternalError(int code, const char* a, const char* b) {
    report(PyExc_ImportError, "Module initialization internal error (%i) <%s,%s>", code, a, b);
}

void PyShlErr_ModulePyInitError(const char* module, int code) {
    report(PyExc_ImportError, "One or more errors occurred while loading the module '%s' (%i)", module, code);
}

void PyShlErr_DependencyImportError(const char* module) {
    report(
        PyExc_ImportError,
        "Unable to import module dependencies. Cannot import the %s module. The module not found or errors "
        "occurred while initializing it.",
        module);
}

void PyShlErr_UnableToImportModule(const char* module) {
    report(PyExc_ImportError,
           "Unable to import the specified module %s. The module not found or errors occurred while "
           "initializing it.",
           module);
}

void PyShlErr_CapsuleImportError(const char* capsule) {
    report(PyExc_ImportError, "can't import capsule '%s'", capsule);
}

void PyShlErr_TypeInitializationInternalError(int code, const char* a) {
    report(PyExc_ImportError, "Type initialization internal error (%i) <%s>", code, a);
}

void PyShlErr_TypeInitializationInternalError(int code, const char* a, const char* b) {
    report(PyExc_ImportError, "Type initialization internal error (%i) <%s,%s>", code, a, b);
}

void PyShlErr_UnableToImportType(PyObject* type_name, const char* module) {
    report(PyExc_ImportError,
           "Unable to import the specified type %U from the module %s. The type not found or errors occurred "
           "while initializing it.",
           type_name, module);
}

void PyShlErr_UnableToImportNestedType(const char* outer, PyObject* nested) {
    report(PyExc_ImportError, "%s does not contain nested type %U", outer, nested);
}

void PyShlErr_EnumTypeInitialization(const char* message, const char* enum_name) {
    PyErr_SetString(PyExc_TypeError, message);
    PyShlErr_ChainFormat(PyExc_ImportError, "enum type '%s' is not initialized", enum_name);
}

void PyShlErr_ChainOrFormat(PyObject* exception, const char* text) {
    // A percent sign in the text is a character like any other.
    report(exception, "%s", text);
}

void PyShlErr_ChainFormat(PyObject* exception, const char* format, ...) {
    PyObject* first = fn_take_pending_error();
    va_list arguments;
    va_start(arguments, format);
    PyErr_FormatV(exception, format, arguments);
    va_end(arguments);
    if (first == nullptr) {
        return;
    }
    PyObject* second = fn_take_pending_error();
    PyException_SetCause(second, fn_new_ref(first));
    PyException_SetContext(second, first);
    fn_restore_pending_error(second);
}
