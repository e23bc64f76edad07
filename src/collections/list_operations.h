#pragma once

#include "startup/cpython.h"

#include "marshal/records.h"

/// What the list algorithms need of a managed collection: one constant table a wrapper type.
///
/// Every operation takes the wrapper's handle, which stays the wrapper's own. An operation that a kind of
/// collection does not have is null. Indices are cut to 32 bits by the caller; no operation normalises one.
struct ListOperations {
    /// The managed count; a failure is a pending Python error, whatever the number.
    int (*length)(void* handle);

    /// The element at an index that was not tested; a new reference, or null with `IndexError` or the managed
    /// error.
    PyObject* (*item)(void* handle, int index);

    /// The element at an index that the caller knows to be inside; a new reference, or null with an error.
    PyObject* (*item_unchecked)(void* handle, int index);

    /// Converts and stores; a status as the managed side gives it (0 done, 2 out of range), -1 when `value`
    /// is no element.
    int (*store)(void* handle, int index, PyObject* value);

    /// Converts and stores at an index inside; false with an error.
    bool (*store_unchecked)(void* handle, int index, PyObject* value);

    /// Removes one element; a status as `store` gives it. Null where elements cannot be removed.
    int (*remove_at)(void* handle, int index);

    /// Removes `count` elements from `start` on, each `step` further. Null where elements cannot be removed.
    void (*remove_range)(void* handle, int start, int count, int step);

    /// Converts and appends; false with an error.
    bool (*add)(void* handle, PyObject* value);

    /// Makes room before many `add` calls. Null where the collection has no capacity.
    void (*ensure_capacity)(void* handle, int count);

    /// Appends a whole managed collection; 1 when the managed side did it.
    int (*concat_managed)(void* handle, const VariantArg* other);

    /// Writes a whole managed collection over a slice; 1 when the managed side did it.
    int (*store_managed)(void* handle, const VariantArg* other, int start, int count, int step);

    /// A contiguous run is removed by its lowest index instead of its highest one.
    bool removes_run_from_lowest;
};
