#pragma once

#include "startup/cpython.h"

// What the types with a managed indexer share.

/// The status of "btp_SqGetItem" and "btp_SqSetItem": 0 is success; 2 raises IndexError; with any other the
/// exception is already set.
inline bool fn_check_item_status(int status) {
    if (status == 2) {
        PyErr_SetString(PyExc_IndexError, "list index out of range");
    }
    return status == 0 && PyErr_Occurred() == nullptr;
}

/// What `del object[index]` answers.
inline int fn_refuse_item_deletion() {
    PyErr_SetString(PyExc_ValueError, "elements removing not supported");
    return -1;
}

/// A sequence table with item access alone: no length, so Python leaves a negative index as it is.
constexpr PySequenceMethods fn_make_indexer_slots(ssizeargfunc item, ssizeobjargproc assign) {
    PySequenceMethods slots{};
    slots.sq_item = item;
    slots.sq_ass_item = assign;
    return slots;
}
