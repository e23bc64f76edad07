#pragma once

#include "startup/cpython.h"

#include <cstddef>
#include <cstdint>

/// A module's version. Sibling modules read each other's objects by this layout without a type test, so it is
/// a contract between extension modules.
struct PyShVersionObject {
    PyObject_HEAD std::int32_t major;
    std::int32_t minor;
    std::int32_t patch;
    std::int32_t sub;
    PyObject* view;  // a str such as "23.8.0.0", owned
};

static_assert(offsetof(PyShVersionObject, major) == sizeof(PyObject));
static_assert(offsetof(PyShVersionObject, minor) == sizeof(PyObject) + 4);
static_assert(offsetof(PyShVersionObject, patch) == sizeof(PyObject) + 8);
static_assert(offsetof(PyShVersionObject, sub) == sizeof(PyObject) + 12);
static_assert(offsetof(PyShVersionObject, view) == sizeof(PyObject) + 16);
static_assert(sizeof(PyShVersionObject) == sizeof(PyObject) + 24);

/// The type of this module's version objects. A sibling built over the same core puts its own name into
/// `tp_name` before it readies the type.
extern PyTypeObject* const wrpPye_tyds_FFFFFFFF_ModuleVersion;

/// A new version object; the type must be ready.
PyObject* PyShVersionAttr_Create(int major, int minor, int patch, int sub, const char* view);

/// -1, 0 or 1 as `reference` (four numbers) is below, equal to or above `version`.
int PyShVersionAttr_Compare(const int* reference, PyObject* version);

/// The version as a str, borrowed.
PyObject* PyShVersionAttr_GetView(PyObject* version);
