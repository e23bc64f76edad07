#pragma once

#include <type_traits>

#include "collections/element.h"
#include "collections/list_protocol.h"
#include "marshal/arguments.h"
#include "wrappers/clr_object.h"

// The Python slots and methods of a collection wrapper, over an `Access` that says which host serves what:
//
//   Element                                        the element's form
//   items()                                        the host of the elements, "CountOf" and the bulk
//   operations members()                                      the host of add, remove, clear and contains
//   lengths()                                      the host of the length
//   kRemovesRunFromLowest                          see ListOperations
//
// A slot that a kind of collection does not have is never instantiated.

/// All operations on one host.
template <class Host, class E, bool RemovesRunFromLowest>
struct SingleHostAccess {
    using Element = E;
    static constexpr bool kRemovesRunFromLowest = RemovesRunFromLowest;
    static const Host& items() { return Host::get_instance(); }
    static const Host& members() { return Host::get_instance(); }
    static const Host& lengths() { return Host::get_instance(); }
};

/// Elements on a list's host, the rest on hosts of the collection that every list is.
template <class ItemHost, class MemberHost, class LengthHost, class E>
struct SplitHostAccess {
    using Element = E;
    static constexpr bool kRemovesRunFromLowest = false;
    static const ItemHost& items() { return ItemHost::get_instance(); }
    static const MemberHost& members() { return MemberHost::get_instance(); }
    static const LengthHost& lengths() { return LengthHost::get_instance(); }
};

/// The result of a managed call that answers nothing: None, or null when it left an error.
inline PyObject* fn_none_unless_error() {
    return PyErr_Occurred() == nullptr ? fn_new_ref(Py_None) : nullptr;
}

/// The operations of the list algorithms over an Access; those that its hosts lack are null.
template <class Access>
struct ManagedListOperations {
    using Element = typename Access::Element;
    using In = typename Element::In;
    using ItemHost = std::remove_cvref_t<decltype(Access::items())>;

    static int length(void* handle) { return Access::lengths().sq_length(handle); }

    static PyObject* item(void* handle, int index) {
        typename Element::Out out{};
        const int status = Access::items().sq_item(handle, index, &out);
        if (status == 0) [[likely]] {
            return Element::to_python(out);
        }
        if (status == 2) {
            PyErr_SetString(PyExc_IndexError, "list index out of range");
        }
        return nullptr;
    }

    static PyObject* item_unchecked(void* handle, int index) {
        return fn_read_element_unchecked<Element>(Access::items(), handle, index);
    }

    static int store(void* handle, int index, PyObject* value) {
        In in{};
        if (Element::convert(value, &in) == 0) {
            return -1;
        }
        return Access::items().sq_ssitem(handle, index, Element::pass(in));
    }

    static bool store_unchecked(void* handle, int index, PyObject* value) {
        In in{};
        if (Element::convert(value, &in) == 0) {
            return false;
        }
        Access::items().sq_ssitem_nocheck(handle, index, Element::pass(in));
        return PyErr_Occurred() == nullptr;
    }

    static bool add(void* handle, PyObject* value) {
        In in{};
        if (Element::convert(value, &in) == 0) {
            return false;
        }
        Access::members().add(handle, Element::pass(in));
        return PyErr_Occurred() == nullptr;
    }

    static int remove_at(void* handle, int index) { return Access::items().remove_at(handle, index); }
    static void remove_range(void* handle, int start, int count, int step) {
        Access::items().mp_remove(handle, start, count, step);
    }
    static void ensure_capacity(void* handle, int count) { Access::items().ensure_capacity(handle, count); }
    static int concat_managed(void* handle, const VariantArg* other) {
        return Access::items().sq_inplace_concat(handle, other);
    }
    static int store_managed(void* handle, const VariantArg* other, int start, int count, int step) {
        return Access::items().mp_subscript(handle, other, start, count, step);
    }

    static constexpr ListOperations make() {
        using Out = typename Element::Out;
        constexpr bool has_items = requires(const ItemHost& host, Out* out) {
            host.sq_item(nullptr, 0, out);
        };
        constexpr bool can_grow = requires(const ItemHost& host, const VariantArg* other) {
            host.sq_inplace_concat(nullptr, other);
        };
        constexpr bool can_shrink = requires(const ItemHost& host) {
            host.mp_remove(nullptr, 0, 0, 0);
        };
        constexpr bool has_capacity = requires(const ItemHost& host) {
            host.ensure_capacity(nullptr, 0);
        };
        ListOperations list{};
        list.length = length;
        if constexpr (has_items) {
            list.item = item;
            list.item_unchecked = item_unchecked;
            list.store = store;
            list.store_unchecked = store_unchecked;
            list.store_managed = store_managed;
        }
        if constexpr (can_grow) {
            list.add = add;
            list.concat_managed = concat_managed;
        }
        if constexpr (can_shrink) {
            list.remove_at = remove_at;
            list.remove_range = remove_range;
        }
        if constexpr (has_capacity) {
            list.ensure_capacity = ensure_capacity;
        }
        list.removes_run_from_lowest = Access::kRemovesRunFromLowest;
        return list;
    }
};

/// One constant table an Access.
template <class Access>
inline constexpr ListOperations kListOperations = ManagedListOperations<Access>::make();

template <class Access>
struct CollectionSlots {
    using Element = typename Access::Element;
    using In = typename Element::In;
    using Operations = ManagedListOperations<Access>;

    static Py_ssize_t sq_length(PyObject* self) {
        const int length = Access::lengths().sq_length(fn_wrapper_handle(self));
        return PyErr_Occurred() == nullptr ? length : -1;
    }

    static PyObject* get_length(PyObject* self, void*) {
        const int length = Access::lengths().sq_length(fn_wrapper_handle(self));
        return PyErr_Occurred() == nullptr ? PyLong_FromLong(length) : nullptr;
    }

    static PyObject* sq_item(PyObject* self, Py_ssize_t index) {
        return Operations::item(fn_wrapper_handle(self), static_cast<int>(index));
    }

    static int sq_ssitem(PyObject* self, Py_ssize_t index, PyObject* value) {
        return list_protocol::assign_item(kListOperations<Access>, fn_wrapper_handle(self), index, value);
    }

    static PyObject* mp_subscript(PyObject* self, PyObject* key) {
        return list_protocol::subscript(kListOperations<Access>, fn_wrapper_handle(self), key);
    }

    static int mp_ssubscript(PyObject* self, PyObject* key, PyObject* value) {
        return list_protocol::assign_subscript(kListOperations<Access>, fn_wrapper_handle(self), key, value);
    }

    static PyObject* sq_concat(PyObject* self, PyObject* other) {
        return list_protocol::concat(kListOperations<Access>, fn_wrapper_handle(self), other);
    }

    static PyObject* sq_repeat(PyObject* self, Py_ssize_t times) {
        return list_protocol::repeat(kListOperations<Access>, fn_wrapper_handle(self), times);
    }

    static PyObject* copy(PyObject* self, PyObject*) {
        return list_protocol::copy(kListOperations<Access>, fn_wrapper_handle(self));
    }

    // The three for a collection without element access, which is walked by iteration.

    static PyObject* sq_concat_walking(PyObject* self, PyObject* other) {
        const Py_ssize_t length = sq_length(self);
        if (length == -1 && PyErr_Occurred() != nullptr) {
            return nullptr;
        }
        return list_protocol::concat_by_iteration(self, length, other);
    }

    static PyObject* sq_repeat_walking(PyObject* self, Py_ssize_t times) {
        const Py_ssize_t length = sq_length(self);
        if (length == -1 && PyErr_Occurred() != nullptr) {
            return nullptr;
        }
        return list_protocol::repeat_by_iteration(self, length, times);
    }

    static PyObject* copy_walking(PyObject* self, PyObject*) { return sq_repeat_walking(self, 1); }

    static PyObject* extend(PyObject* self, PyObject* other) {
        return list_protocol::extend(kListOperations<Access>, fn_wrapper_handle(self), other)
                   ? fn_new_ref(Py_None)
                   : nullptr;
    }

    static PyObject* sq_inplace_concat(PyObject* self, PyObject* other) {
        return list_protocol::extend(kListOperations<Access>, fn_wrapper_handle(self), other)
                   ? fn_new_ref(self)
                   : nullptr;
    }

    static PyObject* sq_inplace_repeat(PyObject* self, Py_ssize_t times) {
        Access::items().sq_inplace_repeat(fn_wrapper_handle(self), static_cast<int>(times));
        return PyErr_Occurred() == nullptr ? fn_new_ref(self) : nullptr;
    }

    static int sq_contains(PyObject* self, PyObject* value) {
        In in{};
        if (Element::convert(value, &in) == 0) {
            return -1;
        }
        const int found = Access::members().sq_contains(fn_wrapper_handle(self), Element::pass(in));
        return PyErr_Occurred() == nullptr ? found : -1;
    }

    static PyObject* contains(PyObject* self, PyObject* value) {
        const int found = sq_contains(self, value);
        return found < 0 && PyErr_Occurred() != nullptr ? nullptr : PyBool_FromLong(found);
    }

    static PyObject* count(PyObject* self, PyObject* value) {
        In in{};
        if (Element::convert(value, &in) == 0) {
            return nullptr;
        }
        const int number = Access::items().count_of(fn_wrapper_handle(self), Element::pass(in));
        return PyErr_Occurred() == nullptr ? PyLong_FromLong(number) : nullptr;
    }

    static PyObject* append(PyObject* self, PyObject* value) {
        return Operations::add(fn_wrapper_handle(self), value) ? fn_new_ref(Py_None) : nullptr;
    }

    static PyObject* insert(PyObject* self, PyObject* arguments) {
        Py_ssize_t index = 0;
        In in{};
        if (!read_insert_arguments(arguments, index, in)) {
            return nullptr;
        }
        Access::items().insert(fn_wrapper_handle(self), static_cast<int>(index), Element::pass(in));
        return fn_none_unless_error();
    }

    static PyObject* remove(PyObject* self, PyObject* value) {
        In in{};
        if (Element::convert(value, &in) == 0) {
            return nullptr;
        }
        const int removed = Access::members().remove(fn_wrapper_handle(self), Element::pass(in));
        if (PyErr_Occurred() != nullptr) {
            return nullptr;
        }
        if (removed == 0) {
            PyErr_SetString(PyExc_ValueError, "list.remove(x): x not in list");
            return nullptr;
        }
        return fn_new_ref(Py_None);
    }

    static PyObject* pop(PyObject* self, PyObject* arguments) {
        const Py_ssize_t given = PyTuple_GET_SIZE(arguments);
        if (fn_check_args_count_out_of_range(given, "pop", 0, 1)) {
            return nullptr;
        }
        // None leaves the index at 0, and still counts as a given one.
        Py_ssize_t index = 0;
        if (given == 1 && fn_conv_py_optional_to_ssize_t(arguments, &index) == 0) {
            return nullptr;
        }
        typename Element::Out out{};
        const int status = Access::items().pop(fn_wrapper_handle(self), static_cast<int>(given),
                                               static_cast<int>(index), &out);
        switch (status) {
            case 0:
                return Element::to_python(out);
            case 1:
                PyErr_SetString(PyExc_IndexError, "pop from empty list");
                return nullptr;
            case 2:
                PyErr_SetString(PyExc_IndexError, "pop index out of range");
                return nullptr;
            default:
                return nullptr;
        }
    }

    static PyObject* clear(PyObject* self, PyObject*) {
        Access::members().clear(fn_wrapper_handle(self));
        return fn_none_unless_error();
    }

    static PyObject* reverse(PyObject* self, PyObject*) {
        Access::items().reverse(fn_wrapper_handle(self));
        return fn_none_unless_error();
    }

    static PyObject* sort(PyObject* self, PyObject* arguments, PyObject* keywords) {
        int descending = 0;
        if (!list_protocol::parse_sort_arguments(arguments, keywords, descending)) {
            return nullptr;
        }
        Access::items().sort(fn_wrapper_handle(self), descending);
        return fn_none_unless_error();
    }

    static PyObject* index(PyObject* self, PyObject* arguments) {
        In in{};
        Py_ssize_t start = 0;
        Py_ssize_t stop = 0;
        if (!read_index_arguments(arguments, in, start, stop)) {
            return nullptr;
        }
        const Py_ssize_t given = PyTuple_GET_SIZE(arguments);
        const int position =
            Access::items().index_by(fn_wrapper_handle(self), given >= 2 ? 1 : 0, static_cast<int>(start),
                                     given >= 3 ? 1 : 0, static_cast<int>(stop), Element::pass(in));
        if (PyErr_Occurred() != nullptr) {
            return nullptr;
        }
        if (position < 0) {
            PyErr_SetString(PyExc_ValueError, "value is not in list");
            return nullptr;
        }
        return PyLong_FromLong(position);
    }

private:
    // The usual calls are read without a format string; whatever else is given goes through the parse, which
    // takes and refuses the same.

    static bool read_insert_arguments(PyObject* arguments, Py_ssize_t& index, In& in) {
        if (PyTuple_GET_SIZE(arguments) == 2 && PyLong_CheckExact(PyTuple_GET_ITEM(arguments, 0))) {
            index = PyLong_AsSsize_t(PyTuple_GET_ITEM(arguments, 0));
            return (index != -1 || PyErr_Occurred() == nullptr) &&
                   Element::convert(PyTuple_GET_ITEM(arguments, 1), &in) != 0;
        }
        return PyArg_ParseTuple(arguments, "nO&", &index, &Element::convert, &in) != 0;
    }

    static bool read_index_arguments(PyObject* arguments, In& in, Py_ssize_t& start, Py_ssize_t& stop) {
        if (PyTuple_GET_SIZE(arguments) == 1) {
            return Element::convert(PyTuple_GET_ITEM(arguments, 0), &in) != 0;
        }
        return PyArg_ParseTuple(arguments, "O&|nn", &Element::convert, &in, &start, &stop) != 0;
    }
};
