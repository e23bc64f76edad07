#pragma once

#include <cstdint>

#include "marshal/records.h"
#include "startup/cpython.h"

// Callbacks by which managed code works on Python collections. They run on the thread of a managed call,
// which holds the GIL. None lets an exception cross: a failure is a status with the Python error pending.
//
// Statuses: 0 done, -1 a Python error is pending, -2 that error is an IndexError. An element that managed
// code passes as a PyObject* is owned by the callback from the moment of the call, on success and on failure.

/// The next item of an iterator into `value`: 0, 1 at the end, 2 with an error. `*item` gets the reference
/// that `value` may borrow from; the caller drops it.
int fn_clbk_iter_next(PyObject* iterator, PyObject** item, VariantArg* value);

// Any collection. Lengths are -1 with an error.

Py_ssize_t fn_clbk_ucol_list_length(PyObject* list);
Py_ssize_t fn_clbk_ucol_list_longlength(PyObject* list);

/// Calls the object's `pop`; a status.
int fn_clbk_ucol_remove_at(PyObject* object, int index);

/// Calls the object's `clear`; 0 or -1.
int fn_clbk_ucol_clear(PyObject* object);

Py_ssize_t fn_clbk_ucol_sequence_length(PyObject* sequence);
Py_ssize_t fn_clbk_ucol_sequence_longlength(PyObject* sequence);

/// A new reference to an iterator, or null with an error.
PyObject* fn_clbk_ucol_get_enumerator(PyObject* object);

Py_ssize_t fn_clbk_ucol_object_length(PyObject* object);

/// Makes a list of empty slots, stores it in `*list` and returns the array of its items. The caller fills
/// each slot before Python sees the list.
PyObject** fn_clbk_ucol_create_fast_list(std::int32_t length, PyObject** list);
PyObject** fn_clbk_ucol_create_fast_longlist(std::int64_t length, PyObject** list);

/// The UTF-16 form of a `str`, 1 or 0 with an error: `*keeper` gets a bytes object that the caller drops
/// after use,
/// `*count` the number of units without the byte-order mark, `*units` the place two units into the bytes.
int fn_clbk_ucol_get_unicode_bytes(PyObject* text, PyObject** keeper, int* count, const char16_t** units);

// A list of untyped items.

/// A status; the record borrows from the list's own reference.
int fn_clbk_olist_get_item(PyObject* list, int index, VariantArg* value);
int fn_clbk_olist_set_item(PyObject* list, int index, PyObject* value);

/// The new size, or -1.
int fn_clbk_olist_add(PyObject* list, PyObject* value);
int fn_clbk_olist_insert(PyObject* list, int index, PyObject* value);

/// 0 or -1; an absent element is an error too.
int fn_clbk_olist_remove(PyObject* list, PyObject* value);

/// 1, 0, or -1 with an error. Equality is Python's.
int fn_clbk_olist_contains(PyObject* list, PyObject* value);

/// The position, -1 when absent, -2 with an error.
int fn_clbk_olist_index_of(PyObject* list, PyObject* value);

/// One plain store into the array of fn_clbk_ucol_create_fast_list; takes the reference over.
void fn_clbk_olist_set_fast_item(PyObject** items, int index, PyObject* value);

/// New wrappers that own the handle.
PyObject* fn_clbk_olist_write_clr_ilist(void* handle);
PyObject* fn_clbk_olist_write_clr_arrlist(void* handle);
PyObject* fn_clbk_olist_write_clr_array(void* handle);

// A sequence that is no list.

/// A status. The reference to the item stays held, since the record may borrow from it: a sequence makes its
/// items where it likes.
int fn_clbk_oseq_get_item(PyObject* sequence, int index, VariantArg* value);

/// 1, 0 or -1. A comparison that raises counts as found and leaves its error pending.
int fn_clbk_oseq_contains(PyObject* sequence, PyObject* value);

/// The position, -1 when absent, -2 with an error.
int fn_clbk_oseq_index_of(PyObject* sequence, PyObject* value);

// What the typed callbacks share with the untyped ones.

namespace python_collections {

/// Reads the item of a list at an index into a record that goes on borrowing from the list: 0, or the status
/// of what failed. A conversion may run Python code that takes the item out of its list, so the item is held
/// meanwhile; when nobody else holds it any more, that is RuntimeError.
template <class Convert>
int read_list_item(PyObject* list, int index, Convert convert);

/// The item of a list at an index, as a new reference; null with `*status` set.
PyObject* list_item(PyObject* list, int index, int* status);

/// Gives a reference back that held an item over its conversion: 0, or -1 with RuntimeError when it was the
/// last.
int release_list_item(PyObject* item);

/// The item of a sequence at an index, as a new reference; null with `*status` set.
PyObject* sequence_item(PyObject* sequence, int index, int* status);

/// The next item of an iterator, as a new reference; null with `*status` 1 at the end or 2 with an error.
PyObject* next_item(PyObject* iterator, int* status);

/// Calls the list's `remove`: 1 removed, 0 absent (with ValueError pending), -1 another error. Takes the
/// element.
int remove_from_list(PyObject* list, PyObject* value);

template <class Convert>
int read_list_item(PyObject* list, int index, Convert convert) {
    int status = 0;
    PyObject* item = list_item(list, index, &status);
    if (item == nullptr) {
        return status;
    }
    if (convert(item) == 0) {
        Py_DECREF(item);
        return -1;
    }
    return release_list_item(item);
}

}  // namespace python_collections
