#pragma once

#include "collections/element.h"
#include "collections/python_collections.h"
#include "startup/py_ref.h"

// The typed forms of the collection callbacks: as the untyped ones, with the element's own conversion.
// `Element` is an element form of element.h. On the write side an element comes as a handle, which its
// conversion to Python consumes.

template <class Element>
struct TypedCallbacks {
    using T = typename Element::In;

    static int iter_next(PyObject* iterator, PyObject** item, T* value) {
        int status = 0;
        PyRef next = PyRef::steal(python_collections::next_item(iterator, &status));
        if (!next) {
            return status;
        }
        *value = T{};
        if (Element::convert(next.get(), value) == 0) {
            return 2;
        }
        *item = next.release();
        return 0;
    }

    static int list_get_item(PyObject* list, int index, T* value) {
        return python_collections::read_list_item(list, index, [value](PyObject* item) {
            *value = T{};
            return Element::convert(item, value);
        });
    }

    static int sequence_get_item(PyObject* sequence, int index, PyObject** keeper, T* value) {
        int status = 0;
        PyRef item = PyRef::steal(python_collections::sequence_item(sequence, index, &status));
        if (!item) {
            return status;
        }
        *value = T{};
        if (Element::convert(item.get(), value) == 0) {
            return -1;
        }
        *keeper = item.release();
        return 0;
    }

    static int list_set_item(PyObject* list, int index, void* element) {
        PyObject* value = Element::to_python(element);
        return value == nullptr ? -1 : fn_clbk_olist_set_item(list, index, value);
    }

    static int list_add(PyObject* list, void* element) {
        PyObject* value = Element::to_python(element);
        return value == nullptr ? -1 : fn_clbk_olist_add(list, value);
    }

    static int list_insert(PyObject* list, int index, void* element) {
        PyObject* value = Element::to_python(element);
        return value == nullptr ? -1 : fn_clbk_olist_insert(list, index, value);
    }

    /// 1 removed, 0 absent without an error, -1 an error: the untyped form reports an absent element as an
    /// error.
    static int list_remove(PyObject* list, void* element) {
        PyObject* value = Element::to_python(element);
        if (value == nullptr) {
            return -1;
        }
        const int removed = python_collections::remove_from_list(list, value);
        if (removed == 0) {
            PyErr_Clear();
        }
        return removed;
    }

    static int list_contains(PyObject* list, void* element) {
        PyObject* value = Element::to_python(element);
        return value == nullptr ? -1 : fn_clbk_olist_contains(list, value);
    }

    static int list_index_of(PyObject* list, void* element) {
        PyObject* value = Element::to_python(element);
        return value == nullptr ? -1 : fn_clbk_olist_index_of(list, value);
    }

    static int sequence_contains(PyObject* sequence, void* element) {
        PyObject* value = Element::to_python(element);
        return value == nullptr ? -1 : fn_clbk_oseq_contains(sequence, value);
    }

    static int sequence_index_of(PyObject* sequence, void* element) {
        PyObject* value = Element::to_python(element);
        return value == nullptr ? -1 : fn_clbk_oseq_index_of(sequence, value);
    }
};
