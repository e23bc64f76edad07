#include "collections/python_collections.h"

#include <limits>

#include "collections/interop_wrappers.h"
#include "marshal/numbers.h"
#include "startup/identifiers.h"
#include "startup/py_ref.h"
#include "wrappers/results.h"
#include "wrappers/variant.h"

namespace {

constexpr int kDone = 0;
constexpr int kError = -1;
constexpr int kIndexError = -2;

int pending_status() {
    return PyErr_ExceptionMatches(PyExc_IndexError) ? kIndexError : kError;
}

/// A method of the object with one argument; null with an error.
PyRef call_method(PyObject* object, PyObject* name, PyObject* argument) {
    return PyRef::steal(PyObject_CallMethodObjArgs(object, name, argument, nullptr));
}

/// A position that must fit an Int32; -2 with IndexError when it does not.
int as_position(Py_ssize_t position) {
    if (position > std::numeric_limits<int>::max()) {
        PyErr_Format(PyExc_IndexError, "%s too big to convert to '%s'", "index", "Int32");
        return kIndexError;
    }
    if (position < std::numeric_limits<int>::min()) {
        PyErr_Format(PyExc_IndexError, "%s too small to convert to '%s'", "index", "Int32");
        return kIndexError;
    }
    return static_cast<int>(position);
}

/// The item, or null with an error: one that is null without an error gets its own.
PyRef item_to_compare(PyObject* sequence, Py_ssize_t index) {
    PyRef item = PyRef::steal(PySequence_GetItem(sequence, index));
    if (!item && PyErr_Occurred() == nullptr) {
        PyErr_SetString(PyExc_IndexError, "item is null");
    }
    return item;
}

PyObject** create_list(Py_ssize_t length, PyObject** list) {
    *list = PyList_New(length);
    return *list == nullptr ? nullptr : reinterpret_cast<PyListObject*>(*list)->ob_item;
}

}  // namespace

namespace python_collections {

PyObject* list_item(PyObject* list, int index, int* status) {
    PyObject* item = PyList_GetItem(list, index);
    if (item == nullptr) {
        *status = pending_status();
    }
    return fn_new_xref(item);
}

int release_list_item(PyObject* item) {
    const bool is_last = Py_REFCNT(item) == 1;
    Py_DECREF(item);
    if (is_last) {
        PyErr_SetString(PyExc_RuntimeError, "the list lost an item while it was read");
        return kError;
    }
    return kDone;
}

PyObject* sequence_item(PyObject* sequence, int index, int* status) {
    PyObject* item = PySequence_GetItem(sequence, index);
    if (item == nullptr) {
        *status = PyErr_Occurred() != nullptr ? pending_status() : kError;
    }
    return item;
}

PyObject* next_item(PyObject* iterator, int* status) {
    PyRef item = PyRef::steal(PyIter_Next(iterator));
    if (PyErr_Occurred() != nullptr) {
        *status = 2;
        return nullptr;
    }
    if (!item) {
        *status = 1;
    }
    return item.release();
}

int remove_from_list(PyObject* list, PyObject* value) {
    PyRef element = PyRef::steal(value);
    PyRef result = call_method(list, PyWrpIdList_Remove, element.get());
    if (PyErr_Occurred() == nullptr) {
        return 1;
    }
    return PyErr_ExceptionMatches(PyExc_ValueError) ? 0 : kError;
}

}  // namespace python_collections

int fn_clbk_iter_next(PyObject* iterator, PyObject** item, VariantArg* value) {
    int status = 0;
    PyRef next = PyRef::steal(python_collections::next_item(iterator, &status));
    if (!next) {
        return status;
    }
    if (fn_conv_py_variant_to_clr_variant(next.get(), value) == 0) {
        return 2;
    }
    *item = next.release();
    return 0;
}

Py_ssize_t fn_clbk_ucol_list_length(PyObject* list) {
    return PyList_Size(list);
}

Py_ssize_t fn_clbk_ucol_list_longlength(PyObject* list) {
    return PyList_Size(list);
}

int fn_clbk_ucol_remove_at(PyObject* object, int index) {
    PyRef number = PyRef::steal(PyLong_FromSsize_t(index));
    if (!number) {
        return kError;
    }
    return call_method(object, PyWrpIdList_Pop, number.get()) ? kDone : pending_status();
}

int fn_clbk_ucol_clear(PyObject* object) {
    return PyRef::steal(PyObject_CallMethodObjArgs(object, PyWrpIdList_Clear, nullptr)) ? kDone : kError;
}

Py_ssize_t fn_clbk_ucol_sequence_length(PyObject* sequence) {
    return PySequence_Size(sequence);
}

Py_ssize_t fn_clbk_ucol_sequence_longlength(PyObject* sequence) {
    return PySequence_Size(sequence);
}

PyObject* fn_clbk_ucol_get_enumerator(PyObject* object) {
    PyRef iterator = PyRef::steal(PyObject_GetIter(object));
    if (iterator && PyIter_Check(iterator.get())) {
        return iterator.release();
    }
    if (!iterator && PyErr_Occurred() != nullptr) {
        return nullptr;
    }
    PyErr_Format(PyExc_TypeError, "No iterator in '%s'", Py_TYPE(object)->tp_name);
    return nullptr;
}

Py_ssize_t fn_clbk_ucol_object_length(PyObject* object) {
    return PyObject_Size(object);
}

PyObject** fn_clbk_ucol_create_fast_list(std::int32_t length, PyObject** list) {
    return create_list(length, list);
}

PyObject** fn_clbk_ucol_create_fast_longlist(std::int64_t length, PyObject** list) {
    return create_list(length, list);
}

int fn_clbk_ucol_get_unicode_bytes(PyObject* text, PyObject** keeper, int* count, const char16_t** units) {
    if (!PyUnicode_Check(text)) {
        PyErr_Format(PyExc_TypeError, "can't build Char from '%s'", Py_TYPE(text)->tp_name);
        return 0;
    }
    if (!fn_is_unicode_ready(text)) {
        PyErr_SetString(PyExc_TypeError, "unicode object is not ready");
        return 0;
    }
    PyRef bytes = PyRef::steal(PyUnicode_AsUTF16String(text));
    if (!bytes) {
        if (PyErr_Occurred() == nullptr) {
            PyErr_SetString(PyExc_TypeError, "cannot convert unicode object to byte string");
        }
        return 0;
    }
    if (!PyBytes_Check(bytes.get())) {
        PyErr_Format(PyExc_TypeError, "converted string must be bytes-like object, not '%s'",
                     Py_TYPE(bytes.get())->tp_name);
        return 0;
    }
    // The managed reader counts on this pair: all units of the text, and a pointer past the byte-order mark
    // and one unit more.
    *count = static_cast<int>((PyBytes_GET_SIZE(bytes.get()) - 2) / 2);
    *units = reinterpret_cast<const char16_t*>(PyBytes_AS_STRING(bytes.get()) + 4);
    *keeper = bytes.release();
    return 1;
}

int fn_clbk_olist_get_item(PyObject* list, int index, VariantArg* value) {
    return python_collections::read_list_item(
        list, index, [value](PyObject* item) { return fn_conv_py_variant_to_clr_variant(item, value); });
}

int fn_clbk_olist_set_item(PyObject* list, int index, PyObject* value) {
    // The reference is taken whether it succeeds or not.
    if (PyList_SetItem(list, index, value) == 0 || PyErr_Occurred() == nullptr) {
        return kDone;
    }
    return pending_status();
}

int fn_clbk_olist_add(PyObject* list, PyObject* value) {
    PyRef element = PyRef::steal(value);
    if (PyList_Append(list, element.get()) != 0 && PyErr_Occurred() != nullptr) {
        return kError;
    }
    return static_cast<int>(PyList_Size(list));
}

int fn_clbk_olist_insert(PyObject* list, int index, PyObject* value) {
    PyRef element = PyRef::steal(value);
    if (PyList_Insert(list, index, element.get()) == 0 || PyErr_Occurred() == nullptr) {
        return kDone;
    }
    return pending_status();
}

int fn_clbk_olist_remove(PyObject* list, PyObject* value) {
    return python_collections::remove_from_list(list, value) == 1 ? kDone : kError;
}

int fn_clbk_olist_contains(PyObject* list, PyObject* value) {
    PyRef element = PyRef::steal(value);
    if (call_method(list, PyWrpIdList_Index, element.get())) {
        return 1;
    }
    if (!PyErr_ExceptionMatches(PyExc_ValueError)) {
        return kError;
    }
    PyErr_Clear();
    return 0;
}

int fn_clbk_olist_index_of(PyObject* list, PyObject* value) {
    PyRef element = PyRef::steal(value);
    PyRef found = call_method(list, PyWrpIdList_Index, element.get());
    if (!found) {
        if (!PyErr_ExceptionMatches(PyExc_ValueError)) {
            return kIndexError;
        }
        PyErr_Clear();
        return -1;
    }
    Py_ssize_t position = 0;
    return fn_conv_py_obj_to_ssize_t(found.get(), &position) == 0 ? kIndexError : as_position(position);
}

void fn_clbk_olist_set_fast_item(PyObject** items, int index, PyObject* value) {
    items[index] = value;
}

PyObject* fn_clbk_olist_write_clr_ilist(void* handle) {
    return fn_conv_clr_clsobj_to_py_clsobj(handle, &wrpPye_tyds_IListWrapper);
}

PyObject* fn_clbk_olist_write_clr_arrlist(void* handle) {
    return fn_conv_clr_clsobj_to_py_clsobj(handle, &wrpPye_tyds_ArrListWrapper);
}

PyObject* fn_clbk_olist_write_clr_array(void* handle) {
    return fn_conv_clr_clsobj_to_py_clsobj(handle, &wrpPye_tyds_ArrayWrapper);
}

int fn_clbk_oseq_get_item(PyObject* sequence, int index, VariantArg* value) {
    int status = kDone;
    PyRef item = PyRef::steal(python_collections::sequence_item(sequence, index, &status));
    if (!item) {
        return status;
    }
    if (fn_conv_py_variant_to_clr_variant(item.get(), value) == 0) {
        return kError;
    }
    // The table has no slot through which the item could go back, so the reference is the record's from here
    // on.
    static_cast<void>(item.release());
    return kDone;
}

int fn_clbk_oseq_contains(PyObject* sequence, PyObject* value) {
    PyRef element = PyRef::steal(value);
    // The size is read anew at each step: a sequence that shrinks during the walk ends it.
    for (Py_ssize_t i = 0; i < PySequence_Size(sequence); ++i) {
        PyRef item = item_to_compare(sequence, i);
        if (!item) {
            return kError;
        }
        if (PyObject_RichCompareBool(item.get(), element.get(), Py_EQ) != 0) {
            return 1;
        }
    }
    return 0;
}

int fn_clbk_oseq_index_of(PyObject* sequence, PyObject* value) {
    PyRef element = PyRef::steal(value);
    const Py_ssize_t size = PySequence_Size(sequence);
    for (Py_ssize_t i = 0; i < size; ++i) {
        PyRef item = item_to_compare(sequence, i);
        if (!item) {
            return kIndexError;
        }
        if (PyObject_RichCompareBool(item.get(), element.get(), Py_EQ) != 0) {
            return as_position(i);
        }
    }
    return -1;
}
