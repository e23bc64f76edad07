#include "collections/list_protocol.h"

#include <algorithm>

#include "collections/python_forms.h"
#include "startup/py_ref.h"
#include "wrappers/markers.h"

namespace list_protocol {
namespace {

constexpr char kNotIterable[] = "argument must be iterable";
constexpr char kNotIterableOrSequence[] = "argument must be iterable or sequence";
constexpr char kNoSliceSource[] = "must assign iterable to extended slice";

struct Slice {
    Py_ssize_t start;
    Py_ssize_t count;
    Py_ssize_t step;
};

/// The index `steps` steps behind `start`. Unsigned, since the index after the last one may leave the range.
Py_ssize_t advanced(Py_ssize_t start, Py_ssize_t step) {
    return static_cast<Py_ssize_t>(static_cast<size_t>(start) + static_cast<size_t>(step));
}

bool read_length(const ListOperations& list, void* handle, Py_ssize_t& length) {
    length = list.length(handle);
    return PyErr_Occurred() == nullptr;
}

/// Reads an index key and adds the length to a negative one; bounds are the managed side's to test.
bool read_index(PyObject* key, Py_ssize_t length, Py_ssize_t& index) {
    index = PyNumber_AsSsize_t(key, PyExc_IndexError);
    if (index == -1 && PyErr_Occurred() != nullptr) {
        return false;
    }
    if (index < 0) {
        index += length;
    }
    return true;
}

bool is_index(PyObject* key) {
    return PyLong_CheckExact(key) || PyIndex_Check(key);
}

bool read_slice(PyObject* key, Py_ssize_t length, Slice& slice) {
    if (!PySlice_Check(key)) {
        PyErr_Format(PyExc_TypeError, "list indices must be integers or slices, not %.200s",
                     Py_TYPE(key)->tp_name);
        return false;
    }
    Py_ssize_t stop = 0;
    if (PySlice_Unpack(key, &slice.start, &stop, &slice.step) < 0) {
        return false;
    }
    slice.count = PySlice_AdjustIndices(length, &slice.start, &stop, slice.step);
    return true;
}

int finish_store(int status) {
    if (status == 0) {
        return 0;
    }
    if (status == 2) {
        PyErr_SetString(PyExc_IndexError, "list index out of range");
    }
    return -1;
}

int refuse_removal() {
    PyErr_SetString(PyExc_ValueError, "elements removing not supported");
    return -1;
}

/// The record of a wrapper's handle, for the operations that keep a copy inside managed code.
bool read_managed_collection(PyObject* object, VariantArg& record) {
    int tag = 0;
    if (!fn_is_this_module_clr_instance(object, &tag) && !fn_is_instance_has_host_markattr(object, &tag)) {
        return false;
    }
    fn_py_unknown_to_clr_unknown(object, &record.payload);
    record.kind = tag;
    return true;
}

int remove_slice(const ListOperations& list, void* handle, Slice slice) {
    if (list.remove_range == nullptr) {
        return refuse_removal();
    }
    // From the highest index down, so that a removal does not move those still to go.
    if (slice.step > 0) {
        slice.start += (slice.count - 1) * slice.step;
        slice.step = -slice.step;
    }
    if (list.removes_run_from_lowest && slice.step == -1) {
        slice.start = slice.start - slice.count + 1;
    }
    slice.start = std::max<Py_ssize_t>(slice.start, 0);
    list.remove_range(handle, static_cast<int>(slice.start), static_cast<int>(slice.count),
                      static_cast<int>(slice.step));
    return PyErr_Occurred() == nullptr ? 0 : -1;
}

bool same_size(Py_ssize_t size, const Slice& slice) {
    if (size == slice.count) {
        return true;
    }
    PyErr_Format(PyExc_ValueError, "attempt to assign sequence of size %zd to extended slice of size %zd",
                 size, slice.count);
    return false;
}

/// Walks an exact list or tuple. A conversion may run Python code that shortens a list, so each step looks at
/// the size anew and holds the item while it is in use.
template <class Visit>
bool for_each_fast(PyObject* fast, Visit visit) {
    for (Py_ssize_t i = 0; i < PySequence_Fast_GET_SIZE(fast); ++i) {
        PyRef item = PyRef::borrow(PySequence_Fast_GET_ITEM(fast, i));
        if (!visit(i, item.get())) {
            return false;
        }
    }
    return true;
}

/// Walks a sequence by index over the size that was read before. The item is held while it is in use.
template <class Visit>
bool for_each_indexed(PyObject* sequence, Py_ssize_t size, Visit visit) {
    for (Py_ssize_t i = 0; i < size; ++i) {
        PyRef item = PyRef::steal(PySequence_GetItem(sequence, i));
        if (!item || !visit(i, item.get())) {
            return false;
        }
    }
    return true;
}

/// Walks whatever `iter()` gives for an object that has an iterator.
template <class Visit>
bool for_each_iterated(PyObject* iterable, const char* no_iterator, Visit visit) {
    PyRef iterator = PyRef::steal(PyObject_GetIter(iterable));
    if (!iterator) {
        if (PyErr_Occurred() == nullptr) {
            PyErr_SetString(PyExc_ValueError, no_iterator);
        }
        return false;
    }
    while (PyRef item = PyRef::steal(PyIter_Next(iterator.get()))) {
        if (!visit(item.get())) {
            return false;
        }
    }
    return PyErr_Occurred() == nullptr;
}

int assign_slice(const ListOperations& list, void* handle, Slice slice, PyObject* value) {
    auto store_next = [&](Py_ssize_t, PyObject* item) {
        if (!list.store_unchecked(handle, static_cast<int>(slice.start), item)) {
            return false;
        }
        slice.start = advanced(slice.start, slice.step);
        return true;
    };
    if (is_exact_list_or_tuple(value)) {
        PyRef fast = PyRef::steal(PySequence_Fast(value, kNoSliceSource));
        if (!fast || !same_size(PySequence_Fast_GET_SIZE(fast.get()), slice)) {
            return -1;
        }
        return for_each_fast(fast.get(), store_next) ? 0 : -1;
    }
    if (!has_sized_sequence(value)) {
        PyErr_SetString(PyExc_TypeError, kNoSliceSource);
        return -1;
    }
    const Py_ssize_t size = PySequence_Size(value);
    if (size < 0 && PyErr_Occurred() != nullptr) {
        return -1;
    }
    if (!same_size(size, slice)) {
        return -1;
    }
    if (VariantArg other{}; read_managed_collection(value, other)) {
        const int handled = list.store_managed(handle, &other, static_cast<int>(slice.start),
                                               static_cast<int>(size), static_cast<int>(slice.step));
        if (PyErr_Occurred() != nullptr) {
            return -1;
        }
        if (handled == 1) {
            return 0;
        }
    }
    return for_each_indexed(value, size, store_next) ? 0 : -1;
}

/// Puts the elements into the first slots of a new list.
bool read_items_into(const ListOperations& list, void* handle, Py_ssize_t length, PyObject* result) {
    for (Py_ssize_t i = 0; i < length; ++i) {
        PyObject* item = list.item_unchecked(handle, static_cast<int>(i));
        if (item == nullptr) {
            return false;
        }
        PyList_SET_ITEM(result, i, item);
    }
    return true;
}

bool append_iterated(PyObject* result, PyObject* iterable) {
    return for_each_iterated(iterable, kNotIterable,
                             [&](PyObject* item) { return PyList_Append(result, item) == 0; });
}

/// A new list of `length` slots for the elements of x and, behind them, the items of `other`; the first part
/// is filled by `fill_front`.
template <class FillFront>
PyObject* concat_behind(Py_ssize_t length, PyObject* other, FillFront fill_front) {
    if (length < 0) {
        PyErr_BadInternalCall();
        return nullptr;
    }
    if (is_exact_list_or_tuple(other)) {
        PyRef fast = PyRef::steal(PySequence_Fast(other, kNotIterable));
        if (!fast) {
            return nullptr;
        }
        const Py_ssize_t size = PySequence_Fast_GET_SIZE(fast.get());
        PyRef result = PyRef::steal(PyList_New(length + size));
        if (!result) {
            return nullptr;
        }
        // The items come first: no foreign code runs between reading the size and taking them.
        for (Py_ssize_t i = 0; i < size; ++i) {
            PyObject* item = PySequence_Fast_GET_ITEM(fast.get(), i);
            Py_INCREF(item);
            PyList_SET_ITEM(result.get(), length + i, item);
        }
        return fill_front(result.get()) ? result.release() : nullptr;
    }
    if (has_sized_sequence(other)) {
        Py_ssize_t size = PySequence_Size(other);
        if (size < 0 && PyErr_Occurred() != nullptr) {
            return nullptr;
        }
        size = std::max<Py_ssize_t>(size, 0);
        PyRef result = PyRef::steal(PyList_New(length + size));
        if (!result || !fill_front(result.get())) {
            return nullptr;
        }
        const bool filled = for_each_indexed(other, size, [&](Py_ssize_t i, PyObject* item) {
            Py_INCREF(item);
            PyList_SET_ITEM(result.get(), length + i, item);
            return true;
        });
        return filled ? result.release() : nullptr;
    }
    if (!PyShlObject_HasIter(other)) {
        PyErr_SetString(PyExc_ValueError, kNotIterableOrSequence);
        return nullptr;
    }
    PyRef result = PyRef::steal(PyList_New(length));
    if (!result || !fill_front(result.get()) || !append_iterated(result.get(), other)) {
        return nullptr;
    }
    return result.release();
}

/// A new list of `length` times `times` slots. The product is not tested: one that wraps gives a list of the
/// wrapped size, and what does not fit is not stored.
PyRef new_repeated_list(Py_ssize_t length, Py_ssize_t times) {
    return PyRef::steal(
        PyList_New(static_cast<Py_ssize_t>(static_cast<size_t>(length) * static_cast<size_t>(times))));
}

/// Stores an element at its place in each repetition; takes the reference.
void store_repeated(PyObject* result, Py_ssize_t position, Py_ssize_t length, PyObject* item) {
    const Py_ssize_t total = PyList_GET_SIZE(result);
    for (Py_ssize_t slot = position; slot < total; slot += length) {
        Py_INCREF(item);
        PyList_SET_ITEM(result, slot, item);
    }
    Py_DECREF(item);
}

}  // namespace

PyObject* subscript(const ListOperations& list, void* handle, PyObject* key) {
    Py_ssize_t length = 0;
    if (!read_length(list, handle, length)) {
        return nullptr;
    }
    if (is_index(key)) {
        Py_ssize_t index = 0;
        return read_index(key, length, index) ? list.item(handle, static_cast<int>(index)) : nullptr;
    }
    Slice slice{};
    if (!read_slice(key, length, slice)) {
        return nullptr;
    }
    PyRef result = PyRef::steal(PyList_New(std::max<Py_ssize_t>(slice.count, 0)));
    if (!result) {
        return nullptr;
    }
    Py_ssize_t index = slice.start;
    for (Py_ssize_t i = 0; i < slice.count; ++i) {
        PyObject* item = list.item_unchecked(handle, static_cast<int>(index));
        if (item == nullptr) {
            return nullptr;
        }
        PyList_SET_ITEM(result.get(), i, item);
        index = advanced(index, slice.step);
    }
    return result.release();
}

int assign_item(const ListOperations& list, void* handle, Py_ssize_t index, PyObject* value) {
    if (value != nullptr) {
        return finish_store(list.store(handle, static_cast<int>(index), value));
    }
    if (list.remove_at == nullptr) {
        return refuse_removal();
    }
    return finish_store(list.remove_at(handle, static_cast<int>(index)));
}

int assign_subscript(const ListOperations& list, void* handle, PyObject* key, PyObject* value) {
    Py_ssize_t length = 0;
    if (!read_length(list, handle, length)) {
        return -1;
    }
    if (is_index(key)) {
        Py_ssize_t index = 0;
        return read_index(key, length, index) ? assign_item(list, handle, index, value) : -1;
    }
    Slice slice{};
    if (!read_slice(key, length, slice)) {
        return -1;
    }
    return value == nullptr ? remove_slice(list, handle, slice) : assign_slice(list, handle, slice, value);
}

PyObject* concat(const ListOperations& list, void* handle, PyObject* other) {
    Py_ssize_t length = 0;
    if (!read_length(list, handle, length)) {
        return nullptr;
    }
    return concat_behind(length, other,
                         [&](PyObject* result) { return read_items_into(list, handle, length, result); });
}

PyObject* repeat(const ListOperations& list, void* handle, Py_ssize_t times) {
    Py_ssize_t length = 0;
    if (!read_length(list, handle, length)) {
        return nullptr;
    }
    PyRef result = new_repeated_list(length, std::max<Py_ssize_t>(times, 0));
    if (!result) {
        return nullptr;
    }
    // With nothing to repeat the elements are read all the same: a managed failure shows in every case.
    for (Py_ssize_t i = 0; i < length; ++i) {
        PyObject* item = list.item_unchecked(handle, static_cast<int>(i));
        if (item == nullptr) {
            return nullptr;
        }
        store_repeated(result.get(), i, length, item);
    }
    return result.release();
}

PyObject* copy(const ListOperations& list, void* handle) {
    Py_ssize_t length = 0;
    if (!read_length(list, handle, length)) {
        return nullptr;
    }
    PyRef result = PyRef::steal(PyList_New(length));
    if (!result || !read_items_into(list, handle, length, result.get())) {
        return nullptr;
    }
    return result.release();
}

bool extend(const ListOperations& list, void* handle, PyObject* other) {
    if (VariantArg record{}; read_managed_collection(other, record)) {
        const int handled = list.concat_managed(handle, &record);
        if (PyErr_Occurred() != nullptr) {
            return false;
        }
        if (handled == 1) {
            return true;
        }
    }
    auto make_room = [&](Py_ssize_t size) {
        if (list.ensure_capacity == nullptr) {
            return true;
        }
        list.ensure_capacity(handle, static_cast<int>(size));
        return PyErr_Occurred() == nullptr;
    };
    auto add = [&](Py_ssize_t, PyObject* item) { return list.add(handle, item); };

    if (is_exact_list_or_tuple(other)) {
        PyRef fast = PyRef::steal(PySequence_Fast(other, kNotIterable));
        return fast && make_room(PySequence_Fast_GET_SIZE(fast.get())) && for_each_fast(fast.get(), add);
    }
    if (has_sized_sequence(other)) {
        const Py_ssize_t size = PySequence_Size(other);
        if (size < 0 && PyErr_Occurred() != nullptr) {
            return false;
        }
        return make_room(size) && for_each_indexed(other, size, add);
    }
    if (!PyShlObject_HasIter(other)) {
        PyErr_SetString(PyExc_ValueError, kNotIterableOrSequence);
        return false;
    }
    return for_each_iterated(other, kNotIterable, [&](PyObject* item) { return list.add(handle, item); });
}

PyObject* concat_by_iteration(PyObject* self, Py_ssize_t length, PyObject* other) {
    return concat_behind(length, other, [&](PyObject* result) {
        Py_ssize_t position = 0;
        const bool walked =
            for_each_iterated(self, "the collection was modified during the operation", [&](PyObject* item) {
                if (position >= length) {
                    PyErr_SetString(PyExc_ValueError, kNotIterableOrSequence);
                    return false;
                }
                Py_INCREF(item);
                PyList_SET_ITEM(result, position, item);
                ++position;
                return true;
            });
        if (walked && position < length) {
            PyErr_SetString(PyExc_ValueError, kNotIterableOrSequence);
            return false;
        }
        return walked;
    });
}

PyObject* repeat_by_iteration(PyObject* self, Py_ssize_t length, Py_ssize_t times) {
    PyRef result = new_repeated_list(length, std::max<Py_ssize_t>(times, 0));
    if (!result) {
        return nullptr;
    }
    Py_ssize_t position = 0;
    const bool walked =
        for_each_iterated(self, "the collection was modified during the operation", [&](PyObject* item) {
            if (position >= length) {
                PyErr_SetString(PyExc_ValueError, kNotIterableOrSequence);
                return false;
            }
            Py_INCREF(item);
            store_repeated(result.get(), position, length, item);
            ++position;
            return true;
        });
    if (!walked) {
        return nullptr;
    }
    // A walk that ended early leaves slots empty. An empty slot must not reach Python code, which would read
    // through a null pointer, so each shows as None.
    for (Py_ssize_t slot = 0; slot < PyList_GET_SIZE(result.get()); ++slot) {
        if (PyList_GET_ITEM(result.get(), slot) == nullptr) {
            Py_INCREF(Py_None);
            PyList_SET_ITEM(result.get(), slot, Py_None);
        }
    }
    return result.release();
}

bool parse_sort_arguments(PyObject* arguments, PyObject* keywords, int& descending) {
    static char key_name[] = "key";
    static char reverse_name[] = "reverse";
    static char* names[] = {key_name, reverse_name, nullptr};
    PyObject* key = Py_None;
    descending = 0;
    if (!PyArg_ParseTupleAndKeywords(arguments, keywords, "|Op", names, &key, &descending)) {
        return false;
    }
    if (key != Py_None) {
        PyErr_SetString(PyExc_ValueError, "custom sorting key is not supported");
        return false;
    }
    return true;
}

}  // namespace list_protocol
