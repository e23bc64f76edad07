#pragma once

#include <cstddef>

#include "startup/cpython.h"

/// One typed wrapper as the builder of its module needs it.
struct GenericTypeRow {
    PyTypeObject* type;
    int interface_count;  // of both interface sets; 0: the type has neither
    PyTypeObject* const* interfaces;
};

/// No typed wrapper lists more interfaces than this.
constexpr int kMaxGenericInterfaces = 4;

/// The typed wrappers in the order in which they are readied and attached; ends with a row of nulls.
/// Generated.
extern const GenericTypeRow wrpPygn_types[];
